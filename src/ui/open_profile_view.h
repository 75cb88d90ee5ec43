#pragma once

#include "state/open_profile_form.h"
#include "ui/modal_form.h"

namespace vardelin::ui {

// What the form's logic does about its controls, under the names of the handlers.
struct OpenProfileHandlers {
    RowHandler lstOpen_ItemCheck;
    std::function<void(std::size_t column)> lstOpen_ColumnClick;
    Handler cmdOpen_Click;
    Handler cmdClose_Click;
    Handler cmdSelProfile_Click;
};

// frmOpenProfile: the list of profiles. A double click on a row, or Enter, ticks and opens it.
class OpenProfileView final : public ModalForm {
    Q_OBJECT

public:
    // The record must outlive the window.
    OpenProfileView(state::frmOpenProfile& form, OpenProfileHandlers handlers,
                    QWidget* parent = nullptr);

private:
    void openRow(int row);

    state::frmOpenProfile& m_form;
    OpenProfileHandlers m_handlers;
};

} // namespace vardelin::ui
