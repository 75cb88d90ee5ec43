#pragma once

#include "state/log_form.h"
#include "ui/form_binder.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include <QWidget>

class QLabel;

namespace vardelin::ui {

class FormHeading;
class LogModel;
class TickTable;
struct LogColumn;

// What the form's logic does, under the names of its controls.
struct LogHandlers {
    // The report behind a backup's row, as logs/log_view.h gives it; empty where there is none.
    std::function<std::string(const state::LogRow& row)> lstBackupLog_DblClick;
    Handler Form_Unload; // the person closes the form; lets `loaded` fall
};

// frmLog: the backup log, the restore log and the queue, of which one shows. A click on a heading
// sorts what is on show, a second one turns it round, a third one brings the record's order back. A
// double click or Enter on a backup's row opens its report of missed files in a window of its own.
// It stands in the main frame's area.
class LogView final : public QWidget {
    Q_OBJECT

public:
    // The record must outlive the view.
    LogView(state::frmLog& form, LogHandlers handlers, QWidget* parent = nullptr);

    // Shows the record as it stands; the rows only where `revision` has grown.
    void showRecord() { m_binder.show(); }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    struct List {
        const state::LogList* record = nullptr;
        TickTable* table = nullptr;
        LogModel* model = nullptr;
    };

    List makeList(const char* name, const QString& spoken, const state::LogList& record,
                  std::span<const LogColumn> columns, int stretched);
    void openReport(int row);
    void showAll();

    state::frmLog& m_form;
    LogHandlers m_handlers;
    FormBinder m_binder;
    std::array<List, 3> m_lists;
    FormHeading* m_heading = nullptr;
    QLabel* m_hint = nullptr;
    std::uint64_t m_revision = 0;
};

} // namespace vardelin::ui
