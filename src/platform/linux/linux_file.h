#pragma once

#include "platform/file_system.h"
#include "platform/linux/unique_fd.h"

namespace vardelin::platform {

// A regular file by its descriptor. The cursor is kept here and every transfer says its offset, so
// that looking for data and holes does not move it. setExtendedAttribute raises 57 where the file
// system keeps none.
class LinuxFile final : public File {
public:
    // `subject` is the path that errors name. Raises 75 where the descriptor is of no regular file.
    LinuxFile(UniqueFd fd, std::string subject, bool appends);

    std::size_t read(std::span<std::byte> buffer) override;
    std::size_t readAt(std::uint64_t offset, std::span<std::byte> buffer) override;
    void write(std::span<const std::byte> bytes) override;
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void resize(std::uint64_t sizeBytes) override;
    void flush() override;
    FileInfo info() override;
    std::optional<Extent> nextData(std::uint64_t offset) override;
    void appendRange(File& source, std::uint64_t offset, std::uint64_t length) override;
    void setTimes(std::int64_t accessedNs, std::int64_t modifiedNs) override;
    void setMode(std::uint32_t mode) override;
    void setOwner(std::uint32_t ownerId, std::uint32_t groupId) override;
    std::vector<ExtendedAttribute> extendedAttributes() override;
    void setExtendedAttribute(const ExtendedAttribute& attribute) override;
    void close() override;

private:
    void check(bool succeeded) const; // raises what errno says
    // The bytes that went across without passing through this program.
    std::uint64_t copyInKernel(LinuxFile& source, std::uint64_t offset, std::uint64_t length);

    UniqueFd m_fd;
    std::string m_subject;
    std::uint64_t m_cursor = 0;
    bool m_appends;
};

} // namespace vardelin::platform
