#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace vardelin::base {

// The classic run-time error numbers. They are shown to the person in the error dialog and tested
// by number in the procedures that resume after an error, so they never change.
namespace error_number {
inline constexpr int kInvalidCall = 5;
inline constexpr int kOverflow = 6;
inline constexpr int kSubscript = 9;
inline constexpr int kDivisionByZero = 11;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kFileNotFound = 53;
inline constexpr int kFileAlreadyOpen = 55;
inline constexpr int kDeviceIo = 57;
inline constexpr int kFileExists = 58;
inline constexpr int kDiskFull = 61;
inline constexpr int kPastEnd = 62;
inline constexpr int kPermissionDenied = 70;
inline constexpr int kPathAccess = 75;
inline constexpr int kPathNotFound = 76;
inline constexpr int kDuplicateKey = 457;
inline constexpr int kElementNotFound = 35600;
} // namespace error_number

// The classic description of a number, such as "File not found" for 53; an unknown number gives
// "Application-defined or object-defined error".
std::string_view descriptionOf(int number);

// The one exception type of the logic. Carries the classic number, the thing concerned (a path, a
// key, a profile name; may be empty) and the system's own reason (may be empty).
class RuntimeError : public std::exception {
public:
    explicit RuntimeError(int number, std::string subject = {}, std::string reason = {});

    int number() const noexcept { return m_number; }
    // The classic description alone, as the error dialog shows it.
    std::string_view description() const { return descriptionOf(m_number); }
    const std::string& subject() const noexcept { return m_subject; }
    const std::string& reason() const noexcept { return m_reason; }
    // "<description>: <subject> (<reason>)", leaving out what is empty.
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    int m_number;
    std::string m_subject;
    std::string m_reason;
    std::string m_what;
};

// The error state of a procedure that resumes after errors and looks at them at fixed points.
// The newest error replaces the one before, and a step that succeeds leaves it standing.
struct PendingError {
    int number = 0;
    std::string description;
    std::string subject;

    explicit operator bool() const noexcept { return number != 0; }
    void clear() { *this = {}; }
    void set(const RuntimeError& error);

    // Runs one step. A RuntimeError is kept here and the step gives false; other exceptions pass.
    template <typename Step>
    bool attempt(Step&& step)
    {
        try {
            step();
            return true;
        } catch (const RuntimeError& error) {
            set(error);
            return false;
        }
    }
};

} // namespace vardelin::base
