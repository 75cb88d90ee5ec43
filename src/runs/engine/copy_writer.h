#pragma once

#include "base/runtime_error.h"
#include "platform/file_system.h"
#include "runs/engine/archive_header.h"
#include "runs/engine/encrypted_copy.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace vardelin::engine {

// Files up to this size are read whole and packed into one frame.
inline constexpr std::uint64_t kWholeFileBytes = 4 * 1024 * 1024;

// Reading the source failed, as against writing the archive: the file is missed and the run goes
// on.
class SourceError : public base::RuntimeError {
public:
    using base::RuntimeError::RuntimeError;
};

// Runs one step on a source and turns its RuntimeError into a SourceError.
template <typename Step>
auto onSource(Step&& step)
{
    try {
        return step();
    } catch (const base::RuntimeError& error) {
        throw SourceError(error.number(), error.subject(), error.reason());
    }
}

// An earlier copy whose frames may be taken over as they are.
struct EarlierBody {
    platform::File& file;
    std::uint64_t bodyOffset = 0;
    std::vector<BodyFrame> frames;
    // Of an encrypted copy: its body, which opens forwards only.
    BodyOpener* opener = nullptr;
};

// Called every 4 MiB inside a file; gives false to stop it.
using Progress = std::function<bool()>;

// Packs copies, one after the other; keeps its compressor and buffers, a few of kLargestFrame, from
// one to the next. For one thread.
class CopyWriter {
public:
    // `key` says whether copies are encrypted, and which slot they carry.
    explicit CopyWriter(int compressionLevel, const WriteKey& key = {});
    ~CopyWriter();
    CopyWriter(const CopyWriter&) = delete;
    CopyWriter& operator=(const CopyWriter&) = delete;

    // The bytes of the whole archive file of a content that is in memory; fills in the header's
    // size, checksum and body. Valid until the next call.
    std::span<const std::byte> packWhole(CopyHeader& header, std::span<const std::byte> content);

    // The bytes of an archive file without a body: links and folder records.
    std::span<const std::byte> packEmpty(CopyHeader header);

    // Reads `source` to its end and writes the whole archive file to `target`, an empty file; fills
    // in the header's size, checksum and body. Holes stay cheap. Where the source grows meanwhile,
    // it stops somewhere behind the old end. False where `progress` stopped it.
    bool packLarge(CopyHeader& header, platform::File& source, platform::File& target,
                   const EarlierBody* earlier, const Progress& progress);

    // Reads `source` to its end and writes it as it is, holes included; fills in size and checksum.
    bool copyPlain(CopyHeader& header, platform::File& source, platform::File& target,
                   const Progress& progress);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// The frames of an archive file that is open for reading; empty where it has no index. `fileKey` is
// that of an encrypted copy, else null. Raises 57 for a damaged index.
std::vector<BodyFrame> readIndex(platform::File& file, const CopyHeader& header,
                                 std::uint64_t bodyOffset, const SecretKey* fileKey = nullptr);

} // namespace vardelin::engine
