#pragma once

#include "editor/pages_context.h"
#include "state/profile_editor_state.h"
#include "ui/modal_form.h"

class QGroupBox;

namespace vardelin::ui {

// What the form's logic does about its controls, under the names of the handlers.
struct OtherDataHandlers {
    RowHandler lstExclude_ItemCheck;
    std::function<void(std::size_t column)> lstExclude_ColumnClick;
    TextHandlers txtInclNames;
    TextHandlers txtExclNames;
    Handler cmdSetOK_Click;
    Handler cmdCancel_Click;
    // The window is to be closed by its frame or Esc. Ticks and names are in the record already, so
    // there is nothing to take back; without a handler the form closes as it stands.
    Handler close;
};

// frmOtherdata: the patterns of names above the list of excluded extensions. Closes when
// `form.visible` falls.
class OtherDataView final : public ModalForm {
    Q_OBJECT

public:
    // The records must outlive the window.
    OtherDataView(state::ProfileEditorState& record, editor::frmOtherdata& form,
                  OtherDataHandlers handlers, QWidget* parent = nullptr);

    void reject() override;

private:
    QGroupBox* namesFrame();
    QGroupBox* excludeFrame();

    state::ProfileEditorState& m_record;
    editor::frmOtherdata& m_form;
    OtherDataHandlers m_handlers;
};

} // namespace vardelin::ui
