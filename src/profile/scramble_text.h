#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The form in which a profile lies on the disk: unreadable at a glance, and no more than that.
// There is no key. Each line is turned around and every byte moved up by a shift that depends on
// the line's length n alone: n mod 10, or n / 10 where that is 0. Lines end in CR LF; a CR or LF
// alone is a byte like any other. A file has as many lines in one form as in the other, each as
// long.
//
// Bytes stop at 255, so a byte above 255 - shift does not come back: lossyLines() tells where.
namespace vardelin::profile {

// What each byte of a line of `length` bytes is moved by; 0 for an empty line alone.
std::size_t lineShift(std::size_t length);

// One line without its line end. Unscrambling drops a byte that would fall below 0, which only a
// line that was never scrambled, or one with a shift above 255, can hold.
std::string scrambleLine(std::string_view line);
std::string unscrambleLine(std::string_view line);

// The second half of either: what is done to a line that was turned around already.
std::string shiftedUp(std::string_view reversedLine);
std::string shiftedDown(std::string_view reversedLine);

// Every line of a file. The result ends in CR LF unless it is empty, whether the input does or not.
std::string scrambleText(std::string_view plainText);
std::string unscrambleText(std::string_view scrambledText);

// The lines of a file, without their line ends; what stands behind the last CR LF is a line unless
// it is empty. The views live as long as `text` does.
std::vector<std::string_view> fileLines(std::string_view text);

// The numbers, from 1, of the lines that scrambling and unscrambling would not bring back as they
// are: those with a byte at the stop, and those whose scrambled form would hold a line end.
std::vector<std::size_t> lossyLines(std::string_view plainText);
// Such numbers in a sentence: `line 3`, `lines 3, 4`, `lines 1, 2, (...) and 7 more`.
std::string lineNumbersText(std::span<const std::size_t> numbers);

} // namespace vardelin::profile
