#pragma once

#include "offscreen.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QProgressBar>

// What every form is looked at for, in every palette and size of letters.
namespace vardelin::ui {

// Headings of tables that are cut off.
inline std::string cutHeadings(QWidget& window)
{
    std::string cut;
    for (const QHeaderView* header : window.findChildren<QHeaderView*>()) {
        for (int i = 0; header->isVisible() && i < header->count(); ++i) {
            if (header->sectionSize(i) < header->sectionSizeHint(i))
                cut += header->model()->headerData(i, Qt::Horizontal).toString().toStdString();
        }
    }
    return cut;
}

// The names of what the keyboard reaches, in its order, beginning at the first.
inline std::vector<std::string> reached(QWidget& window)
{
    std::vector<std::string> names;
    QWidget* widget = &window;
    do {
        const bool hasName = !widget->objectName().isEmpty() &&
                             !widget->objectName().startsWith(QLatin1String("qt_"));
        if (widget != &window && hasName && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
            widget->isVisible() && widget->isEnabled())
            names.push_back(widget->objectName().toStdString());
        widget = widget->nextInFocusChain();
    } while (widget != &window);
    return names;
}

// Every box and list must be known by a name to who cannot see it.
inline std::string nameless(QWidget& window)
{
    std::string names;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool needsName = qobject_cast<QLineEdit*>(widget) != nullptr ||
                               qobject_cast<QAbstractItemView*>(widget) != nullptr ||
                               qobject_cast<QComboBox*>(widget) != nullptr ||
                               qobject_cast<QProgressBar*>(widget) != nullptr;
        if (needsName && widget->isVisible() && qobject_cast<QHeaderView*>(widget) == nullptr) {
            const QAccessibleInterface* const known = QAccessible::queryAccessibleInterface(widget);
            if (known == nullptr || known->text(QAccessible::Name).isEmpty())
                names += widget->objectName().toStdString() + " ";
        }
    }
    return names;
}

inline void expectGoodLooks(QWidget& window, const std::string& picture)
{
    present(window);
    keepPicture(window, picture);
    EXPECT_EQ(clippedIn(window), "") << picture;
    EXPECT_EQ(cutHeadings(window), "") << picture;
    EXPECT_EQ(nameless(window), "") << picture;
}

} // namespace vardelin::ui
