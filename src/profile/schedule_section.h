#pragma once

#include "base/dates.h"
#include "profile/line_input.h"
#include "state/profile_editor_state.h"

namespace vardelin::profile {

// Reads a profile's {Scheduling} section behind its opening line into the editor: the start, the
// pattern with its interval and time, and its lists, which shrink to the saved values, all
// selected. Disables what it fills and leaves the retention options that the pattern allows.
// `startDate` becomes the date that the start's picker shows.
//
// Dates and times that are none leave their picker; an unknown pattern leaves the pattern, and
// reading goes on with a further start.
void readScheduleSection(LineInput& lines, state::ProfileEditorState& editor,
                         base::Date& startDate);

} // namespace vardelin::profile
