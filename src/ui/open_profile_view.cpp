#include "ui/open_profile_view.h"

#include "ui/tick_table.h"
#include "ui/widgets.h"

#include <algorithm>
#include <utility>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kLetters = 88;       // the least width of the list, in letters
constexpr int kWideLetters = 124;  // its width at first, where the screen has room for it
constexpr double kOfScreen = 0.85; // the most of its width
constexpr int kNameLetters = 28;   // the width of the first column
constexpr int kListRows = 16;      // rows of the list that are seen at once
constexpr int kCellRoom = 24;      // pixels that a cell has beside its text

} // namespace

OpenProfileView::OpenProfileView(state::frmOpenProfile& form, OpenProfileHandlers handlers,
                                 QWidget* parent)
    : ModalForm("frmOpenProfile", form.caption, form.loaded, parent), m_form(form),
      m_handlers(std::move(handlers))
{
    auto* label = named<QLabel>("Label1");
    auto* list = named<TickTable>("lstOpen");
    label->setBuddy(list);
    list->setAccessibleName(QStringLiteral("Profiles"));
    m_binder.label(*label, form.Label1);
    m_binder.checkList(*list, form.lstOpen,
                       {QStringLiteral("Name of the Profiles"), QStringLiteral("Profile Location"),
                        QStringLiteral("Created On")},
                       m_handlers.lstOpen_ItemCheck);
    list->bindSorting(m_binder, m_handlers.lstOpen_ColumnClick, [this] {
        return SortedBy{m_form.sorted, m_form.SortKey, m_form.descending};
    });
    list->letRowsOpen();
    connect(list, &TickTable::opened, this, &OpenProfileView::openRow);
    const int letter = list->fontMetrics().averageCharWidth();
    list->setMinimumSize(letter * kLetters, list->fontMetrics().lineSpacing() * kListRows);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    list->header()->resizeSection(0, letter * kNameLetters);
    const int date =
        list->fontMetrics().horizontalAdvance(QStringLiteral("88-88-8888 88:88:88 MM"));
    list->header()->resizeSection(2, date + kCellRoom);

    auto* open = named<QPushButton>("cmdOpen");
    auto* close = named<QPushButton>("cmdClose");
    auto* select = named<QPushButton>("cmdSelProfile");
    m_binder.button(*open, form.cmdOpen, m_handlers.cmdOpen_Click);
    m_binder.button(*close, form.cmdClose, m_handlers.cmdClose_Click);
    m_binder.button(*select, form.cmdSelProfile, m_handlers.cmdSelProfile_Click);
    auto* layout = lined<QVBoxLayout>(label, list);
    layout->setStretch(1, 1);
    setLayout(layout);
    addButtons(*layout, {open, close}, select);
    const int most = static_cast<int>(screen()->availableGeometry().width() * kOfScreen);
    resize(sizeHint().expandedTo({std::min(letter * kWideLetters, most), 0}));
    m_binder.show();
}

void OpenProfileView::openRow(int row)
{
    const auto at = static_cast<std::size_t>(row);
    m_binder.run([&] {
        if (at >= m_form.lstOpen.rows.size())
            return;
        if (!m_form.lstOpen.rows[at].checked) {
            m_form.lstOpen.rows[at].checked = true;
            if (m_handlers.lstOpen_ItemCheck)
                m_handlers.lstOpen_ItemCheck(at);
        }
        // The tick comes back where another row has it; that one is not what the person meant.
        if (m_form.lstOpen.rows[at].checked && m_handlers.cmdOpen_Click)
            m_handlers.cmdOpen_Click();
    });
}

} // namespace vardelin::ui
