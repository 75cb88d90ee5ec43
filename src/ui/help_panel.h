#pragma once

#include <initializer_list>

#include <QGroupBox>

class QLabel;

namespace vardelin::ui {

// The "Quick Help" beside a form's list: its labels below each other, to be scrolled where the
// window is too low for them.
class HelpPanel final : public QGroupBox {
    Q_OBJECT

public:
    explicit HelpPanel(std::initializer_list<QLabel*> labels, QWidget* parent = nullptr);
};

} // namespace vardelin::ui
