#include "runs/engine/run_keys.h"

#include "base/runtime_error.h"

#include <algorithm>

namespace vardelin::engine {

using archive::Form;
using base::RuntimeError;

RunKeys::RunKeys(platform::FileSystem& files, ArchivePlace& place, const KeyCost& cost)
    : m_files(files), m_root(place.root), m_cost(cost),
      m_storesPlain(!place.profile.compress && !place.profile.encrypt),
      m_ring(place.profile.password), m_reader(&m_ring)
{
    wipe(place.profile.password);
    m_key.ring = &m_ring;
    m_key.encrypt = place.profile.encrypt;
    m_isKnown = !m_ring.hasPassword();
}

bool RunKeys::accepts(std::uint64_t tag, Form form, std::string_view folder,
                      std::string_view fileName)
{
    if (m_key.encrypt && form != Form::Encrypted)
        return false;
    if (m_isKnown)
        return tag == m_key.tag || m_rightTags.contains(tag);
    if (tag == 0)
        return false;
    return tag == m_lastTag || meet(tag, form, folder, fileName);
}

// A tag that is not the last one: where it is new, its copy gives the slot. A copy that cannot give
// one is damaged and counts as changed.
bool RunKeys::meet(std::uint64_t tag, Form form, std::string_view folder, std::string_view fileName)
{
    if (!m_acceptedTags.contains(tag)) {
        std::optional<KeySlot> slot;
        try {
            if (form == Form::Stored)
                slot = slotFile();
            else
                slot = m_reader.readSlot(
                    *m_files.openFolder(folder)->open(fileName, platform::OpenMode::Read));
        } catch (const RuntimeError&) {
            return false;
        }
        if (!slot || slot->kind == KeySlot::Kind::None)
            return false;
        if (std::find(m_samples.begin(), m_samples.end(), *slot) == m_samples.end()) {
            m_samples.push_back(*slot);
            if (m_samples.size() == 1)
                m_firstOpens = std::async(std::launch::async,
                                          [this, first = *slot] { return m_ring.opens(first); });
        }
        m_acceptedTags.insert(tag);
    }
    m_lastTag = tag;
    return true;
}

bool RunKeys::acceptsSlot(const KeySlot& slot, Form form)
{
    if (m_key.encrypt && form != Form::Encrypted)
        return false;
    if (!m_ring.hasPassword())
        return slot.kind == KeySlot::Kind::None;
    if (slot.kind == KeySlot::Kind::None || !m_ring.opens(slot))
        return false;
    if (!m_isKnown)
        use(slot);
    return true;
}

bool RunKeys::settle()
{
    if (m_isSettled)
        return false;
    // A password that was changed and changed back has more salts than one, and copies under each
    // of them are its own.
    for (std::size_t i = 0; i < m_samples.size(); ++i) {
        // A lack of memory is told by writeKey(), which derives with today's cost.
        base::PendingError ignored;
        ignored.attempt([&] {
            if (!(i == 0 ? m_firstOpens.get() : m_ring.opens(m_samples[i])))
                return;
            m_rightTags.insert(m_ring.tagOf(m_samples[i]));
            if (!m_isKnown)
                use(m_samples[i]);
        });
    }
    if (m_firstOpens.valid())
        m_firstOpens.wait();
    if (m_acceptedTags.empty())
        return false; // nothing was taken on trust: the key can wait until it is needed
    m_isSettled = true;
    writeKey();
    return std::any_of(m_acceptedTags.begin(), m_acceptedTags.end(), [this](std::uint64_t tag) {
        return tag != m_key.tag && !m_rightTags.contains(tag);
    });
}

const WriteKey& RunKeys::writeKey()
{
    if (!m_isKnown)
        use(m_ring.newSlot(m_cost));
    return m_key;
}

void RunKeys::use(const KeySlot& slot)
{
    m_key.slot = slot;
    m_key.tag = m_ring.tagOf(slot);
    m_isKnown = true;
}

std::optional<KeySlot> RunKeys::slotFile()
{
    const std::string path = m_root + std::string(kSlotFile);
    if (!m_files.fileExists(path))
        return std::nullopt;
    return decodeSlot(platform::asBytes(m_files.readAll(path)));
}

void RunKeys::keepSlotFile()
{
    if (!m_storesPlain || !m_ring.hasPassword())
        return;
    const KeySlot& slot = writeKey().slot;
    try {
        if (slotFile() == slot)
            return;
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): a damaged one is replaced
    }
    m_files.replaceFile(m_root + std::string(kSlotFile), encodeSlot(slot));
}

} // namespace vardelin::engine
