#include "ui/elided_label.h"

#include "ui/shown_text.h"

#include <QEvent>

namespace vardelin::ui {
namespace {

constexpr int kLeastLetters = 12;

} // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedLabel::setWhole(const QString& text)
{
    if (text == m_whole)
        return;
    m_whole = text;
    setToolTip(plainToolTip(text));
    setAccessibleName(text);
    fit();
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * kLeastLetters, fontMetrics().height()};
}

void ElidedLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    fit();
}

void ElidedLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fit();
}

void ElidedLabel::fit()
{
    setText(elided(m_whole, fontMetrics(), contentsRect().width()));
}

} // namespace vardelin::ui
