#pragma once

#include "archive/entry_names.h"
#include "platform/file_system.h"
#include "runs/engine/archive_place.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/encrypted_copy.h"
#include "runs/engine/key_slot.h"

#include <cstdint>
#include <future>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {

// In the archive root, where copies are stored as they are while the profile has a password: the
// key slot, which those copies cannot hold. Without it they are only saved once more.
inline constexpr std::string_view kSlotFile = "~slot";

// The profile's password in a backup: whether a copy was saved under it, told by the tag in its
// name, and what new copies carry.
//
// The tag of today's password is not known before a key is derived from it under the archive's
// salt, which the copies hold. So the first copy that has a tag gives its slot, the derivation
// starts in a thread of its own, and tags count as right meanwhile. settle() tells whether one was
// not: then the scan is done once more. Without a password nothing is ever derived.
//
// For one thread at a time; writeKey()'s result may be read by many.
class RunKeys {
public:
    // Takes the password out of the place's profile, which loses it.
    RunKeys(platform::FileSystem& files, ArchivePlace& place, const KeyCost& cost);

    // Whether a copy of this tag and form counts as saved by today's profile. The folder (with its
    // backslash) and name tell where to read the key slot.
    bool accepts(std::uint64_t tag, archive::Form form, std::string_view folder,
                 std::string_view fileName);
    // The same of a copy whose name holds no tag; derives where it must.
    bool acceptsSlot(const KeySlot& slot, archive::Form form);

    // Waits for the derivation. True where a copy was accepted that was not saved under today's
    // password: scan again. The second time it is always false.
    bool settle();

    // What new copies carry: the slot of the archive where the password is the same, else a new
    // one. After settle().
    const WriteKey& writeKey();
    // Writes kSlotFile where the profile's copies need it and it is not there yet.
    void keepSlotFile();

    const KeyRing& ring() const { return m_ring; }

private:
    bool meet(std::uint64_t tag, archive::Form form, std::string_view folder,
              std::string_view fileName);
    std::optional<KeySlot> slotFile();
    void use(const KeySlot& slot);

    platform::FileSystem& m_files;
    std::string m_root;
    KeyCost m_cost;
    bool m_storesPlain;
    KeyRing m_ring;
    CopyReader m_reader;
    WriteKey m_key;
    bool m_isKnown = false; // m_key is today's
    bool m_isSettled = false;
    std::uint64_t m_lastTag = 0; // accepted last: most copies have the same
    std::set<std::uint64_t> m_acceptedTags;
    std::set<std::uint64_t> m_rightTags; // of samples that the password opens
    std::vector<KeySlot> m_samples;
    std::future<bool> m_firstOpens; // of the first sample; last member: it uses the ring
};

} // namespace vardelin::engine
