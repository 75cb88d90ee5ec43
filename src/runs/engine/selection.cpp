#include "runs/engine/selection.h"

#include "base/text.h"

#include <algorithm>
#include <cstdint>

namespace vardelin::engine {
namespace {

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// One spelling for each path; the two backslashes in front of a network path stay.
std::string normalPath(std::string_view path)
{
    std::string result;
    result.reserve(path.size() + 1);
    for (const char c : path) {
        const bool repeated = c == '\\' && !result.empty() && result.back() == '\\';
        if (!repeated || result.size() == 1)
            result += c;
    }
    if (platform::isDriveRoot(result) && result.size() == 2)
        result += '\\';
    if (result.size() >= 2 && result[1] == ':')
        result[0] = upper(result[0]);
    return result;
}

// Whether a folder on the way to `path`, the path itself left out, is among `folders`.
bool liesInside(std::string_view path, const std::unordered_set<std::string>& folders)
{
    for (std::size_t at = path.find('\\'); at != std::string_view::npos && at + 1 < path.size();
         at = path.find('\\', at + 1)) {
        if (folders.contains(std::string(path.substr(0, at + 1))))
            return true;
    }
    return false;
}

bool matchesAny(std::string_view fileName, const std::vector<std::string>& patterns)
{
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
        return base::matchesPattern(fileName, pattern);
    });
}

} // namespace

std::string_view extensionOf(std::string_view fileName)
{
    const std::size_t at = fileName.rfind('.');
    return at == std::string_view::npos ? std::string_view{} : fileName.substr(at);
}

std::size_t CaseFreeHash::operator()(std::string_view text) const noexcept
{
    // FNV-1a, 64 bits: extensions are a few bytes long.
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(lower(c));
        hash *= 0x100000001b3U;
    }
    return static_cast<std::size_t>(hash);
}

bool CaseFreeEqual::operator()(std::string_view a, std::string_view b) const noexcept
{
    return base::equalsIgnoringCase(a, b);
}

Selection::Selection(const EngineProfile& profile, bool caseSensitivePaths)
    : m_excludedExtensions(profile.excludedExtensions.begin(), profile.excludedExtensions.end()),
      m_includedExtensions(profile.includedExtensions.begin(), profile.includedExtensions.end()),
      m_excludeNames(profile.excludeNames), m_includeNames(profile.includeNames)
{
    const auto keyOf = [&](std::string_view path) {
        return caseSensitivePaths ? std::string(path) : base::lowerAscii(path);
    };
    std::vector<std::string> sources;
    std::unordered_set<std::string> seen;
    std::unordered_set<std::string> folders;
    for (const std::string& line : profile.sources) {
        std::string path = normalPath(line);
        std::string key = keyOf(path);
        if (path.empty() || !seen.insert(key).second)
            continue;
        if (path.back() == '\\')
            folders.insert(std::move(key));
        sources.push_back(std::move(path));
    }
    for (std::string& path : sources) {
        if (liesInside(keyOf(path), folders))
            m_nested.push_back(std::move(path));
        else if (path.back() == '\\')
            m_folders.push_back(std::move(path));
        else
            m_files.push_back(std::move(path));
    }
}

bool Selection::isExcluded(std::string_view fileName) const
{
    return (!m_excludedExtensions.empty() &&
            m_excludedExtensions.contains(extensionOf(fileName))) ||
           matchesAny(fileName, m_excludeNames);
}

bool Selection::isIncludedBySystemScan(std::string_view fileName) const
{
    return (!m_includedExtensions.empty() &&
            m_includedExtensions.contains(extensionOf(fileName))) ||
           matchesAny(fileName, m_includeNames);
}

} // namespace vardelin::engine
