#include "platform/linux/console_message_boxes.h"

#include "base/text.h"

#include <iostream>
#include <unistd.h>

namespace vardelin::platform {

ConsoleMessageBoxes::ConsoleMessageBoxes()
    : ConsoleMessageBoxes(std::cin, std::cerr, ::isatty(STDIN_FILENO) == 1)
{
}

ConsoleMessageBoxes::ConsoleMessageBoxes(std::istream& input, std::ostream& output,
                                         bool interactive)
    : m_input(input), m_output(output), m_interactive(interactive)
{
}

Answer ConsoleMessageBoxes::show(std::string_view text, std::string_view title, Buttons buttons,
                                 Icon)
{
    m_output << title << ": " << text;
    // The boxes with Ok and Cancel only report, so they stop nobody.
    if (buttons != Buttons::YesNo) {
        m_output << std::endl;
        return Answer::Ok;
    }
    if (!m_interactive) {
        m_output << " [no]" << std::endl;
        return Answer::No;
    }
    m_output << " [y/N] " << std::flush;
    std::string line;
    std::getline(m_input, line);
    const std::string answer = base::lowerAscii(base::trim(line));
    return answer == "y" || answer == "yes" ? Answer::Yes : Answer::No;
}

} // namespace vardelin::platform
