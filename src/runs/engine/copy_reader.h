#pragma once

#include "platform/file_system.h"
#include "runs/engine/archive_header.h"
#include "runs/engine/key_slot.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace vardelin::engine {

// Takes the content in order, piece by piece; a piece is valid during the call.
using ContentSink = std::function<void(std::span<const std::byte>)>;

// Reads copies back, plain and encrypted ones, and checks all that can be checked; keeps its
// decoder and buffers. One thread.
class CopyReader {
public:
    // `ring` opens encrypted copies and must outlive the reader; null opens those alone that were
    // encrypted without a password.
    explicit CopyReader(const KeyRing* ring = nullptr);
    ~CopyReader();
    CopyReader(const CopyReader&) = delete;
    CopyReader& operator=(const CopyReader&) = delete;

    // The header alone, with its own checksum verified. Raises 57 with the cause for a damaged one,
    // and PasswordError for an encrypted one that the ring does not open.
    CopyHeader readHeader(platform::File& file);
    // The key slot alone, which needs no password. Raises 57 likewise.
    KeySlot readSlot(platform::File& file);

    // Of the header that was read last: where its body lies in the file, and the key that opens it
    // (null where it is not encrypted; valid until the next header).
    std::uint64_t bodyOffset() const;
    const SecretKey* fileKey() const;

    // The content behind a header that readHeader gave last, on the same file. The sink may have
    // had pieces when a damage is found at last: whoever writes them keeps them under a temporary
    // name until this returns. Raises 57 with the cause.
    void readContent(platform::File& file, const CopyHeader& header, const ContentSink& sink);
    // Both.
    CopyHeader read(platform::File& file, const ContentSink& sink);

    // A copy that is stored as it is: gives its content and raises 57 where size or checksum
    // differ.
    void readPlain(platform::File& file, const archive::CopyMeta& expected,
                   const ContentSink& sink);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vardelin::engine
