#pragma once

#include "runs/engine/profile_reader.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

// What a profile selects, as rules over names and paths; nothing here looks at a disk.
//
// Inclusions by extension or by name add files from all fixed drives to the sources. Exclusions by
// extension or by name come last and hold for every file, one that is a source by itself included.
namespace vardelin::engine {

// From the last dot on: `.gz` of `a.tar.gz`, `.bashrc` of `.bashrc`, empty where there is no dot.
std::string_view extensionOf(std::string_view fileName);

// Hash and equality of texts whose ASCII letters are alike in both cases; no text is copied.
struct CaseFreeHash {
    using is_transparent = void; // NOLINT(readability-identifier-naming): the library's name for it
    std::size_t operator()(std::string_view text) const noexcept;
};
struct CaseFreeEqual {
    using is_transparent = void; // NOLINT(readability-identifier-naming): the library's name for it
    bool operator()(std::string_view a, std::string_view b) const noexcept;
};

// Prepared once from a profile; asking allocates nothing, whatever the number of names. Const calls
// may come from several threads at once.
class Selection {
public:
    // `caseSensitivePaths` is the file system's rule, by which two sources are one or two.
    Selection(const EngineProfile& profile, bool caseSensitivePaths);

    // Takes a file's name without its folder.
    bool isExcluded(std::string_view fileName) const;
    // Whether the profile takes a file of this name from any fixed drive. Exclusions are not looked
    // at here.
    bool isIncludedBySystemScan(std::string_view fileName) const;
    bool needsSystemScan() const
    {
        return !m_includedExtensions.empty() || !m_includeNames.empty();
    }

    // The sources in the profile's order, each once, without those inside a folder source. Drive
    // letters are capitals and repeated backslashes are one. A folder source ends in a backslash,
    // and a whole drive is `C:\`.
    const std::vector<std::string>& folderSources() const { return m_folders; }
    const std::vector<std::string>& fileSources() const { return m_files; }
    // The sources that lie inside a folder source, in the same form. A walk of that folder meets
    // them unless a link or another drive's mount stands between; whoever walks can tell.
    const std::vector<std::string>& nestedSources() const { return m_nested; }

private:
    using ExtensionSet = std::unordered_set<std::string, CaseFreeHash, CaseFreeEqual>;

    ExtensionSet m_excludedExtensions;
    ExtensionSet m_includedExtensions;
    std::vector<std::string> m_excludeNames;
    std::vector<std::string> m_includeNames;
    std::vector<std::string> m_folders;
    std::vector<std::string> m_files;
    std::vector<std::string> m_nested;
};

} // namespace vardelin::engine
