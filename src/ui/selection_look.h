#pragma once

#include "state/tree_view.h"

#include <QColor>
#include <QString>
#include <Qt>

class QPainter;
class QPalette;
class QRect;

// How much of a node is selected, and what that looks like. No state shows by its colour alone: the
// box has three forms, and a name that is partly selected is slanted.
namespace vardelin::ui {

enum class Selection { None, Partly, Wholly };

// Ticked in one of the two colours; ticked in another one a folder takes nothing into a profile.
Selection selectionOf(const state::TreeNode& node);

Qt::CheckState boxOf(Selection selection);
QString wordsOf(Selection selection); // "Wholly selected"

// Contrast as WCAG 2.2 counts it (1.4.3), 1 to 21.
double contrast(const QColor& one, const QColor& other);

// The colour with as little white or black in it as makes it readable on the background (4.5 at
// least); its hue stays.
QColor readableOn(const QColor& color, const QColor& background);

// The colour of a node's text on a background; `usual` where nothing is selected.
QColor textColorOf(Selection selection, const QColor& background, const QColor& usual);

// One colour with a share of another, 0 to 1.
QColor mixed(const QColor& color, const QColor& other, double share);

// The box of a row: empty, with a dash, or with a tick. Our own, since a style's box may show
// neither its frame on a dark ground nor the third state at all. Colours are those of the palette's
// Base and Text whatever lies around the box.
void drawBox(QPainter& painter, const QRect& place, Selection selection, const QPalette& palette);

} // namespace vardelin::ui
