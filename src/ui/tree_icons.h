#pragma once

#include "platform/machine.h"
#include "state/tree_view.h"

#include <string>
#include <string_view>
#include <unordered_map>

#include <QIcon>

namespace vardelin::ui {

// In lower case with its dot; empty for a name without one, such as `.profile`.
std::string extensionOf(std::string_view name);

// The icons of the source tree and of the review: our own for drives and folders, the desktop's by
// its extension for a file. Nothing is looked up before it is painted, and an extension once.
class TreeIcons {
public:
    // Without a shell all files have one icon. It must outlive this.
    explicit TreeIcons(platform::Shell* shell);

    QIcon iconOf(const state::TreeNode& node);
    // The icon of files with a name of this kind; no such file need exist.
    QIcon ofFile(std::string_view name) { return ofExtension(extensionOf(name)); }

private:
    QIcon ofExtension(const std::string& extension);

    platform::Shell* m_shell;
    QIcon m_drive;
    QIcon m_folder;
    QIcon m_openFolder;
    QIcon m_file;
    std::unordered_map<std::string, QIcon> m_byExtension;
};

} // namespace vardelin::ui
