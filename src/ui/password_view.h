#pragma once

#include "state/password_form.h"
#include "ui/modal_form.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace vardelin::ui {

// What the form's logic does about its controls, under the names of the handlers. They differ by
// the form's use: the editor's two and the archive's review.
struct PasswordHandlers {
    Handler cmdOk_Click;
    Handler cmdCancel_Click;
    Handler lblForgotPwd_Click;
};

// frmResPwd: up to three boxes that hide what is typed. Their captions and what of them is seen
// follow the record.
class PasswordView final : public ModalForm {
    Q_OBJECT

public:
    // The record must outlive the window.
    PasswordView(state::frmResPwd& form, PasswordHandlers handlers, QWidget* parent = nullptr);

private:
    void addBox(QVBoxLayout& layout, const char* labelName, state::Label& label,
                const char* boxName, state::TextBox& box);
    QPushButton* forgotten(state::Label& label, Handler click);
};

} // namespace vardelin::ui
