#include "ui/name_dialog_view.h"

#include "ui/widgets.h"

#include <utility>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kLetters = 52; // the width of the box, in letters

} // namespace

NameDialogView::NameDialogView(state::frmRestDialog& form, NameDialogHandlers handlers,
                               QWidget* parent)
    : ModalForm("frmRestDialog", form.caption, form.loaded, parent)
{
    auto* question = named<QLabel>("Label2");
    auto* name = named<QLineEdit>("txtProfileName");
    auto* use = named<QLabel>("Label3");
    auto* accept = named<QPushButton>("cmdProfileOK");
    auto* cancel = named<QPushButton>("cmdResCancel");
    question->setBuddy(name);
    name->setMinimumWidth(name->fontMetrics().averageCharWidth() * kLetters);
    m_binder.label(*question, form.Label2);
    m_binder.label(*use, form.Label3);
    m_binder.textBox(*name, form.txtProfileName, std::move(handlers.txtProfileName));
    m_binder.button(*accept, form.cmdProfileOK, std::move(handlers.cmdProfileOK_Click));
    m_binder.button(*cancel, form.cmdResCancel, std::move(handlers.cmdResCancel_Click));
    auto* layout = lined<QVBoxLayout>(question, name, use);
    layout->addStretch();
    setLayout(layout);
    addButtons(*layout, {accept, cancel});
    m_binder.show();
}

} // namespace vardelin::ui
