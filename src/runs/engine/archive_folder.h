#pragma once

#include "archive/entry_names.h"
#include "platform/file_system.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vardelin::engine {

// A copy as one folder of the archive lists it. The texts live as long as their ArchiveFolder.
struct ListedCopy {
    std::string_view fileName;
    std::string_view sourceName;
    int version = 0;
    archive::Form form = archive::Form::Compressed;
    std::optional<archive::CopyMeta> meta; // absent where the name was too long for it
    // Its serial number is out of the order of the versions: somebody renamed it or another one.
    bool outOfOrder = false;
};

// One folder of an archive, read in one listing: which sources have copies and which is the newest.
class ArchiveFolder {
public:
    // Keeps the listing of a folder; nothing is opened.
    explicit ArchiveFolder(std::vector<platform::FolderEntry> entries);
    ArchiveFolder(const ArchiveFolder&) = delete;
    ArchiveFolder& operator=(const ArchiveFolder&) = delete;

    // The copy with the highest version, the full copy where there is no version; null for none. Of
    // two with one number, which a power cut can leave of a settings file, the one saved later.
    const ListedCopy* newest(std::string_view sourceName) const;
    const std::vector<ListedCopy>& copies() const { return m_copies; }
    const std::vector<std::string_view>& subfolders() const { return m_subfolders; }
    bool hasSubfolder(std::string_view name) const;
    const std::vector<std::string_view>& temporaries() const { return m_temporaries; }
    // Files of no kind that the engine makes.
    const std::vector<std::string_view>& foreign() const { return m_foreign; }
    // The names of the folder's own record; one, or after a crash two.
    const std::vector<std::string_view>& folderRecords() const { return m_folderRecords; }

private:
    void checkSerials();

    std::vector<platform::FolderEntry> m_entries;
    std::deque<std::string> m_mappedNames; // of the few sources whose names end in a blank or dot
    std::vector<ListedCopy> m_copies;
    std::unordered_map<std::string_view, std::size_t> m_newest; // source name to its copy
    std::vector<std::string_view> m_subfolders;
    std::vector<std::string_view> m_temporaries;
    std::vector<std::string_view> m_foreign;
    std::vector<std::string_view> m_folderRecords;
};

// `C:\dir\` below the archive root `D:\store\name\` is `D:\store\name\C\dir\`. Both end in a
// backslash, as does the result.
std::string archivePathOf(std::string_view archiveRoot, std::string_view sourceFolder);
// The way back; empty for a folder that is none of a drive's (OtherData, or foreign).
std::string sourcePathOf(std::string_view archiveRoot, std::string_view archiveFolder);

} // namespace vardelin::engine
