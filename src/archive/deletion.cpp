#include "archive/deletion.h"

#include "archive/line_files.h"
#include "archive/listed_folder.h"
#include "archive/model_file.h"
#include "archive/review_columns.h"
#include "archive/review_texts.h"
#include "archive/review_work.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/path_rule.h"
#include "state/name_tables.h"
#include "trace/messages.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace vardelin::archive {
namespace {

using base::RuntimeError;
using state::ReviewRow;
namespace error_number = base::error_number;
namespace texts = review_texts;

constexpr std::size_t kTagLength = 3;

// A row of OtherData. A source folder may have the same name, and must not be taken for it.
bool isSettingsGroup(const ReviewRow& row)
{
    const auto same = [&](std::string_view name) {
        return base::equalsIgnoringCase(row.text, name);
    };
    return row.key == row.text &&
           std::any_of(state::kOtherDataNames.begin(), state::kOtherDataNames.end(), same);
}

// Whether a path, from the archive root on and without a backslash at its end, leads to something
// below that root: a list that somebody wrote could hold keys that lead elsewhere, or to the root
// by another of its names.
bool leadsBelow(std::string_view relative)
{
    const auto parts = base::split(relative, "\\");
    return std::none_of(parts.begin(), parts.end(), [](std::string_view part) {
        return part.empty() || part == "." || part == "..";
    });
}

std::string withGroup(std::string_view key)
{
    return std::string(kFilesGroup).append("\\").append(key);
}

// One deletion: what it meets, and what the list and model.txt owe it.
class Deletion {
public:
    explicit Deletion(ReviewContext& context)
        : m_context(context), m_files(context.machine.fileSystem), m_review(context.review),
          m_rows(context.form.lstRestore), m_gone(m_rows.size(), false),
          m_clxnModelDrop(platform::pathRule(m_files))
    {
    }

    // From the last row to the first: a file goes before its folder does.
    void deleteSelected()
    {
        for (std::size_t at = m_rows.size(); at-- > 0;) {
            if (!m_rows[at].selected || m_gone[at])
                continue;
            const std::string line = withGroup(m_rows[at].key);
            const bool isNew = m_review.clxnDeleted.tryAdd(line, line);
            try {
                deleteRow(at);
            } catch (const RuntimeError&) {
                if (isNew)
                    m_review.clxnDeleted.remove(line); // it is still there, and shows again
                throw;
            }
        }
    }

    // Takes the rows that are gone out of the list, and builds it anew where the catalog changed.
    void refresh()
    {
        std::size_t kept = 0;
        for (std::size_t at = 0; at < m_rows.size(); ++at) {
            if (m_gone[at])
                continue;
            if (kept != at)
                m_rows[kept] = std::move(m_rows[at]);
            ++kept;
        }
        m_rows.resize(kept);
        ++m_context.form.rowsRevision;
        if (m_catalogChanged)
            rebuild();
        else if (!m_review.bFilesExist && m_review.bOtherDataExists)
            showGroups(std::string(texts::kOtherDataGroup));
    }

private:
    void deleteRow(std::size_t at)
    {
        const ReviewRow& row = m_rows[at];
        if (isSettingsGroup(row)) {
            deleteSettings(at);
            return;
        }
        // A group row has no path: what would be built of it is the archive root or beside it.
        std::string path = archivePathOfKey(m_review.sStoreRoot, row.key);
        if (m_review.sStoreRoot.empty() || path.size() <= m_review.sStoreRoot.size())
            return;
        const bool isFolder = path.ends_with('\\');
        if (isFolder)
            path.pop_back();
        const std::string_view relative = std::string_view(path).substr(m_review.sStoreRoot.size());
        if (!leadsBelow(relative))
            return;
        if (isFolder)
            deleteFolder(row.key, path);
        else if (relative.find('\\') !=
                 std::string_view::npos) // the root's own files are no copies
            deleteFile(at, path);
    }

    void deleteSettings(std::size_t at)
    {
        const std::string otherData = m_review.sStoreRoot + std::string(kOtherDataFolder);
        const std::string path = platform::joinPath(otherData, m_rows[at].text);
        if (m_review.sStoreRoot.empty())
            return;
        if (m_files.folderExists(path))
            m_files.removeTree(path);
        m_gone[at] = true;
        if (!m_files.folderExists(otherData))
            return;
        ListedFolder rest(m_files, otherData);
        if (rest.hasSubfolders())
            return;
        // Files that are not ours stay, and so does the folder then; the review has no row for it.
        if (rest.remainingFiles() == 0)
            rest.removeWhole();
        removeSettingsGroup(at);
        m_review.bOtherDataExists = false;
    }

    // The group row above, and whatever still stands below it.
    void removeSettingsGroup(std::size_t at)
    {
        const std::size_t group = parentRow(m_context.form, at + 1);
        if (group == 0)
            return;
        m_gone[group - 1] = true;
        for (std::size_t row = group; row < m_rows.size() && m_rows[row].level > 0; ++row)
            m_gone[row] = true;
    }

    // A folder that vanished has no files any more: its lines go all the same.
    void deleteFolder(const std::string& key, const std::string& path)
    {
        m_listed.reset();
        if (m_files.folderExists(path))
            m_files.removeTree(path);
        dropLines(key);
    }

