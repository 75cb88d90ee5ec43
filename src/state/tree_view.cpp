#include "state/tree_view.h"

#include "base/runtime_error.h"
#include "base/text.h"

#include <algorithm>
#include <utility>

namespace vardelin::state {
namespace {

// Nodes only ever come at the end, so every list of them is sorted by serial.
template <typename List>
auto placeIn(List& list, std::uint64_t serial)
{
    return std::lower_bound(
        list.begin(), list.end(), serial,
        [](const auto& each, std::uint64_t wanted) { return each->serial() < wanted; });
}

template <typename List>
std::size_t offsetIn(const List& list, std::uint64_t serial)
{
    return static_cast<std::size_t>(placeIn(list, serial) - list.begin());
}

} // namespace

std::string TreeNode::fullPath() const
{
    std::string path = m_parent == nullptr ? std::string() : m_parent->fullPath() + "\\";
    return path += text;
}

TreeView& TreeView::operator=(TreeView&& other) noexcept
{
    if (this == &other)
        return *this;
    enabled = other.enabled;
    m_keyRule = other.m_keyRule;
    m_byKey = std::exchange(other.m_byKey, {});
    m_roots = std::exchange(other.m_roots, {});
    m_nodes = std::exchange(other.m_nodes, {});
    m_selected = std::exchange(other.m_selected, nullptr);
    m_nextSerial = std::max(m_nextSerial, other.m_nextSerial);
    m_structureRevision = std::max(m_structureRevision, other.m_structureRevision) + 1;
    return *this;
}

TreeNode& TreeView::add(TreeNode* parent, TreeNodeTexts texts)
{
    std::unique_ptr<TreeNode> node(new TreeNode);
    if (!texts.key.empty()) {
        const auto [place, isNew] = m_byKey.try_emplace(folded(texts.key), node.get());
        if (!isNew)
            throw base::RuntimeError(base::error_number::kDuplicateKey, texts.key);
    }
    node->m_key = std::move(texts.key);
    node->text = std::move(texts.text);
    node->image = texts.image;
    node->m_serial = m_nextSerial++;
    node->m_parent = parent;
    (parent == nullptr ? m_roots : parent->m_children).push_back(node.get());
    m_nodes.push_back(std::move(node));
    ++m_structureRevision;
    return *m_nodes.back();
}

void TreeView::remove(TreeNode& node)
{
    while (!node.m_children.empty())
        remove(*node.m_children.back());
    auto& siblings = node.m_parent == nullptr ? m_roots : node.m_parent->m_children;
    siblings.erase(placeIn(siblings, node.m_serial));
    if (!node.m_key.empty())
        m_byKey.erase(folded(node.m_key));
    if (m_selected == &node)
        m_selected = nullptr;
    m_nodes.erase(placeIn(m_nodes, node.m_serial));
    ++m_structureRevision;
}

void TreeView::clear()
{
    m_byKey.clear();
    m_roots.clear();
    m_selected = nullptr;
    m_nodes.clear();
    ++m_structureRevision;
}

TreeNode& TreeView::node(std::size_t index)
{
    return const_cast<TreeNode&>(
        std::as_const(*this).node(index)); // the object itself is not const
}

const TreeNode& TreeView::node(std::size_t index) const
{
    if (index < 1 || index > m_nodes.size())
        throw base::RuntimeError(base::error_number::kElementNotFound, std::to_string(index));
    return *m_nodes[index - 1];
}

TreeNode* TreeView::find(std::string_view key)
{
    const auto hit = m_byKey.find(folded(key));
    return hit == m_byKey.end() ? nullptr : hit->second;
}

TreeNode* TreeView::findSerial(std::uint64_t serial)
{
    const auto place = placeIn(m_nodes, serial);
    return place != m_nodes.end() && (*place)->serial() == serial ? place->get() : nullptr;
}

std::size_t TreeView::indexOf(const TreeNode& node) const
{
    return offsetIn(m_nodes, node.m_serial) + 1;
}

const TreeNode& TreeView::lastSibling(const TreeNode& node) const
{
    return *siblingsOf(node).back();
}

std::size_t TreeView::placeOf(const TreeNode& node) const
{
    return offsetIn(siblingsOf(node), node.m_serial);
}

std::string TreeView::folded(std::string_view key) const
{
    return m_keyRule == base::KeyRule::IgnoreCase ? base::upperAscii(key) : std::string(key);
}

const std::vector<TreeNode*>& TreeView::siblingsOf(const TreeNode& node) const
{
    return node.m_parent == nullptr ? m_roots : node.m_parent->m_children;
}

} // namespace vardelin::state
