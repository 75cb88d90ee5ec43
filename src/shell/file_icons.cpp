#include "shell/file_icons.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/file_system.h"

#include <algorithm>
#include <cstddef>

namespace vardelin::shell {
namespace {

constexpr int kNoIcon = -1;

// With its dot, lower case; empty where the name has none.
std::string extensionOf(std::string_view path)
{
    const std::string_view name = platform::leafOf(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string() : base::lowerAscii(name.substr(dot));
}

} // namespace

int FileIconList::iconIndex(std::string_view path)
{
    const std::string extension = extensionOf(path);
    if (const auto known = m_byExtension.find(extension); known != m_byExtension.end())
        return known->second;
    std::string name;
    base::PendingError unanswered;
    unanswered.attempt([&] { name = m_shell.iconName(extension); });
    if (unanswered)
        return kNoIcon; // another time it may answer
    int index = kNoIcon;
    if (!name.empty()) {
        const auto there = std::find(m_names.begin(), m_names.end(), name);
        index = m_first + static_cast<int>(there - m_names.begin());
        if (there == m_names.end())
            m_names.push_back(name);
    }
    m_byExtension.emplace(extension, index);
    return index;
}

std::string FileIconList::iconName(int index) const
{
    return m_names.at(static_cast<std::size_t>(index - m_first));
}

std::string FileIconList::typeName(std::string_view path)
{
    std::string name;
    base::PendingError unanswered;
    unanswered.attempt([&] { name = m_shell.typeName(extensionOf(path)); });
    return name;
}

} // namespace vardelin::shell
