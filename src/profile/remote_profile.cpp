#include "profile/remote_profile.h"

#include "base/runtime_error.h"
#include "profile/opening.h"
#include "profile/opening_texts.h"

#include <utility>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

namespace texts = opening_texts;
using base::PendingError;
using platform::FileSystem;

std::string workingCopy(const ProfileContext& context, std::string_view name)
{
    return fmt::format("{}\\Profiles\\{}", context.frame.ST_App_Path, name);
}

// Unlike FileSystem::find, raises where it cannot tell: a wrong "no" would cost a profile.
bool isThere(FileSystem& fileSystem, std::string_view path)
{
    const auto folder = fileSystem.openFolder(platform::parentOf(path));
    return folder->find(platform::leafOf(path)).has_value();
}

void tell(ProfileContext& context, const std::string& text)
{
    context.machine.messageBoxes.show(text, texts::kTitle, platform::Buttons::Ok,
                                      platform::Icon::Exclamation);
}

void keepLeftStash(ProfileContext& context)
{
    FileSystem& fileSystem = context.machine.fileSystem;
    const std::string stash = stashPath(context.frame);
    if (context.frame.BL_Local_Stashed || !isThere(fileSystem, stash))
        return;
    std::string kept;
    for (int number = 1; kept.empty() || isThere(fileSystem, kept); ++number)
        kept = fmt::format("{}\\Data\\VdPrTmp{}.vdp", context.frame.ST_App_Path, number);
    fileSystem.rename(stash, kept);
    tell(context, fmt::format("{}{}", texts::kLeftStash, kept));
}

// The copy is on the disk before the profile goes.
void stashLocal(ProfileContext& context, const std::string& working)
{
    FileSystem& fileSystem = context.machine.fileSystem;
    const std::string stash = stashPath(context.frame);
    fileSystem.replaceFile(stash, fileSystem.readAll(working));
    PendingError kept;
    if (kept.attempt([&] { fileSystem.removeFile(working); })) {
        context.frame.BL_Local_Stashed = true;
        return;
    }
    // It stays where it is, and one of it is enough.
    PendingError leftBehind;
    leftBehind.attempt([&] { fileSystem.removeFile(stash); });
    throw base::RuntimeError(kept.number, kept.subject);
}

} // namespace

std::string stashPath(const state::FrameState& frame)
{
    return frame.ST_App_Path + "\\Data\\VdPrTmp.vdp";
}

void fetchRemoteProfile(ProfileContext& context, const std::string& path, std::string_view name)
{
    FileSystem& fileSystem = context.machine.fileSystem;
    const std::string working = workingCopy(context, name);
    try {
        // Read first: a file that cannot be read moves nothing.
        const std::string bytes = fileSystem.readAll(path);
        keepLeftStash(context);
        if (isThere(fileSystem, working))
            stashLocal(context, working);
        context.frame.BL_Remote_Profile = true;
        fileSystem.replaceFile(working, bytes);
    } catch (const base::RuntimeError&) {
        if (context.frame.BL_Remote_Profile)
            dropRemoteProfile(context, name);
        throw;
    }
}

void dropRemoteProfile(ProfileContext& context, std::string_view name)
{
    FileSystem& fileSystem = context.machine.fileSystem;
    const std::string working = workingCopy(context, name);
    const std::string stash = stashPath(context.frame);
    context.frame.BL_Remote_Profile = false;
    if (!std::exchange(context.frame.BL_Local_Stashed, false)) {
        PendingError leftBehind; // a copy: the profile itself is where it came from
        leftBehind.attempt([&] { fileSystem.removeFile(working); });
        return;
    }
    PendingError lost;
    // In one step: there is no moment without the local profile at either place.
    if (!lost.attempt([&] { fileSystem.replaceFile(working, fileSystem.readAll(stash)); })) {
        tell(context,
             fmt::format("{}{}{}{}", texts::kStashedStart, name, texts::kStashedEnd, stash));
        return;
    }
    PendingError leftBehind;
    leftBehind.attempt([&] { fileSystem.removeFile(stash); });
}

} // namespace vardelin::profile
