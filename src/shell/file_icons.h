#pragma once

#include "platform/machine.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::shell {

// The icons and type names of files, by their extension alone: a file need not exist.
class FileIconList {
public:
    // `firstIndex` is the index of the first icon that is added. The shell must outlive this.
    FileIconList(platform::Shell& shell, int firstIndex) : m_shell(shell), m_first(firstIndex) {}

    // The icon's index in the list, to which it is added at its first use; -1 where the desktop has
    // none for the path's extension, or does not answer.
    int iconIndex(std::string_view path);
    // The icon's name in the desktop's theme.
    std::string iconName(int index) const;
    // Empty where the desktop knows no type for the extension.
    std::string typeName(std::string_view path);

private:
    platform::Shell& m_shell;
    int m_first;
    std::vector<std::string> m_names;
    std::map<std::string, int, std::less<>> m_byExtension;
};

} // namespace vardelin::shell
