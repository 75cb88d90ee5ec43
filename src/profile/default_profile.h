#pragma once

#include "profile/profile_context.h"

#include <string>

namespace vardelin::profile {

// Writes, scrambles and schedules `<application folder>\Profiles\Default.vdp`, replacing one that
// is there: the person's documents, daily, beginning in a minute, seven versions kept. Sets
// dStartDate to today. Its text differs from that of a saved profile in small ways that the reader
// accepts: the start date has the month first, some keys have other blanks, and there are no names
// sections.
//
// After an error it ends in the error dialog; where the file cannot be written, the old one stays
// and nothing is scrambled or scheduled.
void DefaultProf(ProfileContext& context);

// The name of the person who is logged on, up to its first NUL; empty where the system does not
// say.
std::string GetRegUserName(ProfileContext& context);

} // namespace vardelin::profile
