#include "ui/help_panel.h"

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kLetters = 34;  // the width, in letters
constexpr int kBesideBar = 6; // pixels between the texts and a scroll bar

} // namespace

HelpPanel::HelpPanel(std::initializer_list<QLabel*> labels, QWidget* parent)
    : QGroupBox(tr("Quick Help"), parent)
{
    auto* texts = new QWidget;
    auto* column = new QVBoxLayout(texts);
    column->setContentsMargins(0, 0, kBesideBar, 0);
    column->setSpacing(fontMetrics().lineSpacing());
    for (QLabel* label : labels) {
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
        column->addWidget(label);
    }
    column->addStretch();
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(texts);
    // The ground is the group's, not that of a list.
    area->viewport()->setAutoFillBackground(false);
    texts->setAutoFillBackground(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(area);
    setFixedWidth(fontMetrics().averageCharWidth() * kLetters);
}

} // namespace vardelin::ui
