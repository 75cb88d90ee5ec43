#include "ui/review_list.h"

#include "archive/review.h"
#include "ui/review_delegate.h"
#include "ui/review_model.h"

#include <algorithm>
#include <array>

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

namespace vardelin::ui {
namespace {

using state::RowButton;

constexpr int kRowRoom = 8;      // pixels that a row has above and below its letters together
constexpr int kCellRoom = 24;    // pixels that a cell has beside its text
constexpr int kNameLetters = 30; // of the first column at least
constexpr int kLeastRows = 10;   // that are seen at once

} // namespace

ReviewList::ReviewList(const state::frmVDStorage& form, QWidget* parent)
    : QTableView(parent), m_form(form)
{
    setItemDelegateForColumn(ReviewModel::kName, new ReviewDelegate(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setEditTriggers(NoEditTriggers);
    setMinimumHeight(fontMetrics().height() * kLeastRows);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowRoom);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void ReviewList::fitColumns()
{
    constexpr std::array<const char*, ReviewModel::kColumns> kWidest{
        "", "Version Org", "True", "8,888,888 KB", "88/88/8888 88:88:88 PM"};
    int left = viewport()->width();
    for (int i = 1; i < ReviewModel::kColumns; ++i) {
        const int text =
            fontMetrics().horizontalAdvance(QLatin1String(kWidest[static_cast<std::size_t>(i)]));
        const int width =
            std::max(text + kCellRoom, horizontalHeader()->sectionSizeHint(i) + kCellRoom / 2);
        horizontalHeader()->resizeSection(i, width);
        left -= width;
    }
    const int least = fontMetrics().averageCharWidth() * kNameLetters;
    horizontalHeader()->resizeSection(ReviewModel::kName, std::max(left, least));
}

QPoint ReviewList::endOf(int row) const
{
    const QModelIndex index = model()->index(row, ReviewModel::kName);
    const QRect text =
        partsOf(visualRect(index), index.data(ReviewModel::kLevelRole).toInt(), fontMetrics()).text;
    const int width = fontMetrics().horizontalAdvance(index.data().toString());
    return {text.left() + std::min(width, text.width()), text.bottom()};
}

RowButton ReviewList::buttonOf(int row) const
{
    const auto at = static_cast<std::size_t>(row);
    return row >= 0 && at < m_form.lstRestore.size() ? m_form.lstRestore[at].button
                                                     : RowButton::None;
}

bool ReviewList::onButton(QPoint place) const
{
    const QModelIndex index = indexAt(place);
    if (!index.isValid() || index.column() != ReviewModel::kName ||
        buttonOf(index.row()) == RowButton::None)
        return false;
    // A few pixels around it count as well.
    constexpr int kAround = 2;
    return partsOf(visualRect(index), index.data(ReviewModel::kLevelRole).toInt(), fontMetrics())
        .button.adjusted(-kAround, -kAround, kAround, kAround)
        .contains(place);
}

void ReviewList::goTo(int row)
{
    if (row >= 0 && row < model()->rowCount())
        setCurrentIndex(model()->index(row, ReviewModel::kName));
}

// ---- the mouse

void ReviewList::mousePressEvent(QMouseEvent* event)
{
    if (m_form.busy)
        return;
    m_onButton = event->button() == Qt::LeftButton && onButton(event->pos());
    if (!m_onButton) {
        QTableView::mousePressEvent(event);
        return;
    }
    // What is selected stays: the person looks for more to select.
    const QModelIndex index = indexAt(event->pos());
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    emit buttonClicked(index.row());
}

void ReviewList::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_onButton && !m_form.busy)
        QTableView::mouseMoveEvent(event);
}

void ReviewList::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_onButton && !m_form.busy)
        QTableView::mouseReleaseEvent(event);
    m_onButton = false;
}

void ReviewList::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (m_form.busy)
        return;
    if (onButton(event->pos())) {
        mousePressEvent(event); // two quick clicks
        return;
    }
    const QModelIndex index = indexAt(event->pos());
    if (event->button() == Qt::LeftButton && index.isValid() &&
        buttonOf(index.row()) != RowButton::None)
        emit buttonClicked(index.row());
}

void ReviewList::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
    if (!m_form.busy)
        emit menuWanted();
}

// ---- the keys

void ReviewList::keyPressEvent(QKeyEvent* event)
{
    if (m_form.busy)
        return;
    if (event->key() == Qt::Key_Delete && event->modifiers() == Qt::NoModifier) {
        emit deletionWanted();
        return;
    }
    if (event->key() == Qt::Key_Menu ||
        (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)) {
        emit menuWanted();
        return;
    }
    const QModelIndex current = currentIndex();
    if (current.isValid() && opensOrCloses(*event, current.row()))
        return;
    QTableView::keyPressEvent(event);
}

bool ReviewList::opensOrCloses(const QKeyEvent& event, int row)
{
    const RowButton button = buttonOf(row);
    switch (event.key()) {
    case Qt::Key_Right:
        if (button == RowButton::Minus)
            goTo(row + 1);
        [[fallthrough]];
    case Qt::Key_Plus:
        if (button == RowButton::Plus)
            emit buttonClicked(row);
        return true;
    case Qt::Key_Left:
        if (button != RowButton::Minus) {
            goTo(static_cast<int>(archive::parentRow(m_form, static_cast<std::size_t>(row) + 1)) -
                 1);
            return true;
        }
        [[fallthrough]];
    case Qt::Key_Minus:
        if (button == RowButton::Minus)
            emit buttonClicked(row);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (button != RowButton::None)
            emit buttonClicked(row);
        return true;
    default:
        return false;
    }
}

QModelIndex ReviewList::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    // A table would go to the ends of a row.
    if (action == MoveHome || action == MoveEnd) {
        const int row = action == MoveHome ? 0 : model()->rowCount() - 1;
        return model()->index(row, ReviewModel::kName);
    }
    return QTableView::moveCursor(action, modifiers);
}

void ReviewList::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    if (model() != nullptr)
        fitColumns();
}

} // namespace vardelin::ui
