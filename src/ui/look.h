#pragma once

#include <QColor>

class QApplication;
class QPalette;

namespace vardelin::ui {

// How every form looks, on every desktop: the same style in the system's colours, light or dark,
// with boxes that stand out from what is behind them and grow with the letters, and rows that are
// not crowded. Call once, before the first widget; the application owns the style.
void applyLook(QApplication& application);

// The colour of a link, made readable on the palette's window: not every dark desktop sets one.
QColor linkColour(const QPalette& palette);

} // namespace vardelin::ui
