#pragma once

#include "state/rest_dialog_form.h"
#include "ui/modal_form.h"

namespace vardelin::ui {

// What the form's logic does about its controls, under the names of the handlers.
struct NameDialogHandlers {
    TextHandlers txtProfileName;
    Handler cmdProfileOK_Click; // also Enter in the box
    Handler cmdResCancel_Click;
};

// frmRestDialog as the dialog that asks for a profile's name.
class NameDialogView final : public ModalForm {
    Q_OBJECT

public:
    // The record must outlive the window.
    NameDialogView(state::frmRestDialog& form, NameDialogHandlers handlers,
                   QWidget* parent = nullptr);
};

} // namespace vardelin::ui
