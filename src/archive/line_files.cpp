#include "archive/line_files.h"

#include <span>

namespace vardelin::archive {
namespace {

constexpr std::size_t kBlockBytes = 65'536;

} // namespace

LineWriter::LineWriter(platform::FileSystem& fileSystem, std::string_view path)
    : m_file(fileSystem.open(path, platform::OpenMode::CreateOrTruncate))
{
    m_block.reserve(kBlockBytes);
}

void LineWriter::write(std::string_view line)
{
    m_block.append(line).append("\r\n");
    if (m_block.size() >= kBlockBytes)
        writeBlock();
}

void LineWriter::close()
{
    writeBlock();
    m_file->close();
}

void LineWriter::flushAndClose()
{
    writeBlock();
    m_file->flush();
    m_file->close();
}

void LineWriter::writeBlock()
{
    if (!m_block.empty())
        m_file->write(platform::asBytes(m_block));
    m_block.clear();
}

LineReader::LineReader(platform::FileSystem& fileSystem, std::string_view path)
    : m_file(fileSystem.open(path, platform::OpenMode::Read))
{
}

std::optional<std::string_view> LineReader::next()
{
    std::size_t searched = m_at;
    std::size_t end = m_buffer.find('\n', searched);
    while (end == std::string::npos) {
        searched = m_buffer.size() - m_at;
        if (!readBlock()) {
            if (m_at == m_buffer.size())
                return std::nullopt;
            const std::string_view last = std::string_view(m_buffer).substr(m_at);
            m_at = m_buffer.size();
            return last;
        }
        end = m_buffer.find('\n', searched);
    }
    std::string_view line = std::string_view(m_buffer).substr(m_at, end - m_at);
    m_at = end + 1;
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

// Drops what was given out and appends the next block; false at the end of the file.
bool LineReader::readBlock()
{
    m_buffer.erase(0, m_at);
    m_at = 0;
    const std::size_t held = m_buffer.size();
    m_buffer.resize(held + kBlockBytes);
    const std::span<char> room(m_buffer.data() + held, kBlockBytes);
    const std::size_t count = m_file->read(std::as_writable_bytes(room));
    m_buffer.resize(held + count);
    return count > 0;
}

} // namespace vardelin::archive
