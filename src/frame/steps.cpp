#include "frame/steps.h"

#include "base/text.h"
#include "frame/frame_texts.h"

#include <algorithm>
#include <fmt/format.h>

namespace vardelin::frame {

using state::FrameState;

namespace {

constexpr std::size_t kExtensionLength = 4;

} // namespace

std::string profilesFolder(const FrameContext& context)
{
    return context.profiles.frame.ST_App_Path + "\\Profiles";
}

std::string profilePath(const FrameContext& context, std::string_view name)
{
    return platform::joinPath(profilesFolder(context), name);
}

void tell(const FrameContext& context, std::string_view text)
{
    context.profiles.machine.messageBoxes.show(text, frame_texts::kTitle);
}

void refuse(const FrameContext& context, std::string_view text)
{
    context.profiles.machine.messageBoxes.show(text, frame_texts::kTitle, platform::Buttons::Ok,
                                               platform::Icon::Exclamation);
}

bool ask(const FrameContext& context, std::string_view text)
{
    return context.profiles.machine.messageBoxes.show(
               text, frame_texts::kTitle, platform::Buttons::YesNo, platform::Icon::Question) ==
           platform::Answer::Yes;
}

std::string_view stemOf(std::string_view name)
{
    return name.substr(0, name.size() - std::min(kExtensionLength, name.size()));
}

std::string_view currentName(const FrameState& frame)
{
    return base::afterLast(std::string_view(frame.ST_Current_Profile_Path), "\\");
}

void captionEditor(FrameContext& context, std::string_view name)
{
    context.form.window.caption = fmt::format("{}{}", stemOf(name), frame_texts::kProfileCaption);
}

void forgetProfile(FrameContext& context)
{
    FrameState& frame = context.profiles.frame;
    frame.bPwdChangeMode = false;
    frame.bPwdConfirmMode = false;
    frame.bPwdDialogCancelled = false;
    frame.bPwdReviewMode = false;
    frame.bPwdPassed = false;
    frame.sGatePassword.clear();
    frame.sHintQuestion.clear();
    frame.sHintAnswer.clear();
    frame.sOldIdleTime.clear();
    frame.BL_Dest_Moved = false;
    context.profiles.store.scalars.sPreviousDestination.clear();
}

void enableLeaving(FrameContext& context)
{
    constexpr std::size_t kCloseButton = 6;
    context.main.Toolbar1(kCloseButton).enabled = true;
    context.main.mnuClose.enabled = true;
    context.main.mnuProfile.enabled = true;
}

} // namespace vardelin::frame
