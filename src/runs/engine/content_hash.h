#pragma once

#include "archive/entry_names.h"

#include <cstddef>
#include <memory>
#include <span>

namespace vardelin::engine {

// The XXH3-128 of a content that comes in pieces. One thread.
class ContentHasher {
public:
    ContentHasher();
    ~ContentHasher();
    ContentHasher(const ContentHasher&) = delete;
    ContentHasher& operator=(const ContentHasher&) = delete;

    void add(std::span<const std::byte> bytes);
    archive::ContentHash result() const;
    // Begins anew.
    void reset();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

archive::ContentHash hashOf(std::span<const std::byte> bytes);

} // namespace vardelin::engine
