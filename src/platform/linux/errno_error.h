#pragma once

#include <cerrno>
#include <string>
#include <string_view>

// The system's error numbers as the classic ones, in one place.
namespace vardelin::platform {

// What a path names where the system says that something is missing.
enum class Missing { File, Folder };

// 53 (or 76 for a folder) missing, 70 rights, read-only or held, 58 exists, 61 full, 75 a path
// fault, 57 for all else.
int classicNumber(int systemError, Missing missing = Missing::File);
// Raises with the system's own words as the reason.
[[noreturn]] void throwSystemError(int systemError, std::string subject,
                                   Missing missing = Missing::File);

// Runs a system call again as long as a signal interrupts it.
template <typename Call>
auto retried(Call&& call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

} // namespace vardelin::platform
