#pragma once

#include "editor/editor_rig.h"
#include "ui/source_tree_view.h"

#include "offscreen.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <QApplication>
#include <QStyle>
#include <QTest>

namespace vardelin::ui {

// The handlers of the tree, as an application binds them, each call noted.
inline SourceTreeHandlers boundTo(test::EditorRig& rig, std::vector<std::string>& ran)
{
    SourceTreeHandlers handlers;
    handlers.tvwDirectory_Expand = [&](state::TreeNode& node) {
        ran.push_back("Expand " + node.text);
        editor::tvwDirectory_Expand(rig.editing, node);
    };
    handlers.tvwDirectory_NodeCheck = [&](state::TreeNode& node) {
        ran.push_back("NodeCheck " + node.text);
        editor::tvwDirectory_NodeCheck(rig.editing, node);
    };
    handlers.tvwDirectory_Click = [&] {
        ran.emplace_back("Click");
        editor::tvwDirectory_Click(rig.editing);
    };
    handlers.tvwDirectory_KeyDown = [&](int& keyCode) {
        ran.push_back("KeyDown " + std::to_string(keyCode));
        editor::tvwDirectory_KeyDown(keyCode);
    };
    handlers.tvwDirectory_BeforeLabelEdit = [&](int& cancel) {
        ran.emplace_back("BeforeLabelEdit");
        editor::tvwDirectory_BeforeLabelEdit(cancel);
    };
    handlers.form = &rig.form;
    handlers.fileSystem = &rig.disk;
    handlers.shell = &rig.shell;
    return handlers;
}

// The tree in a window of its own, over the editor's real handlers on disks in memory.
struct TreeRig : test::EditorRig {
    editor::PlainFileIcons plainIcons;
    editor::EditorContext plain{machine, context, frame, record, store, form, plainIcons};
    std::vector<std::string> ran; // handlers, in their order
    std::unique_ptr<SourceTreeView> view;

    void show()
    {
        view = std::make_unique<SourceTreeView>(record, boundTo(*this, ran), nullptr);
        view->resize(420, 360);
        view->show();
        settle();
    }
    void settle()
    {
        QCoreApplication::processEvents();
        widget().layOut();
    }
    DirectoryTree& widget() { return view->tree(); }
    TreeModel& model() { return dynamic_cast<TreeModel&>(*widget().model()); }
    QModelIndex indexOf(std::string_view key) { return model().indexOf(&at(key)); }
    QRect rowOf(std::string_view key) { return widget().visualRect(indexOf(key)); }
    QPoint boxOf(std::string_view key)
    {
        QStyleOptionViewItem option;
        option.initFrom(&widget());
        option.rect = rowOf(key);
        option.features = QStyleOptionViewItem::HasCheckIndicator;
        return widget()
            .style()
            ->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &widget())
            .center();
    }
    QPoint arrowOf(std::string_view key)
    {
        const QRect row = rowOf(key);
        return {row.left() - widget().indentation() / 2, row.center().y()};
    }
    void clickAt(QPoint place)
    {
        QTest::mouseClick(widget().viewport(), Qt::LeftButton, {}, place);
        settle();
    }
    // Every look at the clock takes a millisecond, and the window has its turns.
    void readSlowly(std::function<void()> atTurn)
    {
        clock.script().onCallsNamed(
            "clock.steady", [this](const auto&) { clock.advance(std::chrono::milliseconds(1)); });
        messageLoop.onYield = [atTurn = std::move(atTurn)] {
            QTest::qWait(1); // timers run, too
            atTurn();
        };
    }
    // The rows that can be reached by opening what is open, indented by their depth.
    std::vector<std::string> rows()
    {
        std::vector<std::string> found;
        addRows({}, "", found);
        return found;
    }
    void addRows(const QModelIndex& parent, const std::string& indent,
                 std::vector<std::string>& found)
    {
        for (int i = 0; i < model().rowCount(parent); ++i) {
            const QModelIndex row = model().index(i, 0, parent);
            const QVariant box = row.data(Qt::CheckStateRole);
            const char* mark = !box.isValid()                        ? "    "
                               : box.toInt() == Qt::Checked          ? "[x] "
                               : box.toInt() == Qt::PartiallyChecked ? "[-] "
                                                                     : "[ ] ";
            found.push_back(indent + mark + row.data().toString().toStdString());
            if (widget().isExpanded(row))
                addRows(row, indent + "  ", found);
        }
    }
};

} // namespace vardelin::ui
