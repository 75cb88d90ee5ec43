#include "ctl/paths.h"

#include "base/runtime_error.h"
#include "base/text.h"

#include <vector>

namespace vardelin::ctl {
namespace {

// Joins the names of `path` behind `head`; `..` takes back the name in front of it.
std::string normalized(std::string_view path, char separator, std::string head)
{
    std::vector<std::string_view> names;
    for (const std::string_view name : base::split(path, std::string_view(&separator, 1))) {
        if (name == "..") {
            if (!names.empty())
                names.pop_back();
        } else if (!name.empty() && name != ".") {
            names.push_back(name);
        }
    }
    std::string result = std::move(head);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0)
            result += separator;
        result += names[i];
    }
    return result;
}

} // namespace

bool hasDriveLetter(std::string_view typed)
{
    if (typed.size() < 2 || typed[1] != ':')
        return false;
    const char letter = base::upperAscii(typed.substr(0, 1)).front();
    return letter >= 'A' && letter <= 'Z' &&
           (typed.size() == 2 || typed[2] == '\\' || typed[2] == '/');
}

bool endsInSeparator(std::string_view typed)
{
    return typed.ends_with('/') || (hasDriveLetter(typed) && typed.ends_with('\\'));
}

std::string drivePath(const platform::FileSystem& fileSystem, std::string_view workingFolder,
                      std::string_view typed)
{
    if (typed.empty())
        throw base::RuntimeError(base::error_number::kInvalidCall, "\"\"", "a path is empty");
    if (hasDriveLetter(typed)) {
        // A name of this form cannot hold a slash.
        const std::string path = base::replaceAll(typed.substr(2), "/", "\\");
        return normalized(path, '\\', base::upperAscii(typed.substr(0, 1)) + ":\\");
    }
    std::string path(typed);
    if (!typed.starts_with('/'))
        path = std::string(workingFolder) + "/" + path;
    return fileSystem.fromNative(normalized(path, '/', "/"));
}

std::string shownPath(const platform::FileSystem& fileSystem, std::string_view path)
{
    try {
        return fileSystem.toNative(path);
    } catch (const base::RuntimeError&) {
        return std::string(path);
    }
}

} // namespace vardelin::ctl
