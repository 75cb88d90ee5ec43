#pragma once

#include "ctl/session.h"

#include <string>
#include <string_view>

namespace vardelin::ctl {

// What is warned of wherever a profile encrypts without a password.
inline constexpr std::string_view kOpenKeyWarning =
    "encryption without a password guards against casual reading only: the key stands in each "
    "copy, "
    "so whoever has the archive can read it";

// The whole of a typed file, or of standard input for "-".
std::string readFile(const Session& session, const std::string& typed);
// The first line of it, without its end. A password never comes from an argument: those can be
// seen by everybody on the machine.
std::string secretFrom(const Session& session, const std::string& typed);

} // namespace vardelin::ctl
