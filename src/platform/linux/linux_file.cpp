#include "platform/linux/linux_file.h"

#include "base/runtime_error.h"
#include "platform/linux/errno_error.h"
#include "platform/linux/linux_file_info.h"

#include <fcntl.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <utility>

namespace vardelin::platform {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

constexpr std::size_t kCopyBlockBytes = std::size_t{256} * 1024;
constexpr std::uint64_t kKernelCopyBytes = std::uint64_t{1} << 30; // well below the kernel's limit

off_t offsetOf(std::uint64_t value)
{
    return static_cast<off_t>(value);
}

// Whether the kernel cannot copy between these two files, so that reading and writing has to do.
bool cannotCopyInKernel(int systemError)
{
    return systemError == EXDEV || systemError == EINVAL || systemError == ENOSYS ||
           systemError == EOPNOTSUPP || systemError == EBADF || systemError == EPERM;
}

} // namespace

LinuxFile::LinuxFile(UniqueFd fd, std::string subject, bool appends)
    : m_fd(std::move(fd)), m_subject(std::move(subject)), m_appends(appends)
{
    struct stat details;
    check(::fstat(m_fd.get(), &details) == 0);
    if (!S_ISREG(details.st_mode))
        throw RuntimeError(error_number::kPathAccess, m_subject, "not a regular file");
}

void LinuxFile::check(bool succeeded) const
{
    if (!succeeded)
        throwSystemError(errno, m_subject);
}

std::size_t LinuxFile::read(std::span<std::byte> buffer)
{
    const std::size_t got = readAt(m_cursor, buffer);
    m_cursor += got;
    return got;
}

std::size_t LinuxFile::readAt(std::uint64_t offset, std::span<std::byte> buffer)
{
    const ssize_t got = retried(
        [&] { return ::pread(m_fd.get(), buffer.data(), buffer.size(), offsetOf(offset)); });
    check(got >= 0);
    return static_cast<std::size_t>(got);
}

void LinuxFile::write(std::span<const std::byte> bytes)
{
    writeAt(m_cursor, bytes);
    m_cursor += bytes.size();
}

void LinuxFile::writeAt(std::uint64_t offset, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t put = retried(
            [&] { return ::pwrite(m_fd.get(), bytes.data(), bytes.size(), offsetOf(offset)); });
        check(put >= 0);
        if (put == 0)
            throw RuntimeError(error_number::kDeviceIo, m_subject, "the device takes no bytes");
        bytes = bytes.subspan(static_cast<std::size_t>(put));
        offset += static_cast<std::uint64_t>(put);
    }
}

void LinuxFile::resize(std::uint64_t sizeBytes)
{
    check(retried([&] { return ::ftruncate(m_fd.get(), offsetOf(sizeBytes)); }) == 0);
}

void LinuxFile::flush()
{
    check(retried([&] { return ::fsync(m_fd.get()); }) == 0);
}

FileInfo LinuxFile::info()
{
    FileInfo result;
    check(readInfo(m_fd.get(), "", result));
    return result;
}

std::optional<Extent> LinuxFile::nextData(std::uint64_t offset)
{
    const off_t data = ::lseek(m_fd.get(), offsetOf(offset), SEEK_DATA);
    if (data >= 0) {
        const off_t hole = ::lseek(m_fd.get(), data, SEEK_HOLE);
        check(hole >= 0);
        return Extent{static_cast<std::uint64_t>(data), static_cast<std::uint64_t>(hole - data)};
    }
    if (errno == ENXIO)
        return std::nullopt;
    check(errno == EINVAL || errno == EOPNOTSUPP);
    const std::uint64_t size = info().sizeBytes;
    if (offset >= size)
        return std::nullopt;
    return Extent{offset, size - offset};
}

void LinuxFile::appendRange(File& source, std::uint64_t offset, std::uint64_t length)
{
    if (auto* const sameKind = dynamic_cast<LinuxFile*>(&source); sameKind != nullptr) {
        const std::uint64_t done = copyInKernel(*sameKind, offset, length);
        offset += done;
        length -= done;
    }
    if (length == 0)
        return;
    std::vector<std::byte> block(std::min<std::uint64_t>(length, kCopyBlockBytes));
    while (length > 0) {
        const auto part = std::span(block).first(std::min<std::uint64_t>(length, block.size()));
        const std::size_t got = source.readAt(offset, part);
        if (got == 0)
            throw RuntimeError(error_number::kDeviceIo, m_subject,
                               "the source ends before the stretch to copy does");
        write(part.first(got));
        offset += got;
        length -= got;
    }
}

std::uint64_t LinuxFile::copyInKernel(LinuxFile& source, std::uint64_t offset, std::uint64_t length)
{
    std::uint64_t done = 0;
    // The kernel refuses to copy into a file that is open for appending.
    while (!m_appends && done < length) {
        off_t from = offsetOf(offset + done);
        off_t to = offsetOf(m_cursor);
        const std::size_t part = std::min(length - done, kKernelCopyBytes);
        const ssize_t copied = retried(
            [&] { return ::copy_file_range(source.m_fd.get(), &from, m_fd.get(), &to, part, 0); });
        if (copied < 0)
            check(cannotCopyInKernel(errno));
        if (copied <= 0)
            break; // some file systems answer 0 where they cannot; reading tells
        done += static_cast<std::uint64_t>(copied);
        m_cursor += static_cast<std::uint64_t>(copied);
    }
    return done;
}

void LinuxFile::setTimes(std::int64_t accessedNs, std::int64_t modifiedNs)
{
    const std::array<timespec, 2> times{timeOf(accessedNs), timeOf(modifiedNs)};
    check(::futimens(m_fd.get(), times.data()) == 0);
}

void LinuxFile::setMode(std::uint32_t mode)
{
    check(::fchmod(m_fd.get(), mode & 07777U) == 0);
}

void LinuxFile::setOwner(std::uint32_t ownerId, std::uint32_t groupId)
{
    check(::fchown(m_fd.get(), ownerId, groupId) == 0);
}

std::vector<ExtendedAttribute> LinuxFile::extendedAttributes()
{
    return readAttributes(m_fd.get(), m_subject);
}

void LinuxFile::setExtendedAttribute(const ExtendedAttribute& attribute)
{
    check(::fsetxattr(m_fd.get(), attribute.name.c_str(), attribute.value.data(),
                      attribute.value.size(), 0) == 0);
}

void LinuxFile::close()
{
    const int fd = m_fd.release();
    if (fd < 0)
        return;
    // An interrupted close has closed: trying again could hit another thread's new file.
    check(::close(fd) == 0 || errno == EINTR);
}

} // namespace vardelin::platform
