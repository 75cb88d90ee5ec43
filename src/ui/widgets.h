#pragma once

#include <QLatin1String>
#include <QLayout>
#include <QString>

// Small makers of widgets that carry their control's name.
namespace vardelin::ui {

template <typename Widget, typename... Arguments>
Widget* named(const char* name, Arguments&&... arguments)
{
    auto* widget = new Widget(std::forward<Arguments>(arguments)...);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

// Widgets in a row, the room behind them left free.
template <typename Layout, typename... Widgets>
Layout* lined(Widgets*... widgets)
{
    auto* layout = new Layout;
    (layout->addWidget(widgets), ...);
    return layout;
}

} // namespace vardelin::ui
