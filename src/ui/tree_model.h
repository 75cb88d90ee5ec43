#pragma once

#include "platform/file_system.h"
#include "state/tree_view.h"
#include "ui/selection_look.h"
#include "ui/tree_icons.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <QAbstractItemModel>

namespace vardelin::ui {

// The source tree as Qt's views take it: one column, a box in each row. A child without a text is
// never a row; its parent only shows that it can be opened.
//
// The record may change at any time between two calls of refresh(), even while the view paints: the
// model keeps the rows that the view knows, and a row whose node is gone is blank until then. What
// a look-up costs grows with the depth and the logarithm of the siblings.
class TreeModel final : public QAbstractItemModel {
    Q_OBJECT

public:
    static constexpr int kSelectionRole = Qt::UserRole + 1; // Selection, as int

    // What a refresh came to.
    struct Changes {
        bool reset = false;     // all rows are new ones
        bool rows = false;      // some came or went
        bool expanders = false; // a row that stayed can be opened now, or no longer
    };

    // The file system tells the size of a file that is pointed at; without one no size shows. All
    // must outlive the model.
    TreeModel(state::TreeView& tree, TreeIcons& icons, platform::FileSystem* fileSystem,
              QObject* parent);
    ~TreeModel() override;

    // Called when the person has changed a row's box; the node's `checked` is written already.
    std::function<void(state::TreeNode&)> ticked;

    // Brings the rows to what the record holds. Rows that stay keep their indices in the view, and
    // with them its expansion, selection and scroll position; only where very many folders changed
    // at once are all rows new.
    Changes refresh();
    // Rows whose `expanded` in the record differs from what the view was told last. Each is given
    // once: the view is taken to follow.
    struct Expansion {
        QModelIndex index;
        bool expanded = false;
    };
    std::vector<Expansion> takeExpansions();
    // The person opened or closed a row; writes the record.
    void setExpanded(const QModelIndex& index, bool expanded);

    // A greyed row that tells that the folder is being read; at one place at most.
    void showReading(std::uint64_t serial);
    void hideReading();

    // Null where the node is gone, and for the row of the reading.
    state::TreeNode* nodeAt(const QModelIndex& index) const;
    // Invalid for a node that has no row yet.
    QModelIndex indexOf(const state::TreeNode* node) const;
    QModelIndex indexOfSerial(std::uint64_t serial) const;
    // Of the deepest open row, the drives' being 1.
    int depth() const noexcept { return m_depth; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct Row;

    Row& rowOf(const QModelIndex& index) const;
    QModelIndex indexOf(const Row& row) const;
    const state::TreeNode* nodeOf(const Row& row) const;
    void build(Row& parent, const state::TreeNode* node, std::size_t place) const;
    bool needsReset() const;
    bool differsMuch(const Row& row, const state::TreeNode* parent, std::size_t& changed) const;
    void reconcile(Row& row, const state::TreeNode* parent, Changes& changes);
    void collectExpansions(Row& row, int depth, bool open, std::vector<Expansion>& found);
    QString tipOf(const state::TreeNode& node) const;

    state::TreeView& m_tree;
    TreeIcons& m_icons;
    platform::FileSystem* m_fileSystem;
    std::unique_ptr<Row> m_root;
    const Row* m_reading = nullptr; // the row that tells of the reading
    std::uint64_t m_revision = 0;
    int m_depth = 1;
};

} // namespace vardelin::ui
