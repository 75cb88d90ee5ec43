#pragma once

#include "trace/error_tail.h"

class QWidget;

namespace vardelin::ui {

// frmErrLog in a window of its own, in front of everything until it is answered. The buttons run
// the form's handlers; a window closed in another way counts as "&Continue".
class WindowErrorDialog final : public trace::ErrorDialog {
public:
    // Behind `parent`, where there is one; it must outlive this.
    explicit WindowErrorDialog(QWidget* parent = nullptr) : m_parent(parent) {}

    void setParent(QWidget* parent) { m_parent = parent; }
    void showModal(trace::frmErrLog& form) override;

private:
    QWidget* m_parent;
};

} // namespace vardelin::ui
