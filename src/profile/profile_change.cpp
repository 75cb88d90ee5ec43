#include "profile/profile_change.h"

#include "base/runtime_error.h"
#include "profile/interrupted_saves.h"
#include "profile/scramble_text.h"
#include "profile/scrambler.h"

#include <utility>

namespace vardelin::profile {
namespace {

using base::PendingError;

// A disk without locks saves as well.
std::unique_ptr<platform::FolderLock> lockOf(platform::FileSystem& files, const std::string& folder)
{
    std::unique_ptr<platform::FolderLock> lock;
    PendingError unlocked;
    unlocked.attempt([&] { lock = files.lockFolder(folder); });
    if (unlocked.number == base::error_number::kPermissionDenied ||
        unlocked.number == base::error_number::kPathNotFound)
        throw base::RuntimeError(unlocked.number, unlocked.subject);
    return lock;
}

} // namespace

ProfileChange::ProfileChange(platform::FileSystem& fileSystem, std::string folder, std::string name)
    : m_files(fileSystem), m_folder(std::move(folder)), m_name(std::move(name)),
      m_profile(platform::joinPath(m_folder, m_name)),
      m_copy(platform::joinPath(m_folder, oldProfileName(m_name))),
      m_lock(lockOf(m_files, m_folder))
{
    finishInterruptedSave(m_files, m_folder, m_name);
    m_hadOld = m_files.fileExists(m_profile);
    keepOld();
}

ProfileChange::~ProfileChange()
{
    if (m_settled)
        return;
    try {
        settle();
    } catch (...) { // NOLINT(bugprone-empty-catch): the next start settles what this could not
    }
}

void ProfileChange::keepOld()
{
    try {
        if (m_hadOld)
            m_files.copyFile(m_profile, m_copy);
        else
            m_files.open(m_copy, platform::OpenMode::CreateOrTruncate)->close();
    } catch (const base::RuntimeError&) {
        PendingError left; // it marks nothing that has to be finished
        left.attempt([&] { m_files.removeFile(m_copy); });
        throw;
    }
}

void ProfileChange::plainWritten()
{
    m_plain = m_files.readAll(m_profile);
}

void ProfileChange::scrambled()
{
    m_settled = true;
    PendingError left; // the next start deletes a mark that stays
    left.attempt([&] {
        // The temporary file is gone for good before the mark that tells whose it was.
        m_files.openFolder(m_folder)->flush();
        m_files.removeFile(m_copy);
    });
}

bool ProfileChange::isScrambled()
{
    if (!m_plain)
        return false; // it did not come that far
    const std::string scrambledFile = platform::joinPath(m_folder, "U" + m_name);
    finishInterruptedScramble(m_files, m_folder, m_name);
    if (!m_files.find(m_profile) && m_files.find(scrambledFile))
        m_files.rename(scrambledFile, m_profile);
    return m_files.readAll(m_profile) != *m_plain;
}

// Under its name it would be offered as a profile. What a profile of that name holds is other text.
void ProfileChange::dropTemporary()
{
    PendingError left;
    left.attempt([&] {
        const std::string temporary = platform::joinPath(m_folder, "U" + m_name);
        if (m_plain && m_files.fileExists(temporary) &&
            scrambleText(*m_plain).starts_with(m_files.readAll(temporary)))
            m_files.removeFile(temporary);
    });
}

bool ProfileChange::settle()
{
    const bool isNew = isScrambled();
    dropTemporary();
    if (isNew) {
        scrambled();
        return true;
    }
    // What a failed write left under the name may be the whole plain text.
    if (m_hadOld) {
        m_files.rename(m_copy, m_profile);
    } else {
        if (m_files.fileExists(m_profile))
            m_files.removeFile(m_profile);
        m_files.removeFile(m_copy);
    }
    m_settled = true;
    return false;
}

} // namespace vardelin::profile
