#pragma once

#include <string>
#include <string_view>

#include <QString>

class QFontMetrics;

// Texts between records, which hold bytes, and widgets, which hold Unicode.
namespace vardelin::ui {

// What a person sees of a text. Bytes that are no UTF-8 show as U+FFFD; characters that stand for
// ones which a path cannot hold (U+F000 and the code) show as those, controls as their pictures.
QString shown(std::string_view bytes);

// The same for a text of several lines, which CR LF parts.
QString shownLines(std::string_view bytes);

// A tool tip that shows a text as it is, where it looks like markup, too.
QString plainToolTip(const QString& text);

// What a person typed, as UTF-8.
std::string typed(const QString& text);

// A path cut in its middle to `width` pixels, so that the drive and the file's name stay; whole
// where it fits.
QString elided(const QString& path, const QFontMetrics& metrics, int width);

} // namespace vardelin::ui
