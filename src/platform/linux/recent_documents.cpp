#include "platform/linux/recent_documents.h"

#include "base/dates.h"
#include "base/text.h"
#include "platform/linux/native_text.h"

#include <filesystem>
#include <fmt/format.h>
#include <system_error>

namespace vardelin::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kListEnd = "</xbel>";
constexpr std::string_view kTypeOfUnknown = "application/octet-stream";
constexpr std::string_view kProgram = "Vardelin";
constexpr std::int64_t kDaySeconds = 24 * 60 * 60;

std::string emptyList()
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xbel version=\"1.0\"\n"
           "      xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
           "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\"\n"
           ">\n" +
           std::string(kListEnd) + "\n";
}

// The address of a file as desktops write it, so that one document has one entry: all bytes but
// these are percent-encoded, and what XML would take otherwise is escaped.
std::string address(std::string_view nativePath)
{
    constexpr std::string_view kPlain = "-._~!$()*+,;=:@/";
    std::string text = "file://";
    for (const char c : nativePath) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') || kPlain.find(c) != std::string_view::npos;
        if (isPlain)
            text += c;
        else if (c == '&')
            text += "&amp;";
        else if (c == '\'')
            text += "&apos;";
        else
            text += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return text;
}

std::string timeText(std::int64_t seconds)
{
    const std::int64_t rest = seconds % kDaySeconds;
    const base::TimeOfDay time{static_cast<int>(rest / 3600), static_cast<int>(rest / 60 % 60),
                               static_cast<int>(rest % 60)};
    return fmt::format("{}T{}Z", base::isoDate(base::dateFromDays(seconds / kDaySeconds)),
                       base::clockTime(time));
}

std::string entry(const std::string& href, std::string_view mimeType, const std::string& time)
{
    return fmt::format("  <bookmark href=\"{0}\" added=\"{2}\" modified=\"{2}\" visited=\"{2}\">\n"
                       "    <info>\n"
                       "      <metadata owner=\"http://freedesktop.org\">\n"
                       "        <mime:mime-type type=\"{1}\"/>\n"
                       "        <bookmark:applications>\n"
                       "          <bookmark:application name=\"{3}\" exec=\"&apos;vardelin "
                       "%u&apos;\" modified=\"{2}\" count=\"1\"/>\n"
                       "        </bookmark:applications>\n"
                       "      </metadata>\n"
                       "    </info>\n"
                       "  </bookmark>\n",
                       href, mimeType.empty() ? kTypeOfUnknown : mimeType, time, kProgram);
}

// Gives an attribute of the tag between `from` and the next `>` another value, where it has it.
void setAttribute(std::string& text, std::size_t from, std::string_view name,
                  const std::string& value)
{
    const std::string start = fmt::format(" {}=\"", name);
    const std::size_t at = text.find(start, from);
    if (at == std::string::npos || at > text.find('>', from))
        return;
    const std::size_t begin = at + start.size();
    text.replace(begin, text.find('"', begin) - begin, value);
}

} // namespace

void noteRecentDocument(const std::string& dataFolder, std::string_view nativePath,
                        std::string_view mimeType, std::int64_t seconds)
{
    std::error_code error;
    std::string list = dataFolder + "/recently-used.xbel";
    // Behind a link stands the list itself.
    if (const fs::path real = fs::canonical(list, error); !error)
        list = real.string();
    error.clear();
    const bool exists = fs::exists(list, error);
    std::string text = exists ? readNativeFile(list) : emptyList();
    const std::size_t end = text.rfind(kListEnd);
    if (error || end == std::string::npos)
        return;
    const std::string href = address(nativePath);
    const std::string time = timeText(seconds);
    const std::size_t known = text.find(fmt::format("<bookmark href=\"{}\"", href));
    if (known != std::string::npos) {
        setAttribute(text, known, "modified", time);
        setAttribute(text, known, "visited", time);
    } else {
        text.insert(end, entry(href, mimeType, time));
    }
    if (!exists) {
        fs::create_directories(dataFolder, error);
        if (error)
            raiseFileError(error, dataFolder);
    }
    replaceNativeFile(list, text);
    // What a person opened is nobody else's business.
    if (!exists)
        fs::permissions(list, fs::perms::owner_read | fs::perms::owner_write, error);
}

} // namespace vardelin::platform
