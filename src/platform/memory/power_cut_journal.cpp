#include "platform/memory/power_cut_journal.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace vardelin::platform {
namespace {

constexpr std::uint64_t kBlockBytes = 4096;

std::uint64_t below(std::mt19937_64& random, std::uint64_t limit)
{
    return limit == 0 ? 0 : random() % limit;
}

// Where a row of `count` changes breaks off: often at its begin or end, else anywhere.
std::size_t breakIn(std::mt19937_64& random, std::size_t count)
{
    switch (below(random, 4)) {
    case 0:
        return count;
    case 1:
        return below(random, 2) == 0 ? 0 : count - std::min<std::size_t>(count, 1);
    default:
        return below(random, count + 1);
    }
}

void put(MemoryNode& node, std::uint64_t offset, std::string_view bytes)
{
    if (node.data.size() < offset + bytes.size())
        node.data.resize(offset + bytes.size());
    node.data.replace(offset, bytes.size(), bytes);
}

std::string garbage(std::mt19937_64& random, std::size_t count)
{
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random() & 0xffU);
    return bytes;
}

} // namespace

void PowerCutJournal::settle(const MemoryTree& tree)
{
    m_disk.copyFrom(tree);
    m_nodes = m_disk.nodes();
    m_names.clear();
    m_changes.clear();
}

void PowerCutJournal::made(const FileInfo& folder, std::string_view name, const FileInfo& node,
                           std::string_view linkTarget)
{
    const auto parent = m_nodes.find(folder.inode);
    if (parent == m_nodes.end())
        return; // below a file that was made through a link
    auto fresh = std::make_shared<MemoryNode>(parent->second->disk);
    fresh->info = node;
    fresh->info.linkCount = 0;
    fresh->data = linkTarget;
    m_nodes.insert_or_assign(node.inode, std::move(fresh));
    linked(folder, name, node.inode);
}

void PowerCutJournal::linked(const FileInfo& folder, std::string_view name, std::uint64_t node)
{
    m_names.push_back(
        {NameChange::Kind::Link, folder.device, folder.inode, std::string(name), node, 0, {}});
}

void PowerCutJournal::unlinked(const FileInfo& folder, std::string_view name)
{
    m_names.push_back(
        {NameChange::Kind::Unlink, folder.device, folder.inode, std::string(name), 0, 0, {}});
}

void PowerCutJournal::moved(const FileInfo& folder, std::string_view name, const FileInfo& target,
                            std::string_view targetName)
{
    m_names.push_back({NameChange::Kind::Move, folder.device, folder.inode, std::string(name), 0,
                       target.inode, std::string(targetName)});
}

void PowerCutJournal::changed(std::uint64_t node, NodeChange change)
{
    m_changes[node].push_back(std::move(change));
}

void PowerCutJournal::flushFile(std::uint64_t node)
{
    const auto pending = m_changes.find(node);
    if (pending == m_changes.end())
        return;
    if (const auto at = m_nodes.find(node); at != m_nodes.end()) {
        for (const NodeChange& change : pending->second)
            apply(change, *at->second);
    }
    m_changes.erase(pending);
}

void PowerCutJournal::flushFolder(std::uint64_t folder)
{
    // A move out of the folder takes with it what happened before in the folder that it went to.
    std::map<std::uint64_t, std::size_t> until{{folder, m_names.size()}};
    std::vector<bool> which(m_names.size());
    for (std::size_t i = m_names.size(); i-- > 0;) {
        const NameChange& change = m_names[i];
        const bool moves = change.kind == NameChange::Kind::Move;
        which[i] = i < until[change.folder] || (moves && i < until[change.target]);
        if (which[i] && moves) {
            until[change.folder] = std::max(until[change.folder], i);
            until[change.target] = std::max(until[change.target], i);
        }
    }
    applyAndForget(which);
    flushFile(folder);
}

void PowerCutJournal::flushDisk(std::uint64_t device)
{
    std::vector<bool> which(m_names.size());
    for (std::size_t i = 0; i < m_names.size(); ++i)
        which[i] = m_names[i].device == device;
    applyAndForget(which);
    std::vector<std::uint64_t> files;
    for (const auto& [node, changes] : m_changes) {
        const auto at = m_nodes.find(node);
        if (at == m_nodes.end() || at->second->info.device == device)
            files.push_back(node);
    }
    for (const std::uint64_t file : files)
        flushFile(file);
}

void PowerCutJournal::cut(std::uint64_t seed, MemoryTree& tree)
{
    Random random(seed);
    applyAndForget(survivors(random));
    for (const auto& [node, changes] : m_changes) {
        if (const auto at = m_nodes.find(node); at != m_nodes.end())
            tear(changes, *at->second, random);
    }
    tree.copyFrom(m_disk);
    settle(tree);
}

std::vector<bool> PowerCutJournal::survivors(Random& random) const
{
    switch (below(random, 3)) {
    case 0: {
        std::map<std::uint64_t, std::size_t> until;
        std::vector<bool> result(m_names.size());
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            const auto [limit, isNew] = until.try_emplace(m_names[i].device, 0);
            if (isNew)
                limit->second = breakIn(random, m_names.size());
            result[i] = i < limit->second;
        }
        return result;
    }
    case 1:
        return survivorsOfFolders(random);
    default:
        return survivorsOfNames(random);
    }
}

