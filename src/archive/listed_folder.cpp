#include "archive/listed_folder.h"

#include "archive/entry_names.h"
#include "base/text.h"

#include <algorithm>
#include <iterator>

namespace vardelin::archive {
namespace {

using platform::FileKind;
using platform::FolderEntry;

constexpr std::string_view kFull = "FULL";
constexpr std::string_view kVersion = "VER";
constexpr std::size_t kTagDigits = 3;  // no tag asks for a number with more
constexpr std::size_t kMostGone = 256; // that a search passes over

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// What no person put there and nobody misses.
bool isTemporary(std::string_view name)
{
    return isTemporaryName(name) ||
           (base::startsWithIgnoringCase(name, "~vd") && base::endsWithIgnoringCase(name, ".tmp"));
}

bool isOwn(std::string_view name)
{
    return isTemporary(name) || parseFolderRecordName(name).has_value();
}

// `FULL`, or `VER` and as many digits as are noted of every name.
bool isPlainMark(std::string_view mark)
{
    if (mark == kFull)
        return true;
    if (!mark.starts_with(kVersion))
        return false;
    const std::string_view digits = mark.substr(kVersion.size());
    return !digits.empty() && digits.size() <= kTagDigits &&
           std::all_of(digits.begin(), digits.end(), isDigit);
}

} // namespace

std::string markOfTag(std::string_view tag)
{
    if (tag == "000")
        return "FULL";
    return "Ver" + base::numberText(base::val(tag));
}

ListedFolder::ListedFolder(platform::FileSystem& fileSystem, std::string_view path)
    : m_fileSystem(fileSystem), m_folder(fileSystem.openFolder(path))
{
    std::vector<FolderEntry> entries = m_folder->list();
    const auto isFolder = [](const FolderEntry& entry) { return entry.kind == FileKind::Folder; };
    const auto files = std::partition(entries.begin(), entries.end(), isFolder);
    m_subfolders = files != entries.begin();
    entries.erase(entries.begin(), files);
    std::sort(entries.begin(), entries.end(), [](const FolderEntry& a, const FolderEntry& b) {
        return base::naturalLess(a.name, b.name);
    });
    m_files.reserve(entries.size());
    for (const FolderEntry& entry : entries) {
        const bool own = isOwn(entry.name);
        m_files.push_back({m_names.size(), entry.name.size(), own, false});
        m_remaining += own ? 0U : 1U;
        m_names += entry.name;
    }
    m_upperNames = base::upperAscii(m_names);
    m_backwards = m_upperNames;
    for (const Name& name : m_files) {
        const auto first = m_backwards.begin() + static_cast<std::ptrdiff_t>(name.at);
        std::reverse(first, first + static_cast<std::ptrdiff_t>(name.length));
    }
    m_pairs.reserve(m_files.size());
    for (std::size_t file = 0; file < m_files.size(); ++file) {
        noteMarks(file);
        m_pairs.push_back(pairsOf(upperName(file)));
    }
}

ListedFolder::Pairs ListedFolder::pairsOf(std::string_view text)
{
    Pairs pairs;
    for (std::size_t at = 1; at < text.size(); ++at) {
        const auto first = static_cast<unsigned char>(text[at - 1]);
        const auto second = static_cast<unsigned char>(text[at]);
        const std::uint32_t bit = ((first * 256U + second) * 0x9e3779b1U) >> 25U;
        pairs.bits[bit / 64U] |= std::uint64_t{1} << (bit % 64U);
    }
    return pairs;
}

std::string_view ListedFolder::name(std::size_t file) const
{
    return std::string_view(m_names).substr(m_files[file].at, m_files[file].length);
}

std::string_view ListedFolder::upperName(std::size_t file) const
{
    return std::string_view(m_upperNames).substr(m_files[file].at, m_files[file].length);
}

std::string_view ListedFolder::frontBackwards(const Place& place) const
{
    const Name& name = m_files[place.file];
    return std::string_view(m_backwards).substr(name.at + name.length - place.at, place.at);
}

void ListedFolder::noteMarks(std::size_t file)
{
    const std::string_view text = upperName(file);
    const auto note = [&](std::string_view mark, std::size_t at) {
        m_places[std::string(mark)].push_back(
            {static_cast<std::uint32_t>(file), static_cast<std::uint32_t>(at)});
    };
    for (std::size_t at = text.find(kFull); at != text.npos; at = text.find(kFull, at + 1))
        note(kFull, at);
    for (std::size_t at = text.find(kVersion); at != text.npos; at = text.find(kVersion, at + 1)) {
        for (std::size_t digits = 1; digits <= kTagDigits; ++digits) {
            const std::size_t end = at + kVersion.size() + digits;
            if (end > text.size() || !isDigit(text[end - 1]))
                break;
            note(text.substr(at, end - at), at);
        }
    }
}

const std::vector<ListedFolder::Place>* ListedFolder::placesOf(const std::string& upperMark) const
{
    const auto hit = m_places.find(upperMark);
    return hit == m_places.end() ? nullptr : &hit->second;
}

const std::vector<ListedFolder::Place>& ListedFolder::byHead(const std::string& upperMark) const
{
    const auto [hit, isNew] = m_byHead.try_emplace(upperMark);
    if (isNew) {
        if (const auto* places = placesOf(upperMark))
            hit->second = *places;
        std::sort(hit->second.begin(), hit->second.end(), [&](const Place& a, const Place& b) {
            return frontBackwards(a) < frontBackwards(b);
        });
    }
    return hit->second;
}

std::optional<std::size_t> ListedFolder::firstOfCopy(std::string_view head,
                                                     std::string_view mark) const
{
    const std::string upperMark = base::upperAscii(mark);
    const std::string front = base::upperAscii(head) + "_";
    const std::string wanted(front.rbegin(), front.rend());
    std::optional<std::size_t> first;
    const auto take = [&](std::size_t file) {
        if (!m_files[file].gone && (!first || file < *first))
            first = file;
    };
    if (!isPlainMark(upperMark)) {
        const std::string whole = front + upperMark;
        for (std::size_t file = 0; file < m_files.size() && !first; ++file) {
            if (upperName(file).find(whole) != std::string_view::npos)
                take(file);
        }
        return first;
    }
    const auto& places = byHead(upperMark);
    auto at = std::lower_bound(
        places.begin(), places.end(), std::string_view(wanted),
        [&](const Place& place, std::string_view text) { return frontBackwards(place) < text; });
    for (; at != places.end() && frontBackwards(*at).starts_with(wanted); ++at)
        take(at->file);
    return first;
}

std::optional<std::size_t> ListedFolder::firstHolding(std::string_view base,
                                                      std::string_view mark) const
{
    const std::string upperMark = base::upperAscii(mark);
    const std::string upperBase = base::upperAscii(base);
    const auto holds = [&](std::size_t file, std::string_view part) {
        return upperName(file).find(part) != std::string_view::npos;
    };
    if (!isPlainMark(upperMark)) {
        for (std::size_t file = 0; file < m_files.size(); ++file) {
            if (!m_files[file].gone && holds(file, upperBase) && holds(file, upperMark))
                return file;
        }
        return std::nullopt;
    }
    // Somebody may delete each of the hundred thousand files of a folder: what cannot hold the text
    // is told by its pairs at a glance.
    const Pairs pairs = pairsOf(upperBase);
    if (const auto* places = placesOf(upperMark)) {
        for (const Place& place : *places) {
            if (m_pairs[place.file].holds(pairs) && !m_files[place.file].gone &&
                holds(place.file, upperBase))
                return place.file;
        }
    }
    return std::nullopt;
}

std::optional<platform::FileInfo> ListedFolder::info(std::size_t file) const
{
    auto info = m_folder->find(name(file));
    if (info && info->kind == FileKind::SymbolicLink)
        info = m_fileSystem.find(platform::joinPath(m_folder->path(), name(file)));
    return info;
}

void ListedFolder::remove(std::size_t file)
{
    m_folder->removeFile(name(file));
    m_files[file].gone = true;
    m_remaining -= m_files[file].own ? 0U : 1U;
    if (++m_goneStill > kMostGone)
        forgetGone();
}

void ListedFolder::forgetGone()
{
    for (auto& [mark, places] : m_places)
        std::erase_if(places, [&](const Place& place) { return m_files[place.file].gone; });
    m_goneStill = 0;
}

void ListedFolder::removeWhole()
{
    for (std::size_t file = 0; file < m_files.size(); ++file) {
        if (m_files[file].own && !m_files[file].gone)
            remove(file);
    }
    m_fileSystem.removeFolder(m_folder->path());
}

} // namespace vardelin::archive
