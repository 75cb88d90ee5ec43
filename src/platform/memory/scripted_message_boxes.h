#pragma once

#include "platform/machine.h"
#include "platform/memory/scripted_double.h"

#include <deque>

namespace vardelin::platform {

// Message boxes that nobody sees: each is recorded, and answered by the next of `answers`; when
// those are used up, by `defaultAnswer`, or, where that is not set, by Ok or No. For one thread.
class ScriptedMessageBoxes final : public MessageBoxes, public ScriptedDouble {
public:
    struct Shown {
        std::string text;
        std::string title;
        Buttons buttons = Buttons::Ok;
        Icon icon = Icon::None;
        friend bool operator==(const Shown&, const Shown&) = default;
    };
    std::vector<Shown> shown;
    std::deque<Answer> answers;
    std::optional<Answer> defaultAnswer;

    // The texts alone, in their order.
    std::vector<std::string> texts() const;

    Answer show(std::string_view text, std::string_view title, Buttons buttons, Icon icon) override;
};

} // namespace vardelin::platform
