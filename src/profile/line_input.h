#pragma once

#include "profile/profile_format.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vardelin::profile {

// The lines of a file's text. CR LF ends a line and nothing else does; what stands behind the last
// CR LF is a line unless it is empty.
class LineInput {
public:
    explicit LineInput(std::string text);

    bool atEnd() const noexcept { return m_at >= m_text.size(); }
    // The next line without its end; none at the end of the text. Valid as long as this object.
    std::optional<std::string_view> next();
    // How many line ends the text has: the highest index when it is split at them.
    std::size_t highestIndex() const;

private:
    std::string m_text;
    std::size_t m_at = 0;
};

// The next line of a section of a profile: none at its closing line, in any case, and none at the
// end of the text, so that a section that never closes comes to an end.
std::optional<std::string_view> sectionLine(LineInput& lines, const format::Section& section);

} // namespace vardelin::profile
