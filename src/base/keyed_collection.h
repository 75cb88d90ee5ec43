#pragma once

#include "base/runtime_error.h"
#include "base/text.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vardelin::base {

// How keys compare: without regard to ASCII case, or byte for byte. Collections that hold paths or
// file names take the rule of the file system, which its port tells.
enum class KeyRule { IgnoreCase, Exact };

// An ordered collection with optional keys and 1-based access. Look-up by key takes constant time;
// removal moves the items behind, so remove from the end where many go.
//
// Raises 5 for a key that is not there, 9 for an index out of 1..count(), and 457 for a key that is
// taken; a failed call leaves the collection as it was.
template <typename Item>
class KeyedCollection {
public:
    explicit KeyedCollection(KeyRule rule = KeyRule::IgnoreCase) : m_rule(rule) {}

    void add(Item item) { m_slots.push_back({std::move(item), {}, false}); }

    void add(Item item, std::string_view key)
    {
        std::string stored = fold(key);
        if (m_positions.contains(stored))
            throw RuntimeError(error_number::kDuplicateKey, std::string(key));
        m_positions.emplace(stored, m_slots.size());
        m_slots.push_back({std::move(item), std::move(stored), true});
    }

    // Adds unless the key is taken; tells whether it did.
    bool tryAdd(Item item, std::string_view key)
    {
        if (contains(key))
            return false;
        add(std::move(item), key);
        return true;
    }

    std::size_t count() const noexcept { return m_slots.size(); }
    bool empty() const noexcept { return m_slots.empty(); }
    bool contains(std::string_view key) const { return m_positions.contains(fold(key)); }

    // Null where the key is not there. Valid until the collection changes.
    const Item* find(std::string_view key) const
    {
        const auto hit = m_positions.find(fold(key));
        return hit == m_positions.end() ? nullptr : &m_slots[hit->second].item;
    }

    const Item& item(std::size_t index) const { return m_slots[position(index)].item; }
    const Item& item(std::string_view key) const { return m_slots[position(key)].item; }

    void remove(std::size_t index) { erase(position(index)); }
    void remove(std::string_view key) { erase(position(key)); }

    void clear()
    {
        m_slots.clear();
        m_positions.clear();
    }

    // The items in order.
    std::vector<Item> items() const
    {
        std::vector<Item> result;
        result.reserve(m_slots.size());
        for (const Slot& slot : m_slots)
            result.push_back(slot.item);
        return result;
    }

private:
    struct Slot {
        Item item;
        std::string key;
        bool hasKey = false;
    };

    std::string fold(std::string_view key) const
    {
        return m_rule == KeyRule::IgnoreCase ? upperAscii(key) : std::string(key);
    }

    std::size_t position(std::size_t index) const
    {
        if (index < 1 || index > m_slots.size())
            throw RuntimeError(error_number::kSubscript, std::to_string(index));
        return index - 1;
    }

    std::size_t position(std::string_view key) const
    {
        const auto hit = m_positions.find(fold(key));
        if (hit == m_positions.end())
            throw RuntimeError(error_number::kInvalidCall, std::string(key));
        return hit->second;
    }

    void erase(std::size_t at)
    {
        if (m_slots[at].hasKey)
            m_positions.erase(m_slots[at].key);
        m_slots.erase(m_slots.begin() + static_cast<std::ptrdiff_t>(at));
        for (std::size_t i = at; i < m_slots.size(); ++i) {
            if (m_slots[i].hasKey)
                m_positions[m_slots[i].key] = i;
        }
    }

    KeyRule m_rule;
    std::vector<Slot> m_slots;
    std::unordered_map<std::string, std::size_t> m_positions;
};

using TextCollection = KeyedCollection<std::string>;

} // namespace vardelin::base
