#pragma once

#include "runs/engine/restore_plan.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace vardelin::engine {

// Some copies of one folder that one worker takes together.
struct CopyBatch {
    std::shared_ptr<const ChosenFolder> folder;
    std::size_t first = 0;
    std::size_t count = 0; // 0: the folder itself is all that is asked for
};

// Hands folder after folder to the workers, in batches. Only the folders that are being worked on
// are held, so a run's memory does not depend on the archive's size.
class CopyFeed {
public:
    using NextFolder = std::function<std::optional<ChosenFolder>()>;

    // `nextFolder` gives the folders, and none at the end; it is called on the workers' threads,
    // one at a time.
    explicit CopyFeed(NextFolder nextFolder);

    // From any thread. None at the end. Raises what `nextFolder` raises.
    std::optional<CopyBatch> next();

private:
    static constexpr std::size_t kMostCopies = 64;
    static constexpr std::uint64_t kMostBytes = std::uint64_t{8} * 1024 * 1024;

    std::mutex m_mutex; // guards all below
    NextFolder m_nextFolder;
    std::shared_ptr<const ChosenFolder> m_folder; // of which batches are left
    std::size_t m_first = 0;
};

} // namespace vardelin::engine
