#pragma once

#include "platform/file_system.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vardelin::archive {

// The files of one archive folder, listed once, for looking up archive files by parts of their
// names. All comparisons ignore ASCII case, and of several files that fit, the first one in the
// folder's order (naturalLess) is meant, as somebody would find it who reads the folder from its
// top.
//
// A mark is `FULL`, or `Ver` and a plain number. It is looked for as text, so `Ver7` is found in
// `Ver71`, too.
class ListedFolder {
public:
    // Raises what listing raises; 76 where the folder is missing.
    ListedFolder(platform::FileSystem& fileSystem, std::string_view path);

    // The first file whose name holds `head`, an underscore and the mark in one piece.
    std::optional<std::size_t> firstOfCopy(std::string_view head, std::string_view mark) const;
    // The first file whose name holds `base` and the mark, each anywhere.
    std::optional<std::size_t> firstHolding(std::string_view base, std::string_view mark) const;

    // Files by their place in the folder's order, from 0.
    std::string_view name(std::size_t file) const;
    std::size_t count() const noexcept { return m_files.size(); }
    // Follows a link to a file; none where the file is gone.
    std::optional<platform::FileInfo> info(std::size_t file) const;
    // Deletes it from the disk. It is found no more, while the places of the others stay.
    void remove(std::size_t file);

    // What is left of files that somebody made: neither temporary ones nor the folder's own record.
    std::size_t remainingFiles() const noexcept { return m_remaining; }
    bool hasSubfolders() const { return m_subfolders; }
    // Deletes the folder with what remainingFiles() does not count. 75 where more is in it.
    void removeWhole();

private:
    struct Name {
        std::size_t at = 0; // in the texts of all names
        std::size_t length = 0;
        bool own = false; // temporary, or the folder's record
        bool gone = false;
    };
    // A bit for each pair of bytes that a text holds; different pairs may share one. A text can be
    // a part of another only where its bits are.
    struct Pairs {
        std::array<std::uint64_t, 2> bits{};
        bool holds(const Pairs& part) const noexcept
        {
            return ((part.bits[0] & ~bits[0]) | (part.bits[1] & ~bits[1])) == 0;
        }
    };
    static Pairs pairsOf(std::string_view text);
    // One place of a mark in a name.
    struct Place {
        std::uint32_t file = 0;
        std::uint32_t at = 0;
    };

    std::string_view upperName(std::size_t file) const;
    // What stands in front of a mark, from its end.
    std::string_view frontBackwards(const Place& place) const;
    void noteMarks(std::size_t file);
    void forgetGone();
    // Every place where the name of a mark stands, in the order of the files; null for none.
    const std::vector<Place>* placesOf(const std::string& upperMark) const;
    const std::vector<Place>& byHead(const std::string& upperMark) const;

    platform::FileSystem& m_fileSystem;
    std::unique_ptr<platform::Folder> m_folder;
    std::string m_names;
    std::string m_upperNames;
    std::string m_backwards; // the same, each name from its end
    std::vector<Name> m_files;
    std::vector<Pairs> m_pairs; // of the upper names, in step with m_files
    std::size_t m_remaining = 0;
    std::size_t m_goneStill = 0; // files in m_places that are gone
    bool m_subfolders = false;
    std::unordered_map<std::string, std::vector<Place>> m_places;
    // The same places, sorted by what stands in front of them, read backwards; made on demand.
    mutable std::unordered_map<std::string, std::vector<Place>> m_byHead;
};

// The mark of a tag: `FULL` for `000`, else `Ver` and the tag's number without leading zeros.
std::string markOfTag(std::string_view tag);

} // namespace vardelin::archive
