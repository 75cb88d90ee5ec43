#include "archive/line_files.h"
#include "archive/model_file.h"
#include "archive/review.h"
#include "archive/review_texts.h"
#include "archive/review_work.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "trace/messages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace vardelin::archive {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;
namespace texts = review_texts;

constexpr std::size_t kOddLines = 2; // as many as the table of them holds

int loadSentence(int number)
{
    switch (number) {
    case error_number::kFileNotFound:
        return texts::kLoadNoFile;
    case error_number::kFileAlreadyOpen:
        return texts::kLoadFileOpen;
    case error_number::kPastEnd:
        return texts::kLoadPastEnd;
    default:
        return texts::kLoadFailed;
    }
}

void showHelp(state::frmVDStorage& form)
{
    form.Label33.caption = texts::kHelp33;
    form.Label34.caption = texts::kHelp34;
    form.Label35.caption = texts::kHelp35;
    form.Label36.caption = texts::kHelp36;
    form.Label37.caption = texts::kHelp37;
}

void clearReview(ReviewState& review)
{
    review.sStoreRoot.clear();
    review.clxnArchiveFiles.clear();
    review.bOtherDataExists = false;
    review.bFilesExist = false;
    review.bTopLevel = false;
    review.clxnChildren.clear();
    review.clxnChildKeys.clear();
    review.clxnDeleted.clear();
    review.bDeleteDone = false;
}

void unload(ReviewContext& context, std::string_view reason)
{
    context.machine.messageBoxes.show(reason, texts::kTitle);
    context.form.loaded = false;
}

// Whether a folder holds nothing but the file that stands for its lock, as it does on network
// drives once a run was there.
bool holdsNothing(platform::FileSystem& files, const std::string& folder)
{
    const auto entries = files.openFolder(folder)->list();
    return std::all_of(entries.begin(), entries.end(), [](const platform::FolderEntry& entry) {
        return entry.name == platform::kLockFileName;
    });
}

// Not under a run that has made the folder and looks for its first file.
void removeEmpty(platform::FileSystem& files, const std::string& root)
{
    std::unique_ptr<platform::FolderLock> lock;
    base::PendingError held;
    if (!held.attempt([&] { lock = files.lockFolder(root); }) || !holdsNothing(files, root))
        return;
    const std::string lockFile = platform::joinPath(root, platform::kLockFileName);
    if (files.fileExists(lockFile))
        files.removeFile(lockFile);
    files.removeFolder(root);
}

// Whether there is an archive to walk; the person has been told where there is none.
bool findArchive(ReviewContext& context)
{
    platform::FileSystem& files = context.machine.fileSystem;
    const std::string& root = context.review.sStoreRoot;
    if (root.empty() || !files.folderExists(root)) {
        unload(context, texts::kNoArchive);
        return false;
    }
    if (holdsNothing(files, root)) {
        removeEmpty(files, root);
        unload(context, texts::kEmptyArchive);
        return false;
    }
    return true;
}

void writeCatalog(ReviewContext& context, PacedLoop& loop)
{
    const CatalogContext catalog{context.machine.fileSystem, loop, context.trace,
                                 context.frame.ST_App_Path};
    std::string_view folder = context.review.sStoreRoot;
    folder.remove_suffix(1);
    RecursiveCallForSubFolders(catalog, context.review, folder);
    WritingFileFromClxn(catalog, context.review, context.review.sStoreRoot);
    context.review.clxnArchiveFiles.clear();
}

// The text of a whole file, in one piece of its size: a catalog has a hundred megabytes.
std::string readWhole(platform::FileSystem& fileSystem, std::string_view path)
{
    const auto file = fileSystem.open(path, platform::OpenMode::Read);
    std::string text(file->info().sizeBytes, '\0');
    std::size_t held = 0;
    while (held < text.size()) {
        const std::span<char> room(text.data() + held, text.size() - held);
        const std::size_t count = file->read(std::as_writable_bytes(room));
        if (count == 0)
            break;
        held += count;
    }
    text.resize(held);
    return text;
}

