#include "profile/line_input.h"

#include "base/text.h"

#include <utility>

namespace vardelin::profile {

LineInput::LineInput(std::string text) : m_text(std::move(text)) {}

std::optional<std::string_view> LineInput::next()
{
    if (atEnd())
        return std::nullopt;
    const std::string_view rest = std::string_view(m_text).substr(m_at);
    const std::size_t end = rest.find(format::kLineEnd);
    if (end == std::string_view::npos) {
        m_at = m_text.size();
        return rest;
    }
    m_at += end + format::kLineEnd.size();
    return rest.substr(0, end);
}

std::size_t LineInput::highestIndex() const
{
    std::size_t count = 0;
    for (std::size_t at = m_text.find(format::kLineEnd); at != std::string::npos;
         at = m_text.find(format::kLineEnd, at + format::kLineEnd.size()))
        ++count;
    return count;
}

std::optional<std::string_view> sectionLine(LineInput& lines, const format::Section& section)
{
    const auto line = lines.next();
    if (!line || base::equalsIgnoringCase(*line, section.closing))
        return std::nullopt;
    return line;
}

} // namespace vardelin::profile
