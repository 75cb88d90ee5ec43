#include "runs/engine/copy_feed.h"

#include <utility>

namespace vardelin::engine {

CopyFeed::CopyFeed(NextFolder nextFolder) : m_nextFolder(std::move(nextFolder)) {}

std::optional<CopyBatch> CopyFeed::next()
{
    const std::lock_guard lock(m_mutex);
    while (!m_folder) {
        auto folder = m_nextFolder();
        if (!folder)
            return std::nullopt;
        if (folder->copies.empty() && !folder->whole)
            continue;
        m_folder = std::make_shared<const ChosenFolder>(std::move(*folder));
        m_first = 0;
    }
    CopyBatch batch{m_folder, m_first, 0};
    const auto& copies = m_folder->copies;
    std::uint64_t bytes = 0;
    while (m_first < copies.size() && batch.count < kMostCopies) {
        // A single copy may be larger than any batch.
        if (batch.count > 0 && bytes + copies[m_first].sizeBytes > kMostBytes)
            break;
        bytes += copies[m_first].sizeBytes;
        ++batch.count;
        ++m_first;
    }
    if (m_first >= copies.size())
        m_folder.reset();
    return batch;
}

} // namespace vardelin::engine