// The lines of Data\ReviewFiles.txt, told apart; views into its text.
struct ReadCatalog {
    std::string text;
    std::vector<std::string_view> List1;
    std::vector<std::string_view> oddLines;
};

void readCatalog(ReviewContext& context, PacedLoop& loop, ReadCatalog& catalog)
{
    catalog.text =
        readWhole(context.machine.fileSystem, reviewFilesPath(context.frame.ST_App_Path));
    const std::string_view text = catalog.text;
    catalog.List1.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    for (std::size_t at = 0; at < text.size();) {
        loop.step();
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string_view line = text.substr(at, end - at);
        at = end + 1;
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (parseCatalogLine(line).versioned) {
            catalog.List1.push_back(line);
            continue;
        }
        // An archive that we made has no such line; a third one is past the end of their table.
        if (catalog.oddLines.size() == kOddLines)
            throw RuntimeError(error_number::kSubscript, std::string(line));
        catalog.oddLines.push_back(line);
    }
    // By the bytes of the whole line. In any other order `Work\` and `work\` would interleave where
    // both exist, and whoever reads the list relies on a folder's lines being adjacent.
    std::sort(catalog.List1.begin(), catalog.List1.end());
}

void writeModel(ReviewContext& context, PacedLoop& loop, const ReadCatalog& catalog)
{
    platform::FileSystem& files = context.machine.fileSystem;
    const std::string& app = context.frame.ST_App_Path;
    files.removeFile(reviewFilesPath(app));
    removeModel(files, app);
    LineWriter model(files, modelPath(app));
    for (const std::string_view line : catalog.List1) {
        loop.step();
        model.write(line);
    }
    model.close();
}

void addGroups(ReviewContext& context, std::string names)
{
    ReviewState& review = context.review;
    if (review.bOtherDataExists) {
        if (!review.bFilesExist)
            names.clear();
        names.append(names.empty() ? "" : ",").append(texts::kOtherDataGroup);
    }
    if (!review.bFilesExist && !review.bOtherDataExists)
        return;
    review.bTopLevel = true;
    std::size_t index = 0;
    std::size_t insertAfter = 0;
    AddChildItems(context, index, insertAfter, base::split(names, ",").size(), false, names,
                  review.clxnChildren);
}

void load(ReviewContext& context)
{
    ReviewState& review = context.review;
    state::frmVDStorage& form = context.form;
    clearReview(review);
    form.lstRestore.clear();
    ++form.rowsRevision;
    showHelp(form);
    form.loaded = true;

    PacedLoop loop(context.machine.messageLoop, context.machine.clock);
    review.sStoreRoot =
        archiveRoot(context.profile.sDestinationPath, context.frame.ST_Current_Profile);
    if (context.profile.bCompressFiles) {
        if (!findArchive(context))
            return;
        writeCatalog(context, loop);
    }
    std::vector<std::string> oddLines;
    {
        ReadCatalog catalog;
        readCatalog(context, loop, catalog);
        writeModel(context, loop, catalog);
        oddLines.assign(catalog.oddLines.begin(), catalog.oddLines.end());
        if (!context.profile.bCompressFiles) {
            // Nobody walked this archive, so its list and its folder are asked.
            review.bFilesExist = !catalog.List1.empty();
            review.bOtherDataExists = context.machine.fileSystem.folderExists(
                review.sStoreRoot + std::string(kOtherDataFolder));
        }
    }
    std::string names = groupsOfModel(context, loop);
    for (const std::string& line : oddLines)
        names.append(names.empty() ? "" : ",").append(line);
    addGroups(context, std::move(names));
}

} // namespace

void frmVDStorage_Load(ReviewContext& context)
{
    constexpr std::string_view kName = "frmVDStorage_Load";
    base::PendingError failure;
    failure.attempt([&] {
        const trace::TraceScope scope(context.trace.trace, kName);
        const ReviewWork work(context.form);
        load(context);
    });
    trace::errorTail(context.trace,
                     {kName, kName, texts::kModule, trace::message(loadSentence(failure.number))},
                     failure);
}

} // namespace vardelin::archive
