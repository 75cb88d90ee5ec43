#pragma once

#include <string_view>

namespace vardelin::trace {

inline constexpr int kFirstMessage = 40001;
inline constexpr int kLastMessage = 40105;

// A numbered text of the error tails, 40001 to 40105, to the letter: people search for these texts,
// so their misspellings stay. Another number is a mistake of the caller and gives an empty text.
std::string_view message(int number);

// What a procedure's error tail says in the dialog: its own sentence, or its name where it has none
// of its own. The view lives as long as `procedure` does.
std::string_view customMessage(std::string_view procedure);

} // namespace vardelin::trace
