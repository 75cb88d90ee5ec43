#include "profile/file_list.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/path_rule.h"
#include "profile/file_details.h"

#include <utility>
#include <vector>

namespace vardelin::profile {
namespace {

using platform::FileKind;
using platform::FolderEntryInfo;

constexpr double kBarShare = 25;
constexpr double kGuessedFiles = 500000; // a very large tree, so that the bar creeps
constexpr double kSubfolderBound = 65;
constexpr double kFileBound = 50;
constexpr int kLastDots = 6;
constexpr int kFirstDots = 3;

// Counts one level of recursion, however it is left.
class DepthGuard {
public:
    explicit DepthGuard(int& depth) : m_depth(depth) { ++m_depth; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;
    ~DepthGuard() { --m_depth; }

private:
    int& m_depth;
};

std::vector<FolderEntryInfo> entriesOf(platform::FileSystem& fileSystem, std::string_view folder)
{
    std::vector<FolderEntryInfo> entries;
    base::PendingError nothingFound;
    nothingFound.attempt([&] { entries = fileSystem.list(folder); });
    return entries;
}

} // namespace

clsFiles::clsFiles(ListingContext context, std::string path)
    : m_context(context), m_path(std::move(path)), m_entries(platform::pathRule(context.fileSystem))
{
}

std::string clsFiles::sName() const
{
    return profile::sFilename(m_context.trace, m_path, kNamePart);
}

std::string clsFiles::sNameAndExtension() const
{
    return profile::sFilename(m_context.trace, m_path, kNamePart + kExtensionPart);
}

std::string clsFiles::sExtension() const
{
    return profile::sFilename(m_context.trace, m_path, kExtensionPart);
}

std::string clsFiles::sPath() const
{
    return profile::sFilename(m_context.trace, m_path, kFolderPart);
}

base::DateTime clsFiles::dCreated() const
{
    const FileInformation info = fileInformation(m_context.trace, m_context.fileSystem, m_path);
    return TimeFileToDate(m_context.trace, info.created);
}

clsFiles& clsFiles::add(std::string_view path)
{
    m_entries.add(std::make_unique<clsFiles>(m_context, std::string(path)));
    return *m_entries.item(m_entries.count());
}

clsFiles& clsFiles::add(std::string_view path, std::string_view key)
{
    m_entries.add(std::make_unique<clsFiles>(m_context, std::string(path)), key);
    return *m_entries.item(m_entries.count());
}

void clsFiles::advance(double bound)
{
    const double step = base::round(kBarShare / kGuessedFiles, 6);
    state::ProgressBar& bar = m_context.frame.pb;
    if (bar.value + step < bound)
        bar.value += step;
}

void clsFiles::LoadFiles(std::string_view pattern, bool recurse, std::size_t& count)
{
    const trace::TailNames names{"Load Files", "LoadFiles", "ModFileDet",
                                 "Undefined error in loading searched files in the class object"};
    trace::runTraced(m_context.trace, "LoadFiles", names, [&] {
        ListingState& listing = m_context.listing;
        const DepthGuard level(listing.depth);
        if (listing.depth == 1)
            m_entries.clear();
        if (!m_context.frame.bListingProfiles) {
            if (listing.SaveProgressStep > kLastDots)
                listing.SaveProgressStep = kFirstDots;
            else
                ++listing.SaveProgressStep;
        }
        if (recurse)
            loadSubfolders(pattern);
        loadMatching(pattern);
        count = m_entries.count();
    });
}

void clsFiles::loadSubfolders(std::string_view pattern)
{
    trace::TraceContext& trace = m_context.trace;
    const std::string mask = profile::sFilename(trace, pattern, kNamePart + kExtensionPart);
    const std::string folder =
        sAppend(trace, profile::sFilename(trace, pattern, kFolderPart), "\\");
    for (const FolderEntryInfo& entry : entriesOf(m_context.fileSystem, folder)) {
        if (entry.info.kind == FileKind::Folder) {
            const std::string name = sNT(trace, entry.name);
            std::size_t countSoFar = 0;
            std::string inner = folder;
            inner.append(name).append("\\").append(mask);
            LoadFiles(inner, true, countSoFar);
        }
        advance(kSubfolderBound);
    }
}

void clsFiles::loadMatching(std::string_view pattern)
{
    const std::string folder(pattern.substr(0, pattern.rfind('\\') + 1));
    const std::string_view mask = pattern.substr(folder.size());
    for (const FolderEntryInfo& entry : entriesOf(m_context.fileSystem, folder)) {
        if (!base::matchesPattern(entry.name, mask))
            continue;
        const std::string path = folder + entry.name;
        const bool isFile =
            entry.info.kind == FileKind::Regular ||
            (entry.info.kind == FileKind::SymbolicLink && m_context.fileSystem.fileExists(path));
        if (isFile)
            add(path);
        advance(kFileBound);
    }
}

} // namespace vardelin::profile
