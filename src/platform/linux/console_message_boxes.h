#pragma once

#include "platform/machine.h"

#include <iosfwd>

namespace vardelin::platform {

// Message boxes of a terminal program: each is one line "title: text". A question for Yes or No is
// asked where a person can answer, and is No where nobody can; everything else is Ok.
class ConsoleMessageBoxes final : public MessageBoxes {
public:
    // Prints to the standard error stream and asks on the standard input if that is a terminal.
    ConsoleMessageBoxes();
    // Keeps references to the streams, which outlive it.
    ConsoleMessageBoxes(std::istream& input, std::ostream& output, bool interactive);

    Answer show(std::string_view text, std::string_view title, Buttons buttons, Icon icon) override;

private:
    std::istream& m_input;
    std::ostream& m_output;
    bool m_interactive;
};

} // namespace vardelin::platform
