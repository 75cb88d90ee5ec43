#pragma once

#include "base/keyed_collection.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The source tree as a flat collection: every node has an index from 1 in the order of insertion,
// whatever its place in the hierarchy. Several walks of the editor go over ranges of these indices.
namespace vardelin::state {

// Colours of a node's text, as 0xBBGGRR: they tell how much of what lies below is selected.
inline constexpr std::uint32_t kWhollySelectedColor = 0x808000;
inline constexpr std::uint32_t kPartlySelectedColor = 0x800080;
inline constexpr std::uint32_t kUnselectedColor = 0;
// The system's colour for text, which counts as unselected, too.
inline constexpr std::uint32_t kWindowTextColor = 0x80000008;

// What a new node starts with.
struct TreeNodeTexts {
    std::string key; // unique in the tree, or empty
    std::string text;
    int image = 0; // from 1; 0 for none
};

// One node. Its address stays until it is removed. Writing a field runs no handler: who sets
// `expanded` so that the contents are read goes through the editor (editor/source_tree.h).
class TreeNode {
public:
    TreeNode(const TreeNode&) = delete;
    TreeNode& operator=(const TreeNode&) = delete;
    ~TreeNode() = default;

    std::string text; // as shown; empty for the child that stands for contents not read yet
    std::uint32_t foreColor = kUnselectedColor;
    int image = 0;
    int expandedImage = 0;
    bool checked = false;
    bool expanded = false;

    const std::string& key() const noexcept { return m_key; }
    // Never given to a second node, and greater than those of the nodes before it.
    std::uint64_t serial() const noexcept { return m_serial; }
    const TreeNode* parent() const noexcept { return m_parent; } // null for a root
    TreeNode* parent() noexcept { return m_parent; }
    std::size_t children() const noexcept { return m_children.size(); }
    // The direct child at a place from 0, in the order of insertion; null where there is none.
    const TreeNode* childAt(std::size_t place) const noexcept
    {
        return place < m_children.size() ? m_children[place] : nullptr;
    }
    // The first child; null where there is none.
    const TreeNode* child() const noexcept { return childAt(0); }
    TreeNode* child() noexcept { return m_children.empty() ? nullptr : m_children.front(); }
    TreeNode* lastChild() noexcept { return m_children.empty() ? nullptr : m_children.back(); }
    const TreeNode* lastChild() const noexcept
    {
        return m_children.empty() ? nullptr : m_children.back();
    }
    // The texts of all ancestors and of the node, with backslashes between: `C:\Data\a.txt`.
    std::string fullPath() const;

private:
    friend class TreeView;
    TreeNode() = default;

    std::string m_key;
    std::uint64_t m_serial = 0;
    TreeNode* m_parent = nullptr;
    std::vector<TreeNode*> m_children;
};

// Owns the nodes. Look-up by key takes constant time, the index of a node the logarithm of their
// number; a removal moves the entries behind it in a list of pointers and touches no other node.
class TreeView {
public:
    // Keys are paths and compare by the rule of the file system.
    explicit TreeView(base::KeyRule keyRule = base::KeyRule::Exact) : m_keyRule(keyRule) {}
    TreeView(const TreeView&) = delete;
    TreeView& operator=(const TreeView&) = delete;
    TreeView(TreeView&&) noexcept = default;
    // The serials of later nodes and the revision go on from the greater of the two, so that
    // whoever remembers either sees that the nodes are others.
    TreeView& operator=(TreeView&& other) noexcept;
    ~TreeView() = default;

    bool enabled = true;

    // Adds at the end, as the last child of `parent` or, with null, as the last root. Raises 457
    // for a key that is taken and adds nothing then.
    TreeNode& add(TreeNode* parent, TreeNodeTexts texts);
    // With all that is below it; the indices behind move down.
    void remove(TreeNode& node);
    void clear();

    std::size_t count() const noexcept { return m_nodes.size(); }
    // By index, 1 to count(); raises 35600 for another one.
    TreeNode& node(std::size_t index);
    const TreeNode& node(std::size_t index) const;
    // Null where there is none.
    TreeNode* find(std::string_view key);
    TreeNode* findSerial(std::uint64_t serial);
    std::size_t indexOf(const TreeNode& node) const; // the node must be in this tree
    // The last one of the nodes that share the node's parent, itself included.
    const TreeNode& lastSibling(const TreeNode& node) const;
    // The node's place among them, from 0.
    std::size_t placeOf(const TreeNode& node) const;
    const std::vector<TreeNode*>& roots() const noexcept { return m_roots; }

    // One node at most is selected; null takes the selection away.
    void select(TreeNode* node) noexcept { m_selected = node; }
    const TreeNode* selected() const noexcept { return m_selected; }

    // Grows with every node that comes or goes: a view that has shown this state needs no new rows.
    std::uint64_t structureRevision() const noexcept { return m_structureRevision; }

private:
    std::string folded(std::string_view key) const;
    const std::vector<TreeNode*>& siblingsOf(const TreeNode& node) const;

    base::KeyRule m_keyRule;
    std::vector<std::unique_ptr<TreeNode>> m_nodes; // by serial, which is the order of insertion
    std::vector<TreeNode*> m_roots;
    std::unordered_map<std::string, TreeNode*> m_byKey;
    TreeNode* m_selected = nullptr;
    std::uint64_t m_nextSerial = 1;
    std::uint64_t m_structureRevision = 0;
};

} // namespace vardelin::state
