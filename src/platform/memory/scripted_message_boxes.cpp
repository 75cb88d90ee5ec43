#include "platform/memory/scripted_message_boxes.h"

namespace vardelin::platform {

std::vector<std::string> ScriptedMessageBoxes::texts() const
{
    std::vector<std::string> result;
    result.reserve(shown.size());
    for (const Shown& box : shown)
        result.push_back(box.text);
    return result;
}

Answer ScriptedMessageBoxes::show(std::string_view text, std::string_view title, Buttons buttons,
                                  Icon icon)
{
    script().enter("boxes.show", text);
    shown.push_back({std::string(text), std::string(title), buttons, icon});
    if (answers.empty())
        return defaultAnswer.value_or(buttons == Buttons::YesNo ? Answer::No : Answer::Ok);
    const Answer answer = answers.front();
    answers.pop_front();
    return answer;
}

} // namespace vardelin::platform
