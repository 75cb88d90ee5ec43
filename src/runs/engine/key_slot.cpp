#include "runs/engine/key_slot.h"

#include "base/runtime_error.h"
#include "runs/engine/frame_codec.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <tuple>

#include <sodium.h>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

static_assert(crypto_pwhash_SALTBYTES == 16);
static_assert(crypto_kdf_KEYBYTES == SecretKey::size());
static_assert(crypto_aead_xchacha20poly1305_ietf_KEYBYTES == SecretKey::size());
static_assert(crypto_aead_xchacha20poly1305_ietf_NPUBBYTES + SecretKey::size() +
                  crypto_aead_xchacha20poly1305_ietf_ABYTES ==
              kWrappedKeyBytes);

constexpr char kContext[] = "VDAslot_"; // of the key derivation, eight letters
constexpr std::size_t kNonceBytes = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;

// Numbers of the keys below a master key.
enum class Purpose : std::uint8_t { Wrapping = 1, Verifier = 2, Tag = 3 };

void start()
{
    if (sodium_init() < 0)
        throw RuntimeError(base::error_number::kDeviceIo, {}, "the cipher library does not start");
}

// Memory of its own between guard pages, kept from the swap where the system allows, and wiped when
// it goes.
class GuardedBytes {
public:
    explicit GuardedBytes(std::size_t size)
        : m_size(size), m_bytes(static_cast<std::uint8_t*>(sodium_malloc(size == 0 ? 1 : size)))
    {
        if (m_bytes == nullptr)
            throw RuntimeError(base::error_number::kDeviceIo, {}, "no memory for a key");
    }
    ~GuardedBytes() { sodium_free(m_bytes); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    std::uint8_t* data() { return m_bytes; }
    const std::uint8_t* data() const { return m_bytes; }
    std::size_t size() const { return m_size; }

private:
    std::size_t m_size;
    std::uint8_t* m_bytes;
};

using SaltAndCost = std::tuple<std::array<std::uint8_t, 16>, std::uint32_t, std::uint32_t>;

SaltAndCost keyOf(const KeySlot& slot)
{
    return {slot.salt, slot.cost.passes, slot.cost.memoryKiB};
}

std::array<std::uint8_t, 16> keyedHash(const SecretKey& key,
                                       const std::array<std::uint8_t, 16>& salt)
{
    std::array<std::uint8_t, 16> result{};
    crypto_generichash(result.data(), result.size(), salt.data(), salt.size(), key.data(),
                       SecretKey::size());
    return result;
}

bool isCostAllowed(const KeyCost& cost)
{
    return cost.passes >= 1 && cost.passes <= kHighestCost.passes &&
           cost.memoryKiB >= kLowestMemoryKiB && cost.memoryKiB <= kHighestCost.memoryKiB;
}

} // namespace

SecretKey SecretKey::random()
{
    SecretKey key;
    fillRandom(key.m_bytes);
    return key;
}

SecretKey::~SecretKey()
{
    sodium_memzero(m_bytes.data(), m_bytes.size());
}

std::string encodeSlot(const KeySlot& slot)
{
    std::string bytes;
    frame::put(bytes, static_cast<std::uint32_t>(slot.kind));
    frame::put(bytes, slot.cost.passes);
    frame::put(bytes, slot.cost.memoryKiB);
    frame::putBytes(bytes, slot.salt);
    frame::putBytes(bytes, slot.verifier);
    return bytes;
}

KeySlot decodeSlot(std::span<const std::byte> bytes)
{
    frame::Cursor cursor(bytes);
    KeySlot slot;
    const auto kind = cursor.take<std::uint32_t>();
    if (kind > static_cast<std::uint32_t>(KeySlot::Kind::Password))
        frame::refuse("its key slot is of an unknown kind");
    slot.kind = static_cast<KeySlot::Kind>(kind);
    slot.cost.passes = cursor.take<std::uint32_t>();
    slot.cost.memoryKiB = cursor.take<std::uint32_t>();
    slot.salt = cursor.takeArray<16>();
    slot.verifier = cursor.takeArray<16>();
    if (!cursor.empty())
        frame::refuse("its key slot has a wrong length");
    if (slot.kind == KeySlot::Kind::None ? slot != KeySlot{} : !isCostAllowed(slot.cost))
        frame::refuse("its key slot is damaged: the cost of its key is out of bounds");
    return slot;
}

struct KeyRing::State {
    explicit State(std::string_view text) : password(text.size())
    {
        std::copy(text.begin(), text.end(), password.data());
    }

