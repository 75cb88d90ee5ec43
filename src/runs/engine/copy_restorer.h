#pragma once

#include "base/runtime_error.h"
#include "platform/file_system.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/restore_plan.h"
#include "runs/engine/target_folders.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::engine {

// Writing the target failed, as against reading the archive.
class TargetError : public base::RuntimeError {
public:
    using base::RuntimeError::RuntimeError;
};

// Runs one step on a target and turns its RuntimeError into a TargetError.
template <typename Step>
auto onTarget(Step&& step)
{
    try {
        return step();
    } catch (const base::RuntimeError& error) {
        throw TargetError(error.number(), error.subject(), error.reason());
    }
}

// A restored file under its temporary name in the target folder, whole and checked.
struct RestoredCopy {
    std::string temporaryName;
    std::uint64_t bytes = 0;
    // Names that were one file share this, empty for a single one. Content, time and mode stand in
    // it beside the number that the file had on its disk, since a disk gives a number out again.
    std::string linkGroup;
    std::uint64_t inode = 0; // of the temporary file, where there is a link group
};

// One restored name of a group of hard links.
struct LinkedName {
    std::string sourceFolder;
    std::string name;
    std::uint64_t inode = 0; // of the file that was restored to it
};
using HardLinks = std::map<std::string, std::vector<LinkedName>>; // by group

// Makes the names of each group one file again, as far as each still is the file that was restored
// to it. `serial` numbers temporary names.
void joinHardLinks(TargetFolders& targets, const HardLinks& links,
                   std::atomic<std::uint64_t>& serial);

// Reads single copies and writes them; one a worker thread.
class CopyRestorer {
public:
    // `ring` must outlive it.
    CopyRestorer(std::atomic<std::uint64_t>& serial, const KeyRing& ring);

    // Reads one copy into a temporary file of `target`, with mode, times, owner and attributes as
    // far as rights and disk permit. Raises TargetError for the target's faults, and RuntimeError
    // with the cause as reason for a damaged or vanished archive file, PasswordError for a copy
    // that was saved under another password; nothing stays then.
    RestoredCopy restore(platform::Folder& archive, const std::string& sourceFolder,
                         const ChosenCopy& copy, platform::Folder& target);
    // The content of a settings text. `archive` is the folder of its group. Raises as above.
    std::string readText(platform::Folder& archive, const ChosenCopy& copy);
    // Reads and checks one copy; gives the bytes of its content. Raises as above, but asks for the
    // password of encrypted copies alone.
    std::uint64_t check(platform::Folder& archive, const std::string& sourceFolder,
                        const ChosenCopy& copy);

private:
    RestoredCopy restoreLink(const CopyHeader& header, const ChosenCopy& copy,
                             platform::Folder& target);
    CopyHeader checkedHeader(platform::Folder& archive, platform::File& file,
                             const std::string& sourceFolder, const ChosenCopy& copy);

    std::atomic<std::uint64_t>& m_serial;
    const KeyRing& m_ring;
    CopyReader m_reader;
};

} // namespace vardelin::engine
