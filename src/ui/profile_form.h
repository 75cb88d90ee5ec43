#pragma once

#include "state/profile_editor_state.h"
#include "state/profile_form.h"
#include "ui/form_binder.h"
#include "ui/source_tree_view.h"

#include <QWidget>

class QGridLayout;
class QLabel;
class QTabWidget;
class QVBoxLayout;

namespace vardelin::ui {

// What the editor's logic does about its controls, under the names of the handlers.
struct ProfileFormHandlers {
    SourceTreeHandlers tree;
    Handler cmdExclude_Click;
    Handler cmdExclInclByNames_Click;
    RowHandler lstInclude_ItemCheck;
    std::function<void(int column)> lstInclude_ColumnClick;
    RowHandler lstOtherData_ItemCheck;

    ComboHandlers CmbDestDrives;
    TextHandlers txtDestLoc;
    Handler cmdBrowse_Click;
    Handler chkCompress_Click;
    Handler chkEncrypt_Click;
    Handler chkPassword_Click;
    TextHandlers txtPassWord;
    Handler cmbHintQues_Click;
    TextHandlers txtHintAns;
    Handler chkWarn_Click;
    TextHandlers txtWarn;
    Handler chkIdle_Click;
    TextHandlers txtIdleTime;
    Handler chkSizeOfBkp_Click;
    TextHandlers txtSizeOfBkp;
    Handler cmbSizeOfBkp_Click;
    Handler chkQueueThrld_Click;
    TextHandlers txtQueueThrld;
    Handler chkPrimary_Click;

    Handler chkAutoSched_Click;
    Handler dtpStDate_Change;
    Handler dtpStTime_Change;
    Handler optPattern_Click[4]; // daily, weekly, monthly, yearly
    TextHandlers txtRecur[4];    // likewise
    Handler dtpPattern_Change[4];
    RowHandler lstWeekDays_ItemCheck;
    RowHandler lstMonthDate_ItemCheck;
    RowHandler lstMonth_ItemCheck;
    RowHandler lstYearDate_ItemCheck;
    Handler optVer_Click[8];
    TextHandlers txtLatestVer;
    TextHandlers txtLatestDaysVer;

    std::function<void(int tab)> SSTab1_Click;
    Handler Label31_Click;
    Handler Label32_Click;
    Handler Label33_Click;
};

// frmProfile: three pages of controls bound to the editor's record, with quick help at the side.
class ProfileForm final : public QWidget {
    Q_OBJECT

public:
    // All must outlive the form.
    ProfileForm(state::ProfileEditorState& record, state::ProfileFormState& window,
                ProfileFormHandlers handlers);

    // Shows the records as they stand.
    void showRecords() { m_binder.show(); }

    // For whoever lets waiting events run while a command works on the tree.
    void showReading() { m_tree->showReading(); }

    SourceTreeView& tree() { return *m_tree; }

private:
    QWidget* filesPage();
    QWidget* optionsPage();
    QWidget* schedulePage();
    QWidget* helpPanel();
    QWidget* destinationFrame();
    QWidget* securityFrame();
    QWidget* startupFrame();
    QWidget* patternFrame();
    QWidget* patternPage(int pattern);
    QWidget* retentionFrame();

    state::ProfileEditorState& m_record;
    state::ProfileFormState& m_window;
    ProfileFormHandlers m_handlers;
    FormBinder m_binder;
    QTabWidget* m_tabs = nullptr;
    SourceTreeView* m_tree = nullptr;
};

} // namespace vardelin::ui
