#include "ui/modal_form.h"

#include "ui/shown_text.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace vardelin::ui {

ModalForm::ModalForm(const char* name, const std::string& caption, const bool& stays,
                     QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QLatin1String(name));
    setWindowTitle(shown(caption));
    m_binder.also([this, &stays] {
        if (!stays && isVisible())
            accept();
    });
}

void ModalForm::done(int result)
{
    QDialog::done(result);
    if (parentWidget() != nullptr)
        parentWidget()->window()->activateWindow();
}

void ModalForm::addButtons(QVBoxLayout& layout, std::initializer_list<QPushButton*> buttons,
                           QPushButton* apart)
{
    auto* row = new QHBoxLayout;
    if (apart != nullptr)
        row->addWidget(apart);
    row->addStretch();
    for (QPushButton* button : buttons)
        row->addWidget(button);
    (*buttons.begin())->setDefault(true);
    layout.addSpacing(layout.spacing());
    layout.addLayout(row);
    if (apart != nullptr)
        setTabOrder(*(buttons.end() - 1), apart);
}

} // namespace vardelin::ui
