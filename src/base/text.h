#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Text is bytes. Every rule here works on bytes 0 to 255 that map to themselves; case rules touch
// the ASCII letters alone, so UTF-8 text passes through unharmed.
namespace vardelin::base {

// Without the blanks (byte 32, nothing else) at both ends, at the start, at the end.
std::string_view trim(std::string_view text);
std::string_view trimStart(std::string_view text);
std::string_view trimEnd(std::string_view text);

std::string upperAscii(std::string_view text);
std::string lowerAscii(std::string_view text);
bool equalsIgnoringCase(std::string_view a, std::string_view b);
// Three-way comparison after upper-casing ASCII: negative, 0 or positive.
int compareIgnoringCase(std::string_view a, std::string_view b);
bool containsIgnoringCase(std::string_view text, std::string_view part);
bool endsWithIgnoringCase(std::string_view text, std::string_view tail);
bool startsWithIgnoringCase(std::string_view text, std::string_view head);

// The pieces between separators: n separators give n + 1 pieces, empty ones included. The empty
// text gives no piece. The views live as long as `text` does.
std::vector<std::string_view> split(std::string_view text, std::string_view separator);
std::string join(const std::vector<std::string>& pieces, std::string_view separator);
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

// Text before the first `mark`, or the whole text where there is none.
std::string_view beforeFirst(std::string_view text, std::string_view mark);
// Text behind the first `mark`, or empty where there is none.
std::string_view afterFirst(std::string_view text, std::string_view mark);
// Text before the last `mark`, or the whole text where there is none.
std::string_view beforeLast(std::string_view text, std::string_view mark);
// Text behind the last `mark`, or the whole text where there is none.
std::string_view afterLast(std::string_view text, std::string_view mark);

std::string reversed(std::string_view text);
// Left-justified in `width` bytes: padded with blanks, cut where it is longer.
std::string padded(std::string_view text, std::size_t width);

// The number at the start of a text: blanks are skipped, then a sign, digits and one dot are taken;
// what follows is ignored. No number gives 0.
double val(std::string_view text);

// Rounds half to even at `digits` decimals (0 to 15).
double round(double value, int digits);

// Shortest decimal text without trailing zeros and without an exponent in the range that sizes and
// percentages have: 1.5, 12, 0.25.
std::string numberText(double value);

// Decimal digits only, no sign, no blanks; false leaves `out` as it was. Overflow is false, too.
bool parseUnsigned(std::string_view text, std::uint64_t& out);

// "The folder's order": ASCII case is ignored and runs of digits compare as numbers, so that
// `_Ver1_` stands before `_Ver12_`. A strict weak order; texts that compare equal fall back to
// their bytes.
bool naturalLess(std::string_view a, std::string_view b);

// Whether `name` matches `pattern`, where `*` stands for any run of bytes, none included. ASCII
// case is ignored. A trailing `.*` also matches a name without a dot.
bool matchesPattern(std::string_view name, std::string_view pattern);

} // namespace vardelin::base