    // The master key of a salt and cost, derived when it is met first.
    SecretKey subkey(const KeySlot& slot, Purpose purpose, bool counted = true)
    {
        if (!isCostAllowed(slot.cost))
            frame::refuse("its key slot is damaged: the cost of its key is out of bounds");
        const std::lock_guard lock(mutex);
        auto& master = masters[keyOf(slot)];
        if (!master) {
            if (counted && masters.size() > kMostSalts) {
                masters.erase(keyOf(slot));
                frame::refuse("the archive was saved under too many different salts for one run");
            }
            master = derive(slot);
        }
        SecretKey key;
        crypto_kdf_derive_from_key(key.data(), SecretKey::size(),
                                   static_cast<std::uint64_t>(purpose), kContext, master->data());
        return key;
    }

    std::unique_ptr<GuardedBytes> derive(const KeySlot& slot)
    {
        auto key = std::make_unique<GuardedBytes>(SecretKey::size());
        const int failed = crypto_pwhash(
            key->data(), key->size(), reinterpret_cast<const char*>(password.data()),
            password.size(), slot.salt.data(), slot.cost.passes,
            static_cast<std::size_t>(slot.cost.memoryKiB) * 1024, crypto_pwhash_ALG_ARGON2ID13);
        if (failed != 0) {
            masters.erase(keyOf(slot));
            frame::refuse("there is not enough memory to derive its key");
        }
        ++derivations;
        return key;
    }

    GuardedBytes password;
    std::mutex mutex; // guards what follows
    std::map<SaltAndCost, std::unique_ptr<GuardedBytes>> masters;
    std::size_t derivations = 0;
};

KeyRing::KeyRing(std::string_view password)
{
    start();
    m_state = std::make_unique<State>(password);
}

KeyRing::~KeyRing() = default;

bool KeyRing::hasPassword() const
{
    return m_state->password.size() > 0;
}

bool KeyRing::opens(const KeySlot& slot) const
{
    if (slot.kind == KeySlot::Kind::None)
        return true;
    if (!hasPassword())
        return false;
    const auto expected = keyedHash(m_state->subkey(slot, Purpose::Verifier), slot.salt);
    return sodium_memcmp(expected.data(), slot.verifier.data(), expected.size()) == 0;
}

KeySlot KeyRing::newSlot(const KeyCost& cost) const
{
    KeySlot slot;
    if (!hasPassword())
        return slot;
    slot.kind = KeySlot::Kind::Password;
    slot.cost = cost;
    fillRandom(slot.salt);
    slot.verifier = keyedHash(m_state->subkey(slot, Purpose::Verifier, false), slot.salt);
    return slot;
}

std::uint64_t KeyRing::tagOf(const KeySlot& slot) const
{
    if (slot.kind == KeySlot::Kind::None || !hasPassword())
        return 0;
    const auto hash = keyedHash(m_state->subkey(slot, Purpose::Tag), slot.salt);
    std::uint64_t tag = 0;
    for (std::size_t i = 0; i < 6; ++i)
        tag |= static_cast<std::uint64_t>(hash[i]) << (8 * i);
    return tag == 0 ? 1 : tag;
}

WrappedKey KeyRing::wrap(const KeySlot& slot, const SecretKey& fileKey) const
{
    WrappedKey wrapped{};
    std::uint8_t* const sealed = wrapped.data() + kNonceBytes;
    if (slot.kind == KeySlot::Kind::None) {
        std::memcpy(sealed, fileKey.data(), SecretKey::size());
        return wrapped;
    }
    fillRandom(std::span(wrapped).first(kNonceBytes));
    const std::string bound = encodeSlot(slot);
    crypto_aead_xchacha20poly1305_ietf_encrypt(sealed, nullptr, fileKey.data(), SecretKey::size(),
                                               reinterpret_cast<const std::uint8_t*>(bound.data()),
                                               bound.size(), nullptr, wrapped.data(),
                                               m_state->subkey(slot, Purpose::Wrapping).data());
    return wrapped;
}

SecretKey KeyRing::unwrap(const KeySlot& slot, const WrappedKey& wrapped) const
{
    SecretKey fileKey;
    const std::uint8_t* const sealed = wrapped.data() + kNonceBytes;
    if (slot.kind == KeySlot::Kind::None) {
        std::memcpy(fileKey.data(), sealed, SecretKey::size());
        return fileKey;
    }
    const std::string bound = encodeSlot(slot);
    if (crypto_aead_xchacha20poly1305_ietf_decrypt(
            fileKey.data(), nullptr, nullptr, sealed, kWrappedKeyBytes - kNonceBytes,
            reinterpret_cast<const std::uint8_t*>(bound.data()), bound.size(), wrapped.data(),
            m_state->subkey(slot, Purpose::Wrapping).data()) != 0)
        frame::refuse("its key is damaged or was changed");
    return fileKey;
}

std::size_t KeyRing::derivations() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->derivations;
}

void fillRandom(std::span<std::uint8_t> bytes)
{
    randombytes_buf(bytes.data(), bytes.size());
}

void wipe(std::string& text)
{
    sodium_memzero(text.data(), text.size());
    text.clear();
}

} // namespace vardelin::engine
