#pragma once

#include "archive/entry_names.h"
#include "platform/file_system.h"
#include "platform/machine.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/copy_writer.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vardelin::engine {

// One source to save into an open archive folder.
struct SaveTask {
    platform::Folder& source;
    platform::Folder& archive;
    std::string_view name;
    std::string_view path;        // `C:\dir\name`, for the header
    std::string_view earlierName; // the newest copy's file name in the archive; may be empty
    int version = 0;              // of the copy to write
    std::uint32_t serial = 0;     // for its header and name; 0: the version
    platform::FileKind kind = platform::FileKind::Regular;
};

// The copy lies under a temporary name and waits to be flushed and renamed.
struct Saved {
    std::string temporaryName;
    std::string finalName;
    std::uint64_t bytesRead = 0;
    std::uint64_t bytesStored = 0;
};
// The content is that of the newest copy, which only needs the new time in its name.
struct Renewed {
    std::string oldName;
    std::string newName; // the same where the name holds no meta
};
struct Missed {
    std::string reason;
};
struct Stopped {};
using SaveResult = std::variant<Saved, Renewed, Missed, Stopped>;

struct SaveOptions {
    bool compress = true;
    std::int64_t savedNs = 0; // start of the run
    // The clock that the sources' disks stamp changes by; without one, files that were changed this
    // very moment are read at once.
    platform::Clock* clock = nullptr;
    WriteKey key; // whether and for what password copies are sealed
};

// Writes single copies; one a worker thread. What cannot be read is Missed; a failing archive
// raises, after the temporary file is gone.
class FileSaver {
public:
    // `serial` numbers temporary files among all workers of a run.
    FileSaver(const SaveOptions& options, std::atomic<std::uint64_t>& serial);

    // `progress` is asked every 4 MiB and gives false to stop.
    SaveResult save(const SaveTask& task, const Progress& progress);
    // A folder's own record: an archive file without a body.
    Saved saveFolderRecord(platform::Folder& archive, std::string_view path,
                           const archive::FolderMeta& meta,
                           const std::vector<platform::ExtendedAttribute>& attributes);
    // A content that is in memory, as the full copy of a short name.
    Saved saveContent(platform::Folder& archive, CopyHeader header,
                      std::span<const std::byte> content, std::string_view name);

private:
    static std::string reasonOf(const SaveTask& task, const SourceError& error);
    bool letRest(const platform::FileInfo& info) const;
    SaveResult saveOnce(const SaveTask& task, const Progress& progress, bool& changed);
    SaveResult saveLink(const SaveTask& task);
    SaveResult saveSmall(const SaveTask& task, platform::File& source,
                         const platform::FileInfo& before, bool& changed);
    SaveResult saveLarge(const SaveTask& task, platform::File& source,
                         const platform::FileInfo& before, const Progress& progress, bool& changed);
    void openEarlier(const SaveTask& task, std::unique_ptr<platform::File>& file,
                     std::optional<BodyOpener>& opener, std::optional<EarlierBody>& earlier);
    static void dressPlain(platform::File& file, const CopyHeader& header);
    bool storesPlain(const SaveTask& task, const platform::FileInfo& info) const;
    archive::Form packedForm() const; // of a copy that is not stored as it is
    CopyHeader headerFor(const SaveTask& task, const platform::FileInfo& info) const;
    SaveResult finish(const SaveTask& task, const CopyHeader& header, archive::Form form,
                      std::string temporary, std::uint64_t bytesStored);
    std::optional<Renewed> renewed(const SaveTask& task, const CopyHeader& header);
    std::string write(platform::Folder& archive, std::span<const std::byte> bytes);

    SaveOptions m_options;
    std::atomic<std::uint64_t>& m_serial;
    CopyWriter m_writer;
    CopyReader m_reader;
    std::vector<std::byte> m_content;
};

} // namespace vardelin::engine
