#include "ui/other_data_view.h"

#include "editor/include_texts.h"
#include "ui/shown_text.h"
#include "ui/tick_table.h"
#include "ui/widgets.h"

#include <utility>

#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

namespace texts = editor::include_texts;

constexpr int kLetters = 64;          // the width of the window, in letters
constexpr int kListRows = 14;         // rows of the list that are seen at once
constexpr int kExtensionLetters = 26; // the width of the first column

} // namespace

OtherDataView::OtherDataView(state::ProfileEditorState& record, editor::frmOtherdata& form,
                             OtherDataHandlers handlers, QWidget* parent)
    : ModalForm("frmOtherdata", form.caption, form.visible, parent), m_record(record), m_form(form),
      m_handlers(std::move(handlers))
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(namesFrame());
    layout->addWidget(excludeFrame(), 1);
    auto* accept = named<QPushButton>("cmdSetOK");
    auto* clear = named<QPushButton>("cmdCancel");
    m_binder.button(*accept, form.cmdSetOK, m_handlers.cmdSetOK_Click);
    m_binder.button(*clear, form.cmdCancel, m_handlers.cmdCancel_Click);
    addButtons(*layout, {accept, clear});
    setMinimumWidth(fontMetrics().averageCharWidth() * kLetters);
    m_binder.show();
}

QGroupBox* OtherDataView::namesFrame()
{
    auto* frame = named<QGroupBox>("fmeFilesByNames", shown(texts::kNamesFrame));
    auto* layout = new QVBoxLayout(frame);
    const auto box = [&](const char* name, std::string_view caption, state::TextBox& record,
                         const TextHandlers& handlers) {
        auto* label = new QLabel(shown(caption));
        auto* widget = named<QLineEdit>(name);
        label->setTextFormat(Qt::PlainText);
        label->setBuddy(widget);
        widget->setAccessibleName(shown(caption));
        m_binder.textBox(*widget, record, handlers);
        layout->addWidget(label);
        layout->addWidget(widget);
    };
    box("txtInclNames", texts::kInclNamesLabel, m_record.txtInclNames, m_handlers.txtInclNames);
    layout->addSpacing(layout->spacing());
    box("txtExclNames", texts::kExclNamesLabel, m_record.txtExclNames, m_handlers.txtExclNames);
    m_binder.frame(*frame, m_record.fmeFilesByNames);
    return frame;
}

QGroupBox* OtherDataView::excludeFrame()
{
    auto* frame = named<QGroupBox>("fmeExclude", shown(texts::kExcludeFrame));
    auto* list = named<TickTable>("lstExclude");
    list->setAccessibleName(shown(texts::kExcludeFrame));
    m_binder.checkList(*list, m_record.lstExclude,
                       {shown(texts::kExtensionColumn), shown(texts::kTypeColumn)},
                       m_handlers.lstExclude_ItemCheck);
    list->bindSorting(m_binder, m_handlers.lstExclude_ColumnClick, [this] {
        const editor::ColumnSort& sort = m_form.lstExcludeSort;
        return SortedBy{sort.Sorted, sort.SortKey, sort.descending};
    });
    list->header()->resizeSection(0, list->fontMetrics().averageCharWidth() * kExtensionLetters);
    list->setMinimumHeight(list->fontMetrics().lineSpacing() * kListRows);
    frame->setLayout(lined<QVBoxLayout>(list));
    m_binder.frame(*frame, m_record.fmeExclude);
    return frame;
}

void OtherDataView::reject()
{
    if (m_handlers.close)
        m_binder.run(m_handlers.close);
    else
        ModalForm::reject();
}

} // namespace vardelin::ui
