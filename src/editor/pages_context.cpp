#include "editor/pages_context.h"

namespace vardelin::editor {

void noteChange(state::FrameState& frame)
{
    if (frame.BL_Edit_Mode)
        frame.BL_Edit_Changed = true;
    if (frame.BL_New_Mode)
        frame.BL_New_Changed = true;
}

void tell(const PagesContext& context, std::string_view text)
{
    context.machine.messageBoxes.show(text, kTitle);
}

bool ask(const PagesContext& context, std::string_view text)
{
    return context.machine.messageBoxes.show(text, kTitle, platform::Buttons::YesNo,
                                             platform::Icon::Question) == platform::Answer::Yes;
}

int digitsOnly(int key)
{
    return (key >= '0' && key <= '9') || key == kBackspaceKey ? key : 0;
}

int refuseKeys(int key, std::string_view refused)
{
    const bool isText = key >= 32 && key < 127;
    return isText && refused.find(static_cast<char>(key)) != std::string_view::npos ? 0 : key;
}

void digitBoxMouseDown(PagesContext& context, int button)
{
    constexpr int kRightButton = 2;
    if (button == kRightButton)
        context.window.clearClipboard();
}

} // namespace vardelin::editor
