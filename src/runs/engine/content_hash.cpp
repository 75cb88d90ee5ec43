#include "runs/engine/content_hash.h"

#include <algorithm>
#include <iterator>

#include <xxhash.h>

namespace vardelin::engine {
namespace {

archive::ContentHash canonical(XXH128_hash_t value)
{
    XXH128_canonical_t bytes;
    XXH128_canonicalFromHash(&bytes, value);
    archive::ContentHash hash{};
    std::copy(std::begin(bytes.digest), std::end(bytes.digest), hash.begin());
    return hash;
}

} // namespace

struct ContentHasher::State {
    State() : hash(XXH3_createState()) {}
    ~State() { XXH3_freeState(hash); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    XXH3_state_t* hash;
};

ContentHasher::ContentHasher() : m_state(std::make_unique<State>())
{
    reset();
}

ContentHasher::~ContentHasher() = default;

void ContentHasher::add(std::span<const std::byte> bytes)
{
    XXH3_128bits_update(m_state->hash, bytes.data(), bytes.size());
}

archive::ContentHash ContentHasher::result() const
{
    return canonical(XXH3_128bits_digest(m_state->hash));
}

void ContentHasher::reset()
{
    XXH3_128bits_reset(m_state->hash);
}

archive::ContentHash hashOf(std::span<const std::byte> bytes)
{
    return canonical(XXH3_128bits(bytes.data(), bytes.size()));
}

} // namespace vardelin::engine
