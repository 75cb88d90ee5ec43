#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QPalette>
#include <QTest>
#include <QTimer>
#include <QWidget>

// What tests of views share; main.cpp runs them in one application without a screen.
namespace vardelin::ui {

inline QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x26, 0x2a, 0x30));
    palette.setColor(QPalette::WindowText, QColor(0xe6, 0xe8, 0xea));
    palette.setColor(QPalette::Base, QColor(0x1c, 0x1f, 0x24));
    palette.setColor(QPalette::AlternateBase, QColor(0x22, 0x26, 0x2c));
    palette.setColor(QPalette::Text, QColor(0xe6, 0xe8, 0xea));
    palette.setColor(QPalette::Button, QColor(0x31, 0x36, 0x3d));
    palette.setColor(QPalette::ButtonText, QColor(0xe6, 0xe8, 0xea));
    palette.setColor(QPalette::Highlight, QColor(0x0d, 0x94, 0x88));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Light, QColor(0x5a, 0x62, 0x6c));
    palette.setColor(QPalette::Mid, QColor(0x4a, 0x51, 0x5a));
    palette.setColor(QPalette::Dark, QColor(0x8a, 0x92, 0x9c));
    palette.setColor(QPalette::ToolTipBase, QColor(0x31, 0x36, 0x3d));
    palette.setColor(QPalette::ToolTipText, QColor(0xe6, 0xe8, 0xea));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x86, 0x8c));
    return palette;
}

// Does something to the window that shows itself next.
inline void whenShown(std::function<void(QDialog&)> action)
{
    QTimer::singleShot(0, [action = std::move(action)] {
        auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(window, nullptr);
        action(*window);
    });
}

// Shows a window and waits until it is laid out and has the focus.
inline void present(QWidget& window)
{
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

// The control of a name, which must be there.
template <typename Widget>
Widget& control(const QWidget& window, const char* name)
{
    auto* widget = window.findChild<Widget*>(QLatin1String(name));
    if (widget == nullptr)
        throw std::runtime_error(std::string("no control ") + name);
    return *widget;
}

// Keeps a picture of a widget under the build folder, those at another scale beside the others.
inline void keepPicture(QWidget& widget, const std::string& name)
{
    QDir().mkpath(QStringLiteral(VARDELIN_SCREENSHOTS));
    QCoreApplication::processEvents();
    const double scale = widget.devicePixelRatioF();
    widget.grab().save(QStringLiteral(VARDELIN_SCREENSHOTS "/%1%2.png")
                           .arg(QString::fromStdString(name),
                                scale > 1 ? QStringLiteral("-%1").arg(scale * 100) : QString()));
}

// Runs `look` in the light and the dark palette with small and large letters; `name` tells which.
inline void inEveryLook(const std::function<void(const std::string& name)>& look)
{
    const QFont font = QApplication::font();
    for (const bool dark : {false, true}) {
        for (const int points : {9, 14}) {
            QApplication::setPalette(dark ? darkPalette() : QPalette());
            QFont sized = font;
            sized.setPointSize(points);
            QApplication::setFont(sized);
            look(std::string(dark ? "dark-" : "light-") + std::to_string(points) + "pt");
        }
    }
    QApplication::setPalette(QPalette());
    QApplication::setFont(font);
}

// The names of visible children that have less room than they need to be read.
inline std::string clippedIn(QWidget& window)
{
    std::string clipped;
    for (const QWidget* child : window.findChildren<QWidget*>()) {
        const QSize need = child->minimumSizeHint();
        if (qobject_cast<const QAbstractScrollArea*>(child) != nullptr)
            continue; // what does not fit can be scrolled to
        const bool fits = child->width() >= need.width() && child->height() >= need.height() &&
                          (qobject_cast<const QLabel*>(child) == nullptr ||
                           child->height() >= child->heightForWidth(child->width()));
        if (child->isVisible() && !fits && !child->objectName().startsWith("qt_"))
            clipped +=
                child->objectName().toStdString() + "(" + child->metaObject()->className() + ") ";
    }
    return clipped;
}

} // namespace vardelin::ui
