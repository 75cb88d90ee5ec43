#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

// What opens a copy. Every copy that was saved while the profile had a password carries a key slot:
// enough to tell, from the password alone, whether it is the right one, and in an encrypted copy to
// unwrap the key of that file. Nothing else is stored anywhere, so no second file can be lost.
//
//   password --Argon2id(salt, cost)--> master key --KDF--> wrapping key, verifier key, tag key
//
// docs/archive-format.md has the bytes.
namespace vardelin::engine {

// Of one Argon2id derivation. Stored with every slot, so it can be raised at any time.
struct KeyCost {
    std::uint32_t passes = 3;
    std::uint32_t memoryKiB = 64 * 1024;
    friend bool operator==(const KeyCost&, const KeyCost&) = default;
};

// A slot that asks for more than this is refused before anything is allocated.
inline constexpr KeyCost kHighestCost{20, 1024 * 1024};
inline constexpr std::uint32_t kLowestMemoryKiB = 8; // what Argon2id itself asks for
// Passwords change seldom; a run that met more salts than this would be kept busy on purpose.
inline constexpr std::size_t kMostSalts = 64;

struct KeySlot {
    // Stored by number: never renumber.
    enum class Kind : std::uint8_t { None = 0, Password = 1 };

    Kind kind = Kind::None; // None: no password was in force, and all else is zero
    KeyCost cost{0, 0};
    std::array<std::uint8_t, 16> salt{};
    std::array<std::uint8_t, 16> verifier{};

    friend bool operator==(const KeySlot&, const KeySlot&) = default;
};

inline constexpr std::size_t kSlotBytes = 44;
std::string encodeSlot(const KeySlot& slot);
// Reads kSlotBytes; raises 57 with the cause for an unknown kind or a cost out of bounds.
KeySlot decodeSlot(std::span<const std::byte> bytes);

// 32 secret bytes that are wiped when they go.
class SecretKey {
public:
    SecretKey() = default; // zeros
    static SecretKey random();
    ~SecretKey();
    SecretKey(const SecretKey&) = default;
    SecretKey& operator=(const SecretKey&) = default;

    std::uint8_t* data() { return m_bytes.data(); }
    const std::uint8_t* data() const { return m_bytes.data(); }
    static constexpr std::size_t size() { return 32; }

private:
    std::array<std::uint8_t, 32> m_bytes{};
};

// A file's key as its slot carries it: nonce (24), wrapped key (32), authenticator (16). Without a
// password the key stands there as it is, between zeros.
inline constexpr std::size_t kWrappedKeyBytes = 72;
using WrappedKey = std::array<std::uint8_t, kWrappedKeyBytes>;

// One password, or none, and the keys derived from it, one derivation a salt and cost. May be used
// by several threads at once; a derivation lets the others wait. Holds its secrets in memory of
// their own that is wiped.
class KeyRing {
public:
    // An empty password is none.
    explicit KeyRing(std::string_view password = {});
    ~KeyRing();
    KeyRing(const KeyRing&) = delete;
    KeyRing& operator=(const KeyRing&) = delete;

    bool hasPassword() const;
    // Whether the password is the slot's; true for a slot of kind None. Derives where it must, and
    // never without a password. Raises 57 where memory for it is lacking or kMostSalts is passed.
    bool opens(const KeySlot& slot) const;
    // A slot of this password under a new salt; of kind None without a password.
    KeySlot newSlot(const KeyCost& cost) const;

    // 48 bits that stand for the password under this slot's salt in file names; never 0 with a
    // password, always 0 without. They tell nothing to somebody who does not derive a key.
    std::uint64_t tagOf(const KeySlot& slot) const;

    WrappedKey wrap(const KeySlot& slot, const SecretKey& fileKey) const;
    // For a slot that the ring opens. Raises 57 where the wrapped key is not as written.
    SecretKey unwrap(const KeySlot& slot, const WrappedKey& wrapped) const;

    std::size_t derivations() const; // so far

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// Fills from the system's source of randomness.
void fillRandom(std::span<std::uint8_t> bytes);
// Overwrites a text that held a secret and empties it.
void wipe(std::string& text);

} // namespace vardelin::engine
