#include "platform/linux/errno_error.h"

#include "base/runtime_error.h"

#include <system_error>
#include <utility>

namespace vardelin::platform {

namespace error_number = base::error_number;

int classicNumber(int systemError, Missing missing)
{
    switch (systemError) {
    case ENOENT:
        return missing == Missing::Folder ? error_number::kPathNotFound
                                          : error_number::kFileNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EAGAIN: // a lock or a lease that somebody else holds
        return error_number::kPermissionDenied;
    case EEXIST:
        return error_number::kFileExists;
    case ENOSPC:
    case EDQUOT:
        return error_number::kDiskFull;
    case ENOTDIR:
    case EISDIR:
    case ENOTEMPTY:
    case ENAMETOOLONG:
    case ELOOP:
    case ENXIO: // a pipe without a reader, a socket
        return error_number::kPathAccess;
    default:
        return error_number::kDeviceIo;
    }
}

void throwSystemError(int systemError, std::string subject, Missing missing)
{
    // The category's text is the system's own and, other than strerror, safe between threads.
    throw base::RuntimeError(classicNumber(systemError, missing), std::move(subject),
                             std::system_category().message(systemError));
}

} // namespace vardelin::platform
