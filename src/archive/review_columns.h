#pragma once

#include "archive/listed_folder.h"
#include "archive/review.h"

#include <optional>
#include <string>
#include <string_view>

namespace vardelin::archive {

// Fills size and date of the file rows of one folder, from one look at its archive folder. A folder
// that cannot be listed leaves all of them empty: the row shows that its file is not to be found.
class ColumnFiller {
public:
    explicit ColumnFiller(ReviewContext& context) : m_context(context) {}

    // `name` is the name with its tag, `report.doc_007`; the row's key tells the folder.
    void fill(state::ReviewRow& row, std::string_view name);

private:
    const ListedFolder* folderOf(std::string_view key);

    ReviewContext& m_context;
    std::string m_path; // of the folder that m_listed holds, empty at first
    std::optional<ListedFolder> m_listed;
};

// `C:\work\` and `C:\work\report.doc_007` below the archive root: without the colon. Empty for a
// key that has none at its second place.
std::string archivePathOfKey(std::string_view storeRoot, std::string_view key);

} // namespace vardelin::archive