    void deleteFile(std::size_t at, const std::string& path)
    {
        const std::string_view base = base::trim(m_rows[at].text);
        const std::string_view key = base::trim(m_rows[at].key);
        const std::size_t end = base.find('_');
        if (end == 0 || end == std::string_view::npos)
            return; // without a text to look for, any file would do
        const std::string mark =
            markOfTag(key.substr(key.size() - std::min(key.size(), kTagLength)));
        ListedFolder* folder = folderAt(path.substr(0, path.rfind('\\') + 1));
        if (folder != nullptr) {
            // Two texts, each anywhere in the name: `Ver1` meets `Ver12`, and `a` meets `data`.
            // The folder's order, which counts numbers, makes the first one the likely one.
            if (const auto file = folder->firstHolding(base.substr(0, end), mark))
                folder->remove(*file);
        }
        if (folder == nullptr || folder->remainingFiles() == 0) {
            if (folder != nullptr && !folder->hasSubfolders()) {
                folder->removeWhole();
                m_listed.reset();
            }
            // Without the backslash at its end `C:\work` would take `C:\workshop` with it.
            dropLines(m_rows[at].key.substr(0, m_rows[at].key.rfind('\\') + 1));
        }
        m_gone[at] = true;
    }

    void dropLines(std::string_view key)
    {
        m_catalogChanged = true;
        const std::string start = withGroup(key);
        m_clxnModelDrop.tryAdd(start, start);
    }

    // The rows of one folder stand together, so its listing serves all of them. Null where the
    // folder is gone.
    ListedFolder* folderAt(const std::string& path)
    {
        if (!m_listed || m_listedPath != path) {
            m_listed.reset();
            m_listedPath = path;
            if (!m_files.folderExists(path))
                return nullptr;
            m_listed.emplace(m_files, path);
        }
        return &*m_listed;
    }

    void rebuild()
    {
        ReconstructModelFile(m_context, m_clxnModelDrop);
        // Read before the list is cleared: where it cannot be read, the rows stay.
        PacedLoop loop(m_context.machine.messageLoop, m_context.machine.clock);
        bool anyLine = false;
        std::string names = groupsOfModel(m_context, loop, &anyLine);
        m_review.bFilesExist = anyLine;
        if (m_review.bOtherDataExists) {
            if (!m_review.bFilesExist)
                names.clear();
            names.append(names.empty() ? "" : ",").append(texts::kOtherDataGroup);
        }
        showGroups(m_review.bFilesExist || m_review.bOtherDataExists ? names : std::string());
    }

    // The list as it is after a load: groups alone, closed.
    void showGroups(const std::string& names)
    {
        m_rows.clear();
        ++m_context.form.rowsRevision;
        if (names.empty())
            return;
        m_review.bTopLevel = true;
        std::size_t index = 0;
        std::size_t insertAfter = 0;
        AddChildItems(m_context, index, insertAfter, base::split(names, ",").size(), false, names,
                      m_review.clxnChildren);
    }

    ReviewContext& m_context;
    platform::FileSystem& m_files;
    ReviewState& m_review;
    std::vector<ReviewRow>& m_rows;
    std::vector<bool> m_gone; // rows that leave the list, in step with it
    base::TextCollection m_clxnModelDrop;
    bool m_catalogChanged = false;
    std::string m_listedPath;
    std::optional<ListedFolder> m_listed;
};

// Keeps runs out of the archive. Null where one is in it, which the person is told.
std::unique_ptr<platform::FolderLock> lockArchive(ReviewContext& context)
{
    platform::FileSystem& files = context.machine.fileSystem;
    try {
        return files.lockFolder(context.review.sStoreRoot);
    } catch (const RuntimeError& error) {
        if (error.number() != error_number::kPermissionDenied)
            throw;
        files.openFolder(context.review.sStoreRoot)->list(); // no rights: that is another error
        context.machine.messageBoxes.show(texts::kArchiveInUse, texts::kTitle);
        return nullptr;
    }
}

} // namespace

void mnuDel_Click(ReviewContext& context)
{
    constexpr std::string_view kName = "mnuDel_Click";
    if (context.form.busy)
        return;
    trace::runTraced(context.trace, kName, texts::kModule, trace::customMessage(kName), [&] {
        context.review.bDeleteDone = true;
        const platform::Answer answer = context.machine.messageBoxes.show(
            texts::kDeleteQuestion, texts::kTitle, platform::Buttons::YesNo,
            platform::Icon::Exclamation);
        if (answer == platform::Answer::Yes)
            RestoreDel(context);
    });
}

void RestoreDel(ReviewContext& context)
{
    trace::runTraced(context.trace, "RestoreDel", texts::kModule,
                     trace::message(texts::kDeletionFailed), [&] {
                         const ReviewWork work(context.form);
                         const auto lock = lockArchive(context);
                         if (!lock)
                             return;
                         Deletion deletion(context);
                         base::PendingError failure;
                         failure.attempt([&] { deletion.deleteSelected(); });
                         // What was deleted leaves the list, whatever ended the deletion.
                         deletion.refresh();
                         if (failure)
                             throw RuntimeError(failure.number, failure.subject);
                     });
}

} // namespace vardelin::archive
