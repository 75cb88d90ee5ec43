#include "ui/shown_text.h"

#include <QFontMetrics>
#include <QTextDocument>

namespace vardelin::ui {
namespace {

constexpr char32_t kMapped = 0xF000; // plus the code of the character that it stands for
constexpr char32_t kMappedEnd = 0xF07F;
constexpr char32_t kControlPicture = 0x2400; // plus a control's code
constexpr char32_t kFirstPrintable = 0x20;

} // namespace

QString shown(std::string_view bytes)
{
    QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    for (QChar& c : text) {
        char32_t code = c.unicode();
        if (code > kMapped && code <= kMappedEnd)
            code -= kMapped;
        if (code < kFirstPrintable)
            code += kControlPicture;
        c = QChar(static_cast<char16_t>(code));
    }
    return text;
}

QString shownLines(std::string_view bytes)
{
    QString text;
    for (;;) {
        const std::size_t end = bytes.find("\r\n");
        text += shown(bytes.substr(0, end));
        if (end == std::string_view::npos)
            return text;
        text += QLatin1Char('\n');
        bytes.remove_prefix(end + 2);
    }
}

QString plainToolTip(const QString& text)
{
    if (!Qt::mightBeRichText(text))
        return text;
    return QStringLiteral("<span>") + text.toHtmlEscaped() + QStringLiteral("</span>");
}

std::string typed(const QString& text)
{
    return text.toStdString();
}

QString elided(const QString& path, const QFontMetrics& metrics, int width)
{
    return metrics.elidedText(path, Qt::ElideMiddle, width);
}

} // namespace vardelin::ui