std::vector<bool> PowerCutJournal::survivorsOfFolders(Random& random) const
{
    std::map<std::uint64_t, std::vector<std::size_t>> rows; // the changes of each folder
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        rows[m_names[i].folder].push_back(i);
        if (m_names[i].kind == NameChange::Kind::Move && m_names[i].target != m_names[i].folder)
            rows[m_names[i].target].push_back(i);
    }
    std::map<std::uint64_t, std::size_t> until;
    for (const auto& [folder, row] : rows) {
        const std::size_t kept = breakIn(random, row.size());
        until[folder] = kept == row.size() ? m_names.size() : row[kept];
    }
    // A move between two folders survives in both or in neither.
    for (bool settled = false; !settled;) {
        settled = true;
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            const NameChange& change = m_names[i];
            if (change.kind != NameChange::Kind::Move)
                continue;
            const bool lost = i >= until[change.folder] || i >= until[change.target];
            if (lost && (i < until[change.folder] || i < until[change.target])) {
                until[change.folder] = std::min(until[change.folder], i);
                until[change.target] = std::min(until[change.target], i);
                settled = false;
            }
        }
    }
    std::vector<bool> result(m_names.size());
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        const NameChange& change = m_names[i];
        result[i] = i < until[change.folder] &&
                    (change.kind != NameChange::Kind::Move || i < until[change.target]);
    }
    return result;
}

std::vector<bool> PowerCutJournal::survivorsOfNames(Random& random) const
{
    const std::uint64_t tenths = 1 + below(random, 9);
    std::set<std::pair<std::uint64_t, std::string>> lost; // nothing survives behind a lost one
    std::vector<bool> result(m_names.size());
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        const NameChange& change = m_names[i];
        std::vector<std::pair<std::uint64_t, std::string>> keys{{change.folder, change.name}};
        if (change.kind == NameChange::Kind::Move)
            keys.emplace_back(change.target, change.targetName);
        const bool blocked = std::any_of(keys.begin(), keys.end(),
                                         [&](const auto& key) { return lost.contains(key); });
        result[i] = !blocked && below(random, 10) < tenths;
        if (!result[i])
            lost.insert(keys.begin(), keys.end());
    }
    return result;
}

void PowerCutJournal::apply(const NameChange& change)
{
    const auto folder = m_nodes.find(change.folder);
    if (folder == m_nodes.end())
        return;
    MemoryNode& from = *folder->second;
    const auto erase = [&](MemoryNode& place, const std::string& name) {
        if (m_disk.childOf(place, name) != nullptr)
            m_disk.eraseChild(place, name);
    };
    switch (change.kind) {
    case NameChange::Kind::Link:
        if (const auto node = m_nodes.find(change.node); node != m_nodes.end()) {
            erase(from, change.name);
            m_disk.insertChild(from, change.name, node->second);
        }
        break;
    case NameChange::Kind::Unlink:
        erase(from, change.name);
        break;
    case NameChange::Kind::Move: {
        const auto target = m_nodes.find(change.target);
        const auto node = m_disk.childOf(from, change.name);
        if (target == m_nodes.end() || node == nullptr)
            break;
        erase(*target->second, change.targetName);
        m_disk.eraseChild(from, change.name);
        m_disk.insertChild(*target->second, change.targetName, node);
        break;
    }
    }
}

void PowerCutJournal::applyAndForget(const std::vector<bool>& which)
{
    std::vector<NameChange> rest;
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        if (which[i])
            apply(m_names[i]);
        else
            rest.push_back(std::move(m_names[i]));
    }
    m_names = std::move(rest);
}

void PowerCutJournal::apply(const NodeChange& change, MemoryNode& node)
{
    switch (change.kind) {
    case NodeChange::Kind::Write:
        put(node, change.offset, change.bytes);
        break;
    case NodeChange::Kind::Resize:
        node.data.resize(change.offset);
        break;
    case NodeChange::Kind::Details:
        change.details(node);
        break;
    }
}

void PowerCutJournal::tear(const std::vector<NodeChange>& changes, MemoryNode& node,
                           Random& random) const
{
    const std::uint64_t before = node.data.size();
    const std::uint64_t fate = below(random, 6);
    const std::size_t until = fate == 1   ? 0
                              : fate == 2 ? breakIn(random, changes.size())
                                          : SIZE_MAX;
    std::size_t number = 0;
    for (const NodeChange& change : changes) {
        const bool isDetail = change.kind == NodeChange::Kind::Details;
        if (isDetail ? below(random, 2) == 0 : number++ >= until)
            continue;
        if (fate == 4 && change.kind == NodeChange::Kind::Write)
            put(node, change.offset, std::string(change.bytes.size(), '\0'));
        else if (fate == 5 && change.kind == NodeChange::Kind::Write)
            tearWrite(change, node, random);
        else
            apply(change, node);
    }
    if (fate == 3 && node.data.size() > before)
        node.data.resize(before + below(random, node.data.size() - before + 1));
}

void PowerCutJournal::tearWrite(const NodeChange& change, MemoryNode& node, Random& random)
{
    const std::uint64_t end = change.offset + change.bytes.size();
    const std::uint64_t reached = below(random, 2) == 0 ? 0 : end; // how far the file grew
    for (std::uint64_t at = change.offset; at < end;) {
        const std::uint64_t next = std::min(end, (at / kBlockBytes + 1) * kBlockBytes);
        const auto piece = std::string_view(change.bytes).substr(at - change.offset, next - at);
        switch (below(random, 4)) {
        case 0:
            put(node, at, piece);
            break;
        case 1:
            put(node, at, std::string(piece.size(), '\0'));
            break;
        case 2:
            put(node, at, garbage(random, piece.size()));
            break;
        default:
            break; // left out
        }
        at = next;
    }
    if (node.data.size() < reached)
        node.data.resize(reached);
}

} // namespace vardelin::platform
