#include "proofs/walk_model.h"

#include <algorithm>

namespace vardelin::proofs {
namespace {

using platform::FileKind;

// A link's own length is no size of a content.
std::size_t sizeOf(const Thing& thing)
{
    return thing.kind == FileKind::Regular ? thing.content.size() : 0;
}

void collect(platform::FileSystem& files, const std::string& folder, Tree& tree)
{
    const auto open = files.openFolder(folder);
    for (const platform::FolderEntryInfo& entry : open->listWithInfo()) {
        const std::string path = folder + entry.name;
        Thing thing{entry.info.kind, {}, entry.info.mode, entry.info.modifiedNs};
        if (thing.kind == FileKind::Folder) {
            tree.emplace(path + "\\", thing);
            collect(files, path + "\\", tree);
            continue;
        }
        thing.content =
            thing.kind == FileKind::SymbolicLink ? open->readLink(entry.name) : files.readAll(path);
        tree.emplace(path, std::move(thing));
    }
}

} // namespace

Tree treeOf(platform::FileSystem& files, const std::string& base)
{
    Tree tree;
    collect(files, base, tree);
    return tree;
}

std::string differenceOf(const Tree& expected, const Tree& found)
{
    for (const auto& [path, thing] : expected) {
        const auto hit = found.find(path);
        if (hit == found.end())
            return path + " is missing";
        const Thing& other = hit->second;
        if (other.kind != thing.kind)
            return path + " is of another kind";
        if (other.content != thing.content)
            return path + " has another content";
        if (thing.kind == FileKind::Folder)
            continue;
        if (thing.kind == FileKind::Regular && other.mode != thing.mode)
            return path + " has another mode";
        if (other.modifiedNs != thing.modifiedNs)
            return path + " has another time";
    }
    for (const auto& [path, thing] : found) {
        if (!expected.contains(path))
            return path + " should not be there";
    }
    return {};
}

archive::Form Settings::formOf(const Thing& thing) const
{
    if (encrypt)
        return archive::Form::Encrypted;
    return compress || thing.kind != FileKind::Regular ? archive::Form::Compressed
                                                       : archive::Form::Stored;
}

bool Settings::accept(const SavedCopy& copy) const
{
    return copy.password == password && copy.tag == tag &&
           (!encrypt || copy.form == archive::Form::Encrypted);
}

std::set<int> WalkModel::kept(const std::set<int>& numbers, int newest)
{
    std::set<int> result;
    for (auto number = numbers.rbegin(); number != numbers.rend(); ++number) {
        if (newest == 0 || *number == 0 || newest > static_cast<int>(result.size()))
            result.insert(*number);
    }
    return result;
}

std::uint64_t WalkModel::prune(int newest)
{
    std::uint64_t removed = 0;
    for (auto& [path, versions] : archive) {
        std::set<int> numbers;
        for (const auto& [number, copy] : versions)
            numbers.insert(number);
        const std::set<int> stay = kept(numbers, newest);
        removed +=
            std::erase_if(versions, [&](const auto& entry) { return !stay.contains(entry.first); });
    }
    return removed;
}

WalkModel::Expected WalkModel::backup(const Tree& sources, std::int64_t startNs,
                                      const Settings& settings)
{
    const auto copyOf = [&](const Thing& thing) {
        return SavedCopy{thing, startNs, settings.password, settings.tag, settings.formOf(thing)};
    };
    Expected expected;
    for (const auto& [path, thing] : sources) {
        if (thing.kind == FileKind::Folder)
            continue;
        Versions& versions = archive[path];
        if (versions.empty()) {
            versions[0] = copyOf(thing);
            ++expected.fullCopies;
            expected.saved.push_back(path);
            continue;
        }
        SavedCopy& last = versions.rbegin()->second;
        const bool accepted = settings.accept(last);
        if (accepted && sizeOf(last.thing) == sizeOf(thing) &&
            last.thing.modifiedNs == thing.modifiedNs)
            continue;
        if (accepted && last.thing.kind == thing.kind && last.thing.content == thing.content) {
            last.thing.modifiedNs = thing.modifiedNs;
            ++expected.renewed;
            continue;
        }
        versions[versions.rbegin()->first + 1] = copyOf(thing);
        ++expected.versions;
        expected.saved.push_back(path);
    }
    expected.pruned = prune(settings.newest);
    return expected;
}

bool WalkModel::mismatches(const SavedCopy& copy, const std::string& password)
{
    return copy.form != archive::Form::Stored && !copy.password.empty() &&
           copy.password != password;
}

const SavedCopy* WalkModel::newest(const Versions& versions, std::int64_t limitNs)
{
    for (auto copy = versions.rbegin(); copy != versions.rend(); ++copy) {
        if (copy->second.savedNs <= limitNs)
            return &copy->second;
    }
    return nullptr;
}

bool WalkModel::Restored::isContested(const std::string& path) const
{
    return std::any_of(contested.begin(), contested.end(), [&](const std::string& name) {
        return path == name || path.starts_with(name + "\\");
    });
}

WalkModel::Restored WalkModel::restored(const std::map<std::string, SavedCopy>& chosen,
                                        const std::set<std::string>& folders,
                                        const std::string& password)
{
    Restored result;
    for (const std::string& folder : folders)
        result.things.emplace(folder, Thing{FileKind::Folder, {}, 0, 0});
    for (const auto& [path, copy] : chosen) {
        if (mismatches(copy, password))
            result.mismatched.insert(path);
        else
            result.things.emplace(path, copy.thing);
        const std::string folder = path + "\\";
        const auto below = chosen.upper_bound(folder);
        if (folders.contains(folder) || (below != chosen.end() && below->first.starts_with(folder)))
            result.contested.insert(path);
    }
    return result;
}

} // namespace vardelin::proofs
