#pragma once

#include "base/runtime_error.h"
#include "platform/file_system.h"
#include "runs/engine/archive_header.h"
#include "runs/engine/key_slot.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// An encrypted copy is
//
//   outer header | sealed body | sealed index, only behind two or more zstd frames
//
// The outer header is a frame like a plain copy's header, so that a file's kind can be told. It
// holds the key slot and, sealed, the whole header frame of a plain copy; the body is the zstd
// frames of a plain copy in a secretstream, and the index is that of a plain copy, sealed by itself
// so that it can be read without the body. Each file has a random key of its own, so nothing of one
// file passes in another. docs/archive-format.md has the byte tables.
namespace vardelin::engine {

inline constexpr std::size_t kChunkBytes = 64 * 1024; // of plain body, sealed together

// The copy was saved under another password than the key ring's.
class PasswordError : public base::RuntimeError {
public:
    PasswordError();
};

// What a run puts on its copies.
struct WriteKey {
    const KeyRing* ring = nullptr; // must outlive whatever writes; null: no password, plain copies
    KeySlot slot;
    std::uint64_t tag = 0; // of the slot, for names
    bool encrypt = false;
};

// What an outer header opens to.
struct OpenedHeader {
    CopyHeader header;
    SecretKey fileKey;
};

// Whether a file that begins so is an encrypted copy; `head` is 12 bytes or fewer.
bool isEncrypted(std::span<const std::byte> head);
// The length of the outer header for a plain header of this length.
std::size_t outerHeaderBytes(std::size_t plainHeaderBytes);
// The whole outer header, under fresh nonces at every call.
std::string encodeOuterHeader(const CopyHeader& header, const WriteKey& key,
                              const SecretKey& fileKey);
// The key slot of a whole outer header, without any password.
KeySlot slotOfOuterHeader(std::span<const std::byte> bytes);
// Raises PasswordError where the ring does not open the slot, and 57 with the cause for whatever is
// not as written.
OpenedHeader openOuterHeader(std::span<const std::byte> bytes, const KeyRing& ring);

// The index frame, sealed, and back.
std::string sealIndex(const std::string& indexFrame, const SecretKey& fileKey);
std::string openIndex(std::span<const std::byte> sealed, const SecretKey& fileKey);

// What a body of this length takes in the file; 0 for none. The same for the sealed index.
std::uint64_t sealedBodyBytes(std::uint64_t bodyBytes);
std::uint64_t sealedIndexBytes(std::uint64_t indexFrameBytes);

// Seals a body that is given piece by piece.
class BodySealer {
public:
    explicit BodySealer(const SecretKey& fileKey);
    ~BodySealer();
    BodySealer(const BodySealer&) = delete;
    BodySealer& operator=(const BodySealer&) = delete;

    // Appends to `out` what is ready to be written. A body is never empty.
    void add(std::span<const std::byte> plain, std::vector<std::byte>& out);
    void finish(std::vector<std::byte>& out);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// Reads a sealed body forwards. Every byte that it gives is authentic; raises 57 where the file is
// not as written.
class BodyOpener {
public:
    // `offset` is where the sealed body lies in the file, `bodyBytes` its plain length.
    BodyOpener(platform::File& file, std::uint64_t offset, std::uint64_t bodyBytes,
               const SecretKey& fileKey);
    ~BodyOpener();
    BodyOpener(const BodyOpener&) = delete;
    BodyOpener& operator=(const BodyOpener&) = delete;

    std::uint64_t position() const; // in the plain body
    // Fills the buffer, or as much of it as is left; 0 only at the body's end.
    std::size_t read(std::span<std::byte> buffer);
    // Passes over bytes up to a position that is not behind the present one.
    void skipTo(std::uint64_t position);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vardelin::engine
