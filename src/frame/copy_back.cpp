#include "frame/frame_texts.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"

#include <fmt/format.h>

namespace vardelin::frame {
namespace {

// Whole or not at all: what lies there is somebody's only copy until the new one has taken its
// place.
void replaceBy(FrameContext& context, const std::string& target, const std::string& source)
{
    platform::FileSystem& files = context.profiles.machine.fileSystem;
    files.replaceFile(target, files.readAll(source));
}

// Whether the person keeps the profile here. Where a local one had to make way for it, that is a
// second question.
bool staysHere(const FrameContext& context)
{
    const state::FrameState& frame = context.profiles.frame;
    return ask(context, fmt::format("{}{}{}", frame_texts::kCopyQuestionStart, frame.ST_Remote_Name,
                                    frame_texts::kCopyQuestionEnd)) &&
           (!frame.BL_Local_Stashed || ask(context, frame_texts::kOverwriteQuestion));
}

// From here on the copy on the media is the profile. A second attempt must not take the one in
// Profiles for it again, which may be the local one by then.
void giveBack(FrameContext& context)
{
    state::FrameState& frame = context.profiles.frame;
    replaceBy(context, frame.ST_Remote_Path, profilePath(context, frame.ST_Remote_Name));
    frame.BL_Remote_Profile = false;
    // The editor's profile has no file here any more: a save asks for a name.
    frame.ST_Current_Profile.clear();
    frame.ST_Current_Profile_Path.clear();
    frame.ST_Last_Saved_Profile.clear();
}

// The local profile that made way takes its place again.
void bringLocalBack(FrameContext& context)
{
    state::FrameState& frame = context.profiles.frame;
    if (!frame.BL_Local_Stashed)
        return;
    const std::string stash = profile::stashPath(frame);
    // In one step: were the working copy deleted first, a failure would leave no way back.
    replaceBy(context, profilePath(context, frame.ST_Remote_Name), stash);
    frame.BL_Local_Stashed = false;
    context.profiles.machine.fileSystem.removeFile(stash);
}

} // namespace

void copyBackRemoteProfile(FrameContext& context)
{
    state::FrameState& frame = context.profiles.frame;
    platform::FileSystem& files = context.profiles.machine.fileSystem;
    if (!frame.BL_Remote_Profile) {
        bringLocalBack(context); // where an earlier attempt stopped there
    } else if (!staysHere(context)) {
        giveBack(context);
        if (frame.BL_Local_Stashed)
            bringLocalBack(context);
        else
            files.removeFile(profilePath(context, frame.ST_Remote_Name));
    } else {
        if (frame.BL_Local_Stashed)
            files.removeFile(profile::stashPath(frame));
        frame.BL_Remote_Profile = false;
        frame.BL_Local_Stashed = false;
    }
}

} // namespace vardelin::frame
