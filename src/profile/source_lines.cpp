#include "profile/source_lines.h"

#include "base/text.h"

#include <cstddef>
#include <string>

namespace vardelin::profile {
namespace {

constexpr int kDriveImage = 1;

void addDrive(state::TreeView& tree, const std::string& key, std::string_view text)
{
    if (tree.find(key) != nullptr)
        return; // the tree takes a key once
    state::TreeNode& drive = tree.add(nullptr, {key, std::string(text), kDriveImage});
    drive.foreColor = state::kWhollySelectedColor;
    drive.checked = true;
    tree.add(&drive, {}); // contents not read yet
}

} // namespace

void addOpenedSource(std::string_view line, base::TextCollection& sources, state::TreeView& tree)
{
    const auto pieces = base::split(line, "\\");
    std::string prefix;
    for (std::size_t i = 0; i + 1 < pieces.size(); ++i) {
        prefix.append(pieces[i]).append("\\");
        if (sources.contains(prefix))
            continue;
        if (pieces[i].find(':') != std::string_view::npos) {
            sources.add(prefix, prefix);
            addDrive(tree, prefix, pieces[i]);
        } else if (prefix == line) {
            const std::string mark = prefix + "*";
            sources.tryAdd(mark, mark);
            return;
        } else {
            sources.add(prefix, prefix);
        }
    }
    if (!line.empty() && !sources.contains(line))
        sources.add(std::string(line), line);
}

} // namespace vardelin::profile
