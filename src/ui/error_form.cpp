#include "ui/error_form.h"

#include "ui/shown_text.h"
#include "ui/widgets.h"

#include <QApplication>
#include <QDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

using trace::frmErrLog;

constexpr int kLetters = 58;   // the width of a box, in letters
constexpr int kLongLines = 3;  // of the boxes that hold sentences
constexpr int kBoxMargin = 10; // device-independent pixels above and below a box's lines

// The names of the boxes, in the order of kErrorBoxes.
constexpr const char* kBoxNames[] = {"txtModName",   "txtProcName", "txtSysErrNo",
                                     "txtSysErrMsg", "txtCusErrNo", "txtCusErrMsg",
                                     "txtErrType",   "txtActions",  "txtInf"};

bool isLong(const state::TextBox& box, const frmErrLog& form)
{
    return &box == &form.txtSysErrMsg || &box == &form.txtInf;
}

QPlainTextEdit* boxFor(const char* name, const state::TextBox& box, int lines)
{
    auto* widget = named<QPlainTextEdit>(name);
    widget->setPlainText(shownLines(box.text));
    widget->setReadOnly(true);
    widget->setTabChangesFocus(true);
    widget->setFixedHeight(widget->fontMetrics().lineSpacing() * lines + kBoxMargin);
    widget->setMinimumWidth(widget->fontMetrics().averageCharWidth() * kLetters);
    widget->setVerticalScrollBarPolicy(lines > 1 ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    return widget;
}

} // namespace

void WindowErrorDialog::showModal(frmErrLog& form)
{
    QDialog window(m_parent);
    window.setObjectName(QStringLiteral("frmErrLog"));
    window.setWindowTitle(shown(form.caption));
    auto* icon = new QLabel;
    constexpr int kIcon = 40;
    icon->setPixmap(window.style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(kIcon));
    icon->setAlignment(Qt::AlignTop);
    auto* grid = new QGridLayout;
    int row = 0;
    for (const trace::ErrorBox& one : trace::kErrorBoxes) {
        const state::TextBox& box = form.*one.box;
        auto* label = new QLabel(shown(one.label));
        auto* widget = boxFor(kBoxNames[row], box, isLong(box, form) ? kLongLines : 1);
        label->setBuddy(widget);
        if (isLong(box, form)) {
            // Level with the first line.
            label->setContentsMargins(0, kBoxMargin / 2, 0, 0);
            grid->addWidget(label, row, 0, Qt::AlignTop);
        } else {
            grid->addWidget(label, row, 0, Qt::AlignVCenter);
        }
        grid->addWidget(widget, row, 1);
        ++row;
    }
    auto* proceed = named<QPushButton>("cmdCancel", shown(form.cmdCancel.caption));
    auto* leave = named<QPushButton>("cmdOk", shown(form.cmdOk.caption));
    proceed->setDefault(true);
    proceed->setFocus();
    QObject::connect(proceed, &QPushButton::clicked, &window, [&] {
        trace::cmdCancel_Click(form);
        window.accept();
    });
    QObject::connect(leave, &QPushButton::clicked, &window, [&] {
        trace::cmdOk_Click(form);
        window.accept();
    });
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(proceed);
    buttons->addWidget(leave);
    auto* right = new QVBoxLayout;
    right->addLayout(grid);
    right->addLayout(buttons);
    auto* layout = new QHBoxLayout(&window);
    layout->addWidget(icon);
    layout->addLayout(right);
    if (form.windowState == trace::WindowState::Maximized)
        window.setWindowState(Qt::WindowMaximized);
    window.exec();
}

} // namespace vardelin::ui
