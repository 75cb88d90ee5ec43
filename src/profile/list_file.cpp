#include "profile/list_file.h"

#include "base/text.h"
#include "profile/scramble_text.h"
#include "trace/messages.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vardelin::profile {
namespace {

using platform::FileSystem;
using platform::OpenMode;

constexpr std::string_view kModule = "MDIForm";
constexpr std::string_view kRecentMarker = "[Recent Profile]";
constexpr std::string_view kPrimaryMarker = "[Primary Profile]";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kExtension = ".vdp";

std::string listPath(const ProfileContext& context)
{
    return context.frame.ST_App_Path + "\\Data\\Other_Dsk.txt";
}

std::string scratchPath(const ProfileContext& context)
{
    return context.frame.ST_App_Path + "\\Data\\UpOther_Dsk.txt";
}

// The value behind the first marker; none where there is no marker.
std::optional<std::string> firstValue(std::string_view text, std::string_view marker)
{
    bool hit = false;
    for (const std::string_view line : fileLines(text)) {
        if (hit)
            return std::string(line);
        hit = line == marker;
    }
    return hit ? std::optional<std::string>(std::in_place) : std::nullopt;
}

bool isProfile(const ProfileContext& context, std::string_view name)
{
    if (name.empty() || name.find('\\') != std::string_view::npos)
        return false;
    return context.machine.fileSystem.fileExists(
        platform::joinPath(context.frame.ST_App_Path + "\\Profiles", name));
}

void find(ProfileContext& context, std::string_view procedure, std::string_view marker,
          std::string& target, void (*remove)(ProfileContext&), bool& found)
{
    found = false;
    trace::runTraced(context.trace, procedure, kModule, trace::customMessage(procedure), [&] {
        const auto name = firstValue(context.machine.fileSystem.readAll(listPath(context)), marker);
        if (!name)
            return;
        if (isProfile(context, *name)) {
            target = *name;
            found = true;
        } else {
            remove(context);
        }
    });
}

void append(ProfileContext& context, std::string_view marker, std::string_view name)
{
    FileSystem& fileSystem = context.machine.fileSystem;
    const auto file = fileSystem.open(listPath(context), OpenMode::Append);
    std::string text;
    // A list that was cut in its last line must not swallow the marker.
    const std::uint64_t size = file->info().sizeBytes;
    if (size > 0 && !fileSystem.readAll(listPath(context)).ends_with(kLineEnd))
        text = kLineEnd;
    text.append(marker).append(kLineEnd).append(name).append(kLineEnd);
    file->write(platform::asBytes(text));
    file->flush();
    file->close();
}

// Everything but the recent pairs.
std::string withoutRecent(std::string_view text)
{
    std::string rest;
    bool dropNext = false;
    for (const std::string_view line : fileLines(text)) {
        if (dropNext) {
            dropNext = false;
            continue;
        }
        if (line == kRecentMarker)
            dropNext = true;
        else
            rest.append(line).append(kLineEnd);
    }
    return rest;
}

// What stands before the first primary marker.
std::string beforePrimary(std::string_view text)
{
    std::string rest;
    for (const std::string_view line : fileLines(text)) {
        if (line == kPrimaryMarker)
            break;
        rest.append(line).append(kLineEnd);
    }
    return rest;
}

// By way of the scratch file, which after a crash may stay; the list is the old or the new one.
void rewrite(ProfileContext& context, std::string (*kept)(std::string_view))
{
    FileSystem& fileSystem = context.machine.fileSystem;
    const auto list = fileSystem.open(listPath(context), OpenMode::Read);
    const auto scratch = fileSystem.open(scratchPath(context), OpenMode::CreateOrTruncate);
    scratch->write(platform::asBytes(kept(fileSystem.readAll(listPath(context)))));
    scratch->flush();
    scratch->close();
    fileSystem.replaceFile(listPath(context), fileSystem.readAll(scratchPath(context)));
    fileSystem.removeFile(scratchPath(context));
}

} // namespace

void IsRecentProfile(ProfileContext& context, bool& found)
{
    find(context, "IsRecentProfile", kRecentMarker, context.frame.ST_Recent_Profile,
         RemoveRecVdpName, found);
}

void SetRecentProfile(ProfileContext& context, std::string_view name)
{
    std::string value(name);
    if (!base::containsIgnoringCase(value, kExtension))
        value.append(kExtension);
    append(context, kRecentMarker, value);
}

void RemoveRecVdpName(ProfileContext& context)
{
    // It traces and reports under three names, which people know it by.
    trace::runTraced(
        context.trace, "RemoveVdpName",
        {"RemoveRecVdp", "RemoveRecVdpName", kModule, trace::customMessage("RemoveRecVdpName")},
        [&] { rewrite(context, withoutRecent); });
}

void IsPrProFileExists(ProfileContext& context, bool& found)
{
    find(context, "IsPrProFileExists", kPrimaryMarker, context.frame.ST_Primary_Profile,
         RemoveVdpName, found);
}

void SetPrimaryProfile(ProfileContext& context, std::string_view name)
{
    append(context, kPrimaryMarker, name);
}

void RemoveVdpName(ProfileContext& context)
{
    trace::runTraced(
        context.trace, "RemoveVdpName",
        {"IsPrProFileExists", "RemoveVdpName", kModule, trace::customMessage("RemoveVdpName")},
        [&] { rewrite(context, beforePrimary); });
}

} // namespace vardelin::profile
