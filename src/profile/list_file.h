#pragma once

#include "profile/profile_context.h"

#include <string_view>

// Which profile was on show last, and which one is primary: pairs of lines in
// `<application folder>\Data\Other_Dsk.txt`, text with CR LF.
//
//   [Recent Profile]  or  [Primary Profile]     exactly so
//   Default.vdp                                 a file name with its extension, no folder
//
// New pairs are appended; only the first pair of a kind counts. A marker on the last line has an
// empty value. To replace an entry, remove it and set it.
//
// The four that trace end in the error dialog after an error, a missing list file included, and the
// caller goes on. The two setters raise.
namespace vardelin::profile {

// Looks for the recent pair. Where `Profiles\<value>` is a file, ST_Recent_Profile of the frame is
// the value and `found` true. Where it is not, the entry is removed; `found` is false.
void IsRecentProfile(ProfileContext& context, bool& found);
// Appends a pair; adds ".vdp" to a name that does not hold it in any case. Makes the list file
// where it is missing; raises 76 where its folder is.
void SetRecentProfile(ProfileContext& context, std::string_view name);
// Removes all recent pairs.
void RemoveRecVdpName(ProfileContext& context);

// The same for the primary pair and ST_Primary_Profile.
void IsPrProFileExists(ProfileContext& context, bool& found);
// Appends the name as it stands.
void SetPrimaryProfile(ProfileContext& context, std::string_view name);
// Removes the first primary pair and all that stands behind it, recent pairs included: who calls
// this sets anew what is to stay.
void RemoveVdpName(ProfileContext& context);

} // namespace vardelin::profile
