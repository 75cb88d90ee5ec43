#include "profile/plain_copy.h"

#include "base/text.h"
#include "profile/profile_format.h"

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

using base::equalsIgnoringCase;

bool isFirstLine(std::string_view line)
{
    return line.size() > 2 && line.front() == '[' && line.back() == ']';
}

void rename(std::vector<std::string_view>& lines, const std::string& opening,
            const std::string& closing)
{
    const std::string_view first = lines.front();
    const std::string oldClosing = fmt::format("[End of {}", first.substr(1));
    lines.front() = opening;
    const auto last = std::find_if(lines.rbegin(), lines.rend(), [&](std::string_view line) {
        return equalsIgnoringCase(line, oldClosing);
    });
    if (last != lines.rend())
        *last = closing;
}

} // namespace

bool adoptPlainCopy(platform::FileSystem& fileSystem, std::string_view path, std::string_view name)
{
    const std::string text = fileSystem.readAll(path);
    auto lines = base::split(text, format::kLineEnd);
    const auto holds = [&](std::string_view wanted) {
        return std::any_of(lines.begin(), lines.end(),
                           [&](std::string_view line) { return equalsIgnoringCase(line, wanted); });
    };
    if (!holds(format::kSourceFiles.opening) || !holds(format::kSourceFiles.closing)) {
        fileSystem.removeFile(path);
        return false;
    }
    const std::string opening = fmt::format("[{}]", name);
    const std::string closing = fmt::format("[End of {}]", name);
    if (!isFirstLine(lines.front()) || equalsIgnoringCase(lines.front(), opening))
        return true;
    rename(lines, opening, closing);
    const auto file = fileSystem.open(path, platform::OpenMode::CreateOrTruncate);
    file->write(platform::asBytes(fmt::format("{}", fmt::join(lines, format::kLineEnd))));
    file->close();
    return true;
}

} // namespace vardelin::profile
