#include "ui/form_heading.h"

#include "ui/elided_label.h"
#include "ui/shown_text.h"
#include "ui/widgets.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QShortcut>

namespace vardelin::ui {

FormHeading::FormHeading(QWidget& form) : m_form(form)
{
    m_caption = named<ElidedLabel>("lblCaption");
    QFont bold = m_caption->font();
    bold.setBold(true);
    m_caption->setFont(bold);
    auto* close = named<QPushButton>("cmdClose", tr("&Close"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, &m_form, &QWidget::close);
    auto* key = new QShortcut(QKeySequence::Close, &m_form);
    key->setContext(Qt::WidgetWithChildrenShortcut);
    connect(key, &QShortcut::activated, &m_form, &QWidget::close);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_caption, 1);
    row->addWidget(close);
}

void FormHeading::showCaption(const std::string& caption)
{
    m_form.setWindowTitle(shown(caption));
    m_caption->setWhole(shown(caption));
}

} // namespace vardelin::ui
