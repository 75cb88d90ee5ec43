#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// How things are written for a person. Text is bytes; what is no valid UTF-8 is shown and not
// passed on to the terminal.
namespace vardelin::ctl {

// Bytes that are no valid UTF-8, control characters and DEL as `\xNN`; all else as it is.
std::string visibleText(std::string_view bytes);
// Bytes that are no valid UTF-8 as U+FFFD, one for each.
std::string replacedText(std::string_view bytes);
bool isUtf8(std::string_view bytes);

// Columns of a valid UTF-8 text, one for each code point.
std::size_t columnsOf(std::string_view utf8);
// At most `columns` wide, its middle replaced by an ellipsis where it is longer.
std::string elided(std::string_view utf8, std::size_t columns);

// `812 B`, `1.5 KiB`, `20.0 MiB`.
std::string sizeText(std::uint64_t bytes);
// `1 file`, `2 files`.
std::string countText(std::uint64_t count, std::string_view one, std::string_view many);

enum class Align { Left, Right };

// Lines of columns that stand below each other, two blanks between, no blanks at a line's end. The
// first row is the heading. Cells are valid UTF-8.
class Table {
public:
    explicit Table(std::vector<Align> columns) : m_columns(std::move(columns)) {}

    void add(std::vector<std::string> row) { m_rows.push_back(std::move(row)); }
    bool hasRows() const { return m_rows.size() > 1; }
    std::string text() const;

private:
    std::vector<Align> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

// Whether `text` matches a pattern of `*` (any bytes), `?` (one character) and literal bytes.
bool matchesGlob(std::string_view text, std::string_view pattern, bool caseSensitive);

} // namespace vardelin::ctl
