#pragma once

#include "platform/file_system.h"
#include "runs/engine/archive_header.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace vardelin::engine {

// Takes the content in order, piece by piece; a piece is valid during the call.
using ContentSink = std::function<void(std::span<const std::byte>)>;

// Reads copies back and checks all that can be checked; keeps its decoder and buffers. One thread.
class CopyReader {
public:
    CopyReader();
    ~CopyReader();
    CopyReader(const CopyReader&) = delete;
    CopyReader& operator=(const CopyReader&) = delete;

    // The header alone, with its own checksum verified. Raises 57 with the cause for a damaged one.
    CopyHeader readHeader(platform::File& file);

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
