#include "platform/memory/memory_shell.h"

#include "base/text.h"

namespace vardelin::platform {

std::string MemoryShell::typeName(std::string_view extension)
{
    script().enter("shell.typeName", extension);
    return typeOf(extension).name;
}

std::string MemoryShell::iconName(std::string_view extension)
{
    script().enter("shell.iconName", extension);
    return typeOf(extension).icon;
}

std::vector<std::string> MemoryShell::extensions()
{
    script().enter("shell.extensions", {});
    std::vector<std::string> result;
    for (const auto& [extension, type] : types)
        result.push_back(extension);
    return result;
}

std::vector<std::string> MemoryShell::defaultDocumentLines()
{
    script().enter("shell.defaultDocumentLines", {});
    return documentLines;
}

std::vector<std::string> MemoryShell::settingsPaths(std::string_view group)
{
    script().enter("shell.settingsPaths", group);
    const auto hit = settings.find(std::string(group));
    return hit == settings.end() ? std::vector<std::string>{} : hit->second;
}

void MemoryShell::runKeyChanged(Registry&)
{
    script().enter("shell.runKeyChanged", {});
}

void MemoryShell::addRecentDocument(std::string_view path)
{
    script().enter("shell.addRecentDocument", path);
    recentDocuments.emplace_back(path);
}

MemoryShell::Type MemoryShell::typeOf(std::string_view extension) const
{
    const auto hit = types.find(base::lowerAscii(extension));
    return hit == types.end() ? Type{} : hit->second;
}

} // namespace vardelin::platform
