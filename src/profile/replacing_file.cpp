#include "profile/replacing_file.h"

#include "base/runtime_error.h"
#include "profile/profile_format.h"

#include <utility>

namespace vardelin::profile {

ReplacingFile::ReplacingFile(platform::FileSystem& fileSystem, std::string_view folder,
                             std::string_view name)
    : m_folder(fileSystem.openFolder(folder)), m_name(name), m_temporary("~" + m_name + ".tmp")
{
    // Renaming over a file needs no right to write it, so ask for that right by itself.
    if (m_folder->find(m_name))
        m_folder->open(m_name, platform::OpenMode::Update, platform::Links::Follow)->close();
    m_file = m_folder->open(m_temporary, platform::OpenMode::CreateOrTruncate);
}

ReplacingFile::~ReplacingFile()
{
    if (!m_file)
        return;
    try {
        discard();
    } catch (...) { // NOLINT(bugprone-empty-catch): a temporary that stays harms nobody
    }
}

void ReplacingFile::discard()
{
    m_file.reset();
    base::PendingError leftBehind; // the reason for coming here is the one to report
    leftBehind.attempt([this] { m_folder->removeFile(m_temporary); });
}

void ReplacingFile::print(std::string_view line)
{
    m_text.append(line).append(format::kLineEnd);
}

void ReplacingFile::commit()
{
    std::unique_ptr<platform::File> file = std::move(m_file);
    try {
        file->write(platform::asBytes(m_text));
        file->flush();
        file->close();
        m_folder->rename(m_temporary, m_name);
    } catch (const base::RuntimeError&) {
        file.reset();
        discard();
        throw;
    }
    m_folder->flush();
}

} // namespace vardelin::profile
