#include "runs/engine/archive_walk.h"

#include "base/text.h"

#include <algorithm>
#include <utility>

namespace vardelin::engine {
namespace {

// Of all listings that wait for their subfolders together: a few megabytes.
constexpr std::size_t kMostKeptEntries = 10000;

} // namespace

ArchiveWalk::ArchiveWalk(platform::FileSystem& files, std::string_view root,
                         std::string_view archivePath)
    : m_files(files), m_root(root), m_otherData(m_root + "OtherData\\")
{
    m_stack.push_back({std::string(archivePath)});
}

const ArchiveFolder* ArchiveWalk::next()
{
    if (m_given)
        leave();
    while (!m_stack.empty()) {
        Level& level = m_stack.back();
        if (!level.entered)
            enter(level);
        if (!level.subfolders.empty()) {
            std::string below = level.path + level.subfolders.back() + '\\';
            level.subfolders.pop_back();
            if (!base::equalsIgnoringCase(below, m_otherData))
                m_stack.push_back({std::move(below)});
            continue;
        }
        if (level.path.size() <= m_root.size()) {
            leave();
            continue;
        }
        if (!level.listing)
            level.listing =
                std::make_unique<const ArchiveFolder>(m_files.openFolder(level.path)->list());
        m_given = true;
        return level.listing.get();
    }
    return nullptr;
}

void ArchiveWalk::enter(Level& level)
{
    level.entered = true;
    auto entries = m_files.openFolder(level.path)->list();
    const std::size_t count = entries.size();
    auto listing = std::make_unique<const ArchiveFolder>(std::move(entries));
    level.subfolders.assign(listing->subfolders().begin(), listing->subfolders().end());
    std::sort(level.subfolders.begin(), level.subfolders.end(),
              [](const auto& a, const auto& b) { return base::naturalLess(b, a); });
    if (!level.subfolders.empty()) {
        if (m_kept + count > kMostKeptEntries)
            return;
        level.kept = count;
        m_kept += count;
    }
    level.listing = std::move(listing);
}

void ArchiveWalk::leave()
{
    m_kept -= m_stack.back().kept;
    m_stack.pop_back();
    m_given = false;
}

} // namespace vardelin::engine
