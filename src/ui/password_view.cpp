#include "ui/password_view.h"

#include "ui/look.h"
#include "ui/shown_text.h"
#include "ui/widgets.h"

#include <utility>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kLetters = 48; // the width of a box, in letters

} // namespace

PasswordView::PasswordView(state::frmResPwd& form, PasswordHandlers handlers, QWidget* parent)
    : ModalForm("frmResPwd", form.caption, form.loaded, parent)
{
    // A new password's boxes stand around the first one: the old password above it, the repetition
    // below.
    auto* layout = new QVBoxLayout(this);
    addBox(*layout, "lblNewPass", form.lblNewPass, "txtNewPass", form.txtNewPass);
    addBox(*layout, "Label1", form.Label1, "txtRespwd", form.txtRespwd);
    addBox(*layout, "lblconfirm", form.lblconfirm, "txtconfirm", form.txtconfirm);
    layout->addWidget(forgotten(form.lblForgotPwd, std::move(handlers.lblForgotPwd_Click)), 0,
                      Qt::AlignLeft);
    layout->addStretch();
    auto* accept = named<QPushButton>("cmdOk");
    auto* cancel = named<QPushButton>("cmdCancel");
    m_binder.button(*accept, form.cmdOk, std::move(handlers.cmdOk_Click));
    m_binder.button(*cancel, form.cmdCancel, std::move(handlers.cmdCancel_Click));
    addButtons(*layout, {accept, cancel});
    // A longer question, or one box more, takes its room while the window is open.
    m_binder.also([this, layout] {
        const QSize need(width(), layout->totalHeightForWidth(width()));
        if (isVisible())
            resize(size().expandedTo(need));
    });
    m_binder.show();
}

void PasswordView::addBox(QVBoxLayout& layout, const char* labelName, state::Label& label,
                          const char* boxName, state::TextBox& box)
{
    auto* caption = named<QLabel>(labelName);
    auto* widget = named<QLineEdit>(boxName);
    caption->setBuddy(widget);
    widget->setEchoMode(QLineEdit::Password);
    widget->setMinimumWidth(widget->fontMetrics().averageCharWidth() * kLetters);
    m_binder.label(*caption, label);
    m_binder.textBox(*widget, box, {});
    // A caption may be a hint's question, which is long.
    caption->setWordWrap(true);
    layout.addWidget(caption);
    layout.addWidget(widget);
}

QPushButton* PasswordView::forgotten(state::Label& label, Handler click)
{
    // A label that is clicked, and that the keyboard has to reach: a button that looks like a link.
    auto* link = named<QPushButton>("lblForgotPwd");
    link->setFlat(true);
    link->setAutoDefault(false);
    link->setCursor(Qt::PointingHandCursor);
    link->setStyleSheet(QStringLiteral("QPushButton { border: none; padding: 3px 0px; color: %1; }"
                                       "QPushButton:focus, QPushButton:hover "
                                       "{ text-decoration: underline; }")
                            .arg(linkColour(palette()).name()));
    connect(link, &QPushButton::clicked, this,
            [this, click = std::move(click)] { m_binder.run(click); });
    m_binder.also([link, &label] {
        link->setText(shown(label.caption));
        link->setEnabled(label.enabled);
        link->setVisible(label.visible);
    });
    return link;
}

} // namespace vardelin::ui
