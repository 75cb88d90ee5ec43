#pragma once

#include <string_view>

// The texts of the schedule page, to the letter.
namespace vardelin::editor::schedule_texts {

// ---- messages
inline constexpr std::string_view kStartTooEarly =
    "Effective start date should be Equal (or) Greater than current date";

// ---- sentences of the error dialog: DeselectOpt has that of another list
inline constexpr int kDeselectFailed = 40036; // a numbered text of trace/messages.h

} // namespace vardelin::editor::schedule_texts
