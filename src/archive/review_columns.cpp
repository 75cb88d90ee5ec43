#include "archive/review_columns.h"

#include "archive/review_texts.h"
#include "base/dates.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "trace/messages.h"

#include <algorithm>

#include <fmt/format.h>

namespace vardelin::archive {
namespace {

namespace texts = review_texts;

constexpr std::uint64_t kBytesPerKb = 1024;
constexpr std::size_t kTagWithUnderscore = 4;

} // namespace

std::string archivePathOfKey(std::string_view storeRoot, std::string_view key)
{
    if (key.size() < 2 || key[1] != ':')
        return {};
    return std::string(storeRoot).append(key.substr(0, 1)).append(key.substr(2));
}

std::string sizeText(std::uint64_t bytes)
{
    // There are no MB here, whatever the length: people compare these figures down a column.
    return bytes >= kBytesPerKb ? fmt::format("{} KB", bytes / kBytesPerKb)
                                : fmt::format("{} B", bytes);
}

std::string GetFileSize(ReviewContext& context, std::string_view path)
{
    std::string text = "0B";
    trace::runTraced(
        context.trace, "GetFileSize", texts::kModule, trace::message(texts::kSizeFailed), [&] {
            const auto info = context.machine.fileSystem.find(path);
            if (!info)
                throw base::RuntimeError(base::error_number::kFileNotFound, std::string(path));
            text = sizeText(info->sizeBytes);
        });
    return text;
}

std::string versionText(const state::ReviewRow& row)
{
    if (!row.file)
        return {};
    const std::string_view text = row.text;
    return std::string(texts::kVersion)
        .append(text.substr(text.size() - std::min<std::size_t>(text.size(), 3)));
}

std::string_view modifiedText(const state::ReviewRow& row)
{
    return row.file ? texts::kModified : std::string_view{};
}

const ListedFolder* ColumnFiller::folderOf(std::string_view key)
{
    std::string path =
        archivePathOfKey(m_context.review.sStoreRoot, key.substr(0, key.rfind('\\') + 1));
    if (path.empty())
        return nullptr;
    if (path != m_path) {
        m_listed.reset();
        m_path = std::move(path);
        base::PendingError vanished; // the columns stay empty
        vanished.attempt([&] { m_listed.emplace(m_context.machine.fileSystem, m_path); });
    }
    return m_listed ? &*m_listed : nullptr;
}

void ColumnFiller::fill(state::ReviewRow& row, std::string_view name)
{
    const ListedFolder* folder = folderOf(row.key);
    if (folder == nullptr || name.size() < kTagWithUnderscore)
        return;
    // The mark of version 7 is also found in a version 71: the folder's order decides.
    const std::string_view head = name.substr(0, name.size() - kTagWithUnderscore);
    const std::string mark = markOfTag(name.substr(name.size() - kTagWithUnderscore + 1));
    const auto file = folder->firstOfCopy(head, mark);
    if (!file)
        return;
    if (const auto info = folder->info(*file)) {
        row.sizeBytes = info->sizeBytes;
        row.size = sizeText(info->sizeBytes);
        row.createdOn = base::generalDate(m_context.machine.clock.toLocal(info->createdNs));
    } else {
        row.size = GetFileSize(m_context, platform::joinPath(m_path, folder->name(*file)));
    }
}

} // namespace vardelin::archive
