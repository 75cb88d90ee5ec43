#pragma once

#include "platform/file_system.h"

#include <memory>
#include <string>
#include <string_view>

namespace vardelin::profile {

// A text file that replaces the one of its name in one step: lines gather here, go to a temporary
// file beside it, and come to the name when all of them are on the disk. After a failure or a crash
// the name holds the old file, whole.
class ReplacingFile {
public:
    // Raises what opening the file for writing would raise: 76 for a missing folder, 75 for a
    // folder of that name, 70 for missing rights on the folder or on the file that is there.
    ReplacingFile(platform::FileSystem& fileSystem, std::string_view folder, std::string_view name);
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;
    // Without commit() the temporary file goes and nothing has changed.
    ~ReplacingFile();

    // Adds the text and CR LF.
    void print(std::string_view line);
    // Once, and last. Raises 61 for a full disk and whatever else the device reports.
    void commit();

private:
    void discard();

    std::unique_ptr<platform::Folder> m_folder;
    std::string m_name;
    std::string m_temporary;
    std::unique_ptr<platform::File> m_file;
    std::string m_text;
};

} // namespace vardelin::profile
