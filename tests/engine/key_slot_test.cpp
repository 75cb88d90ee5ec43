#include "runs/engine/key_slot.h"

#include "base/runtime_error.h"
#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace vardelin::engine {
namespace {

using base::RuntimeError;

constexpr KeyCost kCheap{1, 8};

std::string putNumber(std::string bytes, std::size_t at, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>((value >> (8 * i)) & 0xffU);
    return bytes;
}

TEST(KeySlot, ReadsBackWhole)
{
    const KeyRing ring("secret");
    const KeySlot slot = ring.newSlot({2, 16});
    const std::string bytes = encodeSlot(slot);
    ASSERT_EQ(bytes.size(), kSlotBytes);
    EXPECT_EQ(decodeSlot(platform::asBytes(bytes)), slot);
    EXPECT_EQ(slot.kind, KeySlot::Kind::Password);
    EXPECT_EQ(slot.cost, (KeyCost{2, 16}));
    const std::string none = encodeSlot({});
    EXPECT_EQ(decodeSlot(platform::asBytes(none)), KeySlot{});
    EXPECT_THROW(decodeSlot(platform::asBytes(bytes.substr(0, 43))), RuntimeError);
    EXPECT_THROW(decodeSlot(platform::asBytes(bytes + "x")), RuntimeError);
}

TEST(KeySlot, CostsOutOfBoundsAreRefusedBeforeAnythingIsAllocated)
{
    const KeyRing ring("secret");
    const std::string good = encodeSlot(ring.newSlot(kCheap));
    const struct {
        const char* name;
        std::size_t at;
        std::uint32_t value;
    } kCases[] = {
        {"unknown kind", 0, 2},
        {"no password, yet a salt", 0, 0},
        {"no passes", 4, 0},
        {"too many passes", 4, 21},
        {"all passes", 4, 0xffffffff},
        {"no memory", 8, 0},
        {"less memory than the function takes", 8, 7},
        {"more than 1 GiB", 8, 1024 * 1024 + 1},
        {"all memory", 8, 0xffffffff},
    };
    for (const auto& each : kCases) {
        const std::string bytes = putNumber(good, each.at, each.value);
        EXPECT_THROW(decodeSlot(platform::asBytes(bytes)), RuntimeError) << each.name;
    }
    EXPECT_EQ(decodeSlot(platform::asBytes(putNumber(good, 4, 20))).cost.passes, 20U);
    EXPECT_EQ(decodeSlot(platform::asBytes(putNumber(good, 8, 1024 * 1024))).cost.memoryKiB,
              1024U * 1024U);
    // A slot that was made up in memory is held to the same bounds.
    KeySlot slot = decodeSlot(platform::asBytes(good));
    slot.cost = {21, 8};
    EXPECT_THROW(ring.opens(slot), RuntimeError);
    EXPECT_EQ(ring.derivations(), 1U);
}

TEST(KeySlot, TheVerifierTellsTheRightPassword)
{
    const KeyRing ring("secret");
    const KeySlot slot = ring.newSlot(kCheap);
    EXPECT_TRUE(ring.opens(slot));
    EXPECT_TRUE(KeyRing("secret").opens(slot));
    EXPECT_FALSE(KeyRing("Secret").opens(slot));
    EXPECT_FALSE(KeyRing("secret ").opens(slot));
    EXPECT_FALSE(KeyRing("").opens(slot));
    EXPECT_TRUE(KeyRing("").opens(KeySlot{}));
    EXPECT_TRUE(KeyRing("secret").opens(KeySlot{}));
    KeySlot changed = slot;
    changed.salt[3] ^= 1U;
    EXPECT_FALSE(ring.opens(changed));
    changed = slot;
    changed.cost.passes = 2;
    EXPECT_FALSE(ring.opens(changed));
}

TEST(KeySlot, OneDerivationServesASaltForAllThreads)
{
    const KeyRing writer("secret");
    const KeySlot slot = writer.newSlot(kCheap);
    const KeyRing ring("secret");
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
            for (int k = 0; k < 50; ++k)
                EXPECT_TRUE(ring.opens(slot));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(ring.derivations(), 1U);
    EXPECT_EQ(ring.tagOf(slot), writer.tagOf(slot));
    EXPECT_EQ(ring.derivations(), 1U);
}

TEST(KeySlot, NoPasswordNeverDerives)
{
    const KeyRing writer("secret");
    const KeySlot slot = writer.newSlot(kCheap);
    const KeyRing none;
    EXPECT_FALSE(none.opens(slot));
    EXPECT_EQ(none.tagOf(slot), 0U);
    EXPECT_EQ(none.newSlot(kCheap), KeySlot{});
    EXPECT_EQ(none.derivations(), 0U);
}

TEST(KeySlot, TooManySaltsAreRefused)
{
    const KeyRing ring("secret");
    KeySlot slot = KeyRing("other").newSlot(kCheap);
    for (std::size_t i = 0; i < kMostSalts; ++i) {
        slot.salt[0] = static_cast<std::uint8_t>(i);
        EXPECT_FALSE(ring.opens(slot));
    }
    slot.salt[1] = static_cast<std::uint8_t>(slot.salt[1] + 1);
    EXPECT_THROW(ring.opens(slot), RuntimeError);
    EXPECT_EQ(ring.derivations(), kMostSalts);
    // Those that are known stay known, and the run's own slot is made all the same.
    slot.salt[1] = static_cast<std::uint8_t>(slot.salt[1] - 1);
    EXPECT_FALSE(ring.opens(slot));
    EXPECT_TRUE(ring.opens(ring.newSlot(kCheap)));
}

TEST(KeySlot, TagsStandForPasswordAndSalt)
{
    const KeyRing ring("secret");
    const KeySlot slot = ring.newSlot(kCheap);
    EXPECT_NE(ring.tagOf(slot), 0U);
    EXPECT_LE(ring.tagOf(slot), 0xffff'ffff'ffffU);
    EXPECT_EQ(ring.tagOf(slot), KeyRing("secret").tagOf(slot));
    EXPECT_NE(ring.tagOf(slot), KeyRing("other").tagOf(slot));
    EXPECT_NE(ring.tagOf(slot), ring.tagOf(ring.newSlot(kCheap)));
    EXPECT_EQ(ring.tagOf(KeySlot{}), 0U);
}

TEST(KeySlot, AFileKeyIsUnwrappedByItsOwnPasswordAndSlotAlone)
{
    const KeyRing ring("secret");
    const KeySlot slot = ring.newSlot(kCheap);
    const SecretKey key = SecretKey::random();
    const WrappedKey wrapped = ring.wrap(slot, key);
    const SecretKey back = KeyRing("secret").unwrap(slot, wrapped);
    EXPECT_EQ(std::memcmp(back.data(), key.data(), SecretKey::size()), 0);
    EXPECT_NE(wrapped, ring.wrap(slot, key)); // a nonce of its own each time
    EXPECT_THROW(KeyRing("other").unwrap(slot, wrapped), RuntimeError);
    EXPECT_THROW(ring.unwrap(ring.newSlot(kCheap), wrapped), RuntimeError);
    for (std::size_t i = 0; i < wrapped.size(); ++i) {
        WrappedKey changed = wrapped;
        changed[i] ^= 1U;
        EXPECT_THROW(ring.unwrap(slot, changed), RuntimeError) << i;
    }
    KeySlot changed = slot;
    changed.verifier[0] ^= 1U; // bound to the wrapped key with the rest of the slot
    EXPECT_THROW(ring.unwrap(changed, wrapped), RuntimeError);
}

TEST(KeySlot, WithoutAPasswordTheFileKeyStandsUnwrapped)
{
    const KeyRing none;
    const SecretKey key = SecretKey::random();
    const WrappedKey wrapped = none.wrap({}, key);
    EXPECT_EQ(std::memcmp(wrapped.data() + 24, key.data(), SecretKey::size()), 0);
    const SecretKey back = none.unwrap({}, wrapped);
    EXPECT_EQ(std::memcmp(back.data(), key.data(), SecretKey::size()), 0);
}

TEST(KeySlot, WipingATextEmptiesIt)
{
    std::string text = "a password that does not fit into the object itself";
    wipe(text);
    EXPECT_TRUE(text.empty());
}

} // namespace
} // namespace vardelin::engine
