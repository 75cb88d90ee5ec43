#include "ui/qt_ports.h"

#include "ui/shown_text.h"

#include <QApplication>
#include <QGridLayout>
#include <QMessageBox>

namespace vardelin::ui {
namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

constexpr int kLeastLetters = 52; // the width of a box, in letters

QMessageBox::Icon iconOf(Icon icon)
{
    switch (icon) {
    case Icon::None:
        return QMessageBox::NoIcon;
    case Icon::Critical:
        return QMessageBox::Critical;
    case Icon::Question:
        return QMessageBox::Question;
    case Icon::Exclamation:
        return QMessageBox::Warning;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons buttonsOf(Buttons buttons)
{
    switch (buttons) {
    case Buttons::Ok:
        return QMessageBox::Ok;
    case Buttons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    }
    return QMessageBox::Ok;
}

} // namespace

Answer QtMessageBoxes::show(std::string_view text, std::string_view title, Buttons buttons,
                            Icon icon)
{
    // In front of the form that asks, which may be modal itself.
    QWidget* const modal = QApplication::activeModalWidget();
    QMessageBox box(iconOf(icon), shown(title), shownLines(text), buttonsOf(buttons),
                    modal != nullptr ? modal : m_parent);
    // Plain text: a path may hold what looks like markup.
    box.setTextFormat(Qt::PlainText);
    // A short text alone would make a box that hardly holds its title.
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout()))
        grid->addItem(new QSpacerItem(box.fontMetrics().averageCharWidth() * kLeastLetters, 0),
                      grid->rowCount(), 0, 1, grid->columnCount());
    // What cannot be taken back is not agreed to by a key too many. Which button Enter means
    // otherwise differs between desktops.
    if (buttons == Buttons::YesNo)
        box.setDefaultButton(icon == Icon::Exclamation ? QMessageBox::No : QMessageBox::Yes);
    else
        box.setDefaultButton(QMessageBox::Ok);
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        // A box of questions that is closed has not been agreed to.
        return buttons == Buttons::YesNo ? Answer::No : Answer::Ok;
    }
}

void QtMessageLoop::yield()
{
    QCoreApplication::processEvents();
}

} // namespace vardelin::ui
