#include "ui/tree_icons.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "editor/editor_context.h"
#include "ui/shown_text.h"

namespace vardelin::ui {
namespace {

constexpr std::size_t kMostExtensions = 512; // kept; names with numbers behind a dot have many

} // namespace

TreeIcons::TreeIcons(platform::Shell* shell)
    : m_shell(shell), m_drive(QStringLiteral(":/icons/drive.svg")),
      m_folder(QStringLiteral(":/icons/folder.svg")),
      m_openFolder(QStringLiteral(":/icons/folder-open.svg")),
      m_file(QStringLiteral(":/icons/file.svg"))
{
}

QIcon TreeIcons::iconOf(const state::TreeNode& node)
{
    const bool opened = node.expanded && node.expandedImage != 0;
    switch (opened ? node.expandedImage : node.image) {
    case 0:
        return {};
    case editor::kDriveImage:
        return m_drive;
    case editor::kFolderImage:
        return m_folder;
    case editor::kOpenFolderImage:
        return m_openFolder;
    default:
        return ofExtension(extensionOf(node.text));
    }
}

QIcon TreeIcons::ofExtension(const std::string& extension)
{
    if (extension.empty() || m_shell == nullptr)
        return m_file;
    if (const auto hit = m_byExtension.find(extension); hit != m_byExtension.end())
        return hit->second;
    QIcon icon;
    base::PendingError unknown; // a desktop that does not answer leaves the plain icon
    unknown.attempt([&] {
        const std::string name = m_shell->iconName(extension);
        if (!name.empty())
            icon = QIcon::fromTheme(shown(name));
    });
    if (icon.isNull() || icon.availableSizes().isEmpty())
        icon = m_file;
    if (m_byExtension.size() >= kMostExtensions)
        m_byExtension.clear();
    m_byExtension.emplace(extension, icon);
    return icon;
}

std::string extensionOf(std::string_view name)
{
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size())
        return {};
    return base::lowerAscii(name.substr(dot));
}

} // namespace vardelin::ui
