#pragma once

#include "platform/machine.h"

class QWidget;

// The ports of the machine that only a window system can serve.
namespace vardelin::ui {

// Plain message boxes in front of a window.
class QtMessageBoxes final : public platform::MessageBoxes {
public:
    void setParent(QWidget* parent) { m_parent = parent; }
    platform::Answer show(std::string_view text, std::string_view title, platform::Buttons buttons,
                          platform::Icon icon) override;

private:
    QWidget* m_parent = nullptr;
};

// Handles paint and input that wait, and comes back at once.
class QtMessageLoop final : public platform::MessageLoop {
public:
    void yield() override;
};

} // namespace vardelin::ui
