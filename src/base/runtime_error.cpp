#include "base/runtime_error.h"

#include <utility>

namespace vardelin::base {

std::string_view descriptionOf(int number)
{
    using namespace error_number;
    switch (number) {
    case kInvalidCall:
        return "Invalid procedure call or argument";
    case kOverflow:
        return "Overflow";
    case kSubscript:
        return "Subscript out of range";
    case kDivisionByZero:
        return "Division by zero";
    case kTypeMismatch:
        return "Type mismatch";
    case kFileNotFound:
        return "File not found";
    case kFileAlreadyOpen:
        return "File already open";
    case kDeviceIo:
        return "Device I/O error";
    case kFileExists:
        return "File already exists";
    case kDiskFull:
        return "Disk full";
    case kPastEnd:
        return "Input past end of file";
    case kPermissionDenied:
        return "Permission denied";
    case kPathAccess:
        return "Path/File access error";
    case kPathNotFound:
        return "Path not found";
    case kDuplicateKey:
        return "This key is already associated with an element of this collection";
    case kElementNotFound:
        return "Element not found";
    default:
        return "Application-defined or object-defined error";
    }
}

RuntimeError::RuntimeError(int number, std::string subject, std::string reason)
    : m_number(number), m_subject(std::move(subject)), m_reason(std::move(reason)),
      m_what(descriptionOf(number))
{
    if (!m_subject.empty())
        m_what += ": " + m_subject;
    if (!m_reason.empty())
        m_what += " (" + m_reason + ")";
}

void PendingError::set(const RuntimeError& error)
{
    number = error.number();
    description = error.description();
    subject = error.subject();
}

} // namespace vardelin::base
