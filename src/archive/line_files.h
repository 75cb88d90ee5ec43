#pragma once

#include "platform/file_system.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// Text files of many lines, read and written in large blocks: a catalog can have a million of them.
namespace vardelin::archive {

// Writes lines with CR LF. What was not closed may miss its last lines.
class LineWriter {
public:
    // The file is made or emptied.
    LineWriter(platform::FileSystem& fileSystem, std::string_view path);

    void write(std::string_view line);
    void close();
    // The same, and comes back when the lines are on the disk.
    void flushAndClose();

private:
    void writeBlock();

    std::unique_ptr<platform::File> m_file;
    std::string m_block;
};

// Reads lines that end in LF or CR LF; what stands behind the last end is a line unless it is
// empty.
class LineReader {
public:
    LineReader(platform::FileSystem& fileSystem, std::string_view path);

    // The next line without its end, valid until the next call; none at the end of the file.
    std::optional<std::string_view> next();

private:
    bool readBlock();

    std::unique_ptr<platform::File> m_file;
    std::string m_buffer;
    std::size_t m_at = 0;
};

} // namespace vardelin::archive
