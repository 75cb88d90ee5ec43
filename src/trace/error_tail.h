#pragma once

#include "base/runtime_error.h"
#include "state/controls.h"
#include "trace/run_trace.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace vardelin::trace {

// The newest error that a tail has reported. Filled just before the dialog is shown and kept until
// the next error.
struct ErrorRecord {
    std::string ST_Err_Type; // "Informative"
    std::string ST_Err_Custom_Msg;
    std::string ST_Err_Proc_Name;
    std::int32_t LG_Err_Number = 0;
    std::string ST_Err_Description;
};

enum class WindowState : std::uint8_t { Normal, Minimized, Maximized };
enum class ErrorAnswer : std::uint8_t { None, Continue, Exit };

// The error dialog as a form. Its boxes are for reading only.
struct frmErrLog {
    std::string caption = "Vardelin Error Dialog";
    state::TextBox txtModName{.locked = true};
    state::TextBox txtProcName{.locked = true};
    state::TextBox txtSysErrNo{.locked = true};
    state::TextBox txtSysErrMsg{.locked = true};
    state::TextBox txtCusErrNo{.locked = true};  // stays empty
    state::TextBox txtCusErrMsg{.locked = true}; // stays empty: the custom message is in txtInf
    state::TextBox txtErrType{.locked = true};
    state::TextBox txtActions{.locked = true}; // stays empty
    state::TextBox txtInf{.locked = true};
    state::Button cmdCancel{.caption = "&Continue"};
    state::Button cmdOk{.caption = "&Exit"};
    WindowState windowState = WindowState::Normal;
    ErrorAnswer answer = ErrorAnswer::None;
};

// The boxes with their labels, in the order on the form.
struct ErrorBox {
    std::string_view label;
    state::TextBox frmErrLog::*box;
};
extern const std::array<ErrorBox, 9> kErrorBoxes;

// The handlers of the two buttons; the view closes the form after either.
void cmdCancel_Click(frmErrLog& form);
void cmdOk_Click(frmErrLog& form);

// Shows the form and comes back when the person has answered; the answer stands in the form. A form
// closed in another way counts as "&Continue".
class ErrorDialog {
public:
    ErrorDialog() = default;
    ErrorDialog(const ErrorDialog&) = delete;
    ErrorDialog& operator=(const ErrorDialog&) = delete;
    virtual ~ErrorDialog() = default;

    virtual void showModal(frmErrLog& form) = 0;
};

// Thrown when the person chose "&Exit": the process ends with no saving and no further trace. Only
// main() catches it, so it is deliberately no std::exception.
struct ExitRequested {};

// What a traced procedure needs; holds references only.
struct TraceContext {
    RunTrace& trace;
    ErrorRecord& errors;
    ErrorDialog& dialog;
};

// Shows an error and gives true once the person chose to continue. The number travels in 16 bits:
// one outside -32768 to 32767 raises overflow (6) before anything is shown. Throws ExitRequested.
bool DisplayErrMSgDialog(TraceContext& context, std::string_view type,
                         std::string_view customMessage, int number, std::string_view sysMessage,
                         std::string_view module, std::string_view procedure);

// Traces Start now and End when it goes out of scope, unless an exception is under way.
class TraceScope {
public:
    TraceScope(RunTrace& trace, std::string_view name);
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;
    ~TraceScope();

private:
    RunTrace& m_trace;
    std::string m_name;
    int m_exceptions;
};

// The names under which a procedure reports an error. Most use one name for all; where a tail says
// another one than its procedure's, that is part of what people know it by.
struct TailNames {
    std::string_view procedureField; // in the record and the dialog
    std::string_view traceName;      // of the "Error" entry
    std::string_view module;
    std::string_view customMessage;
};

// The tail of a procedure: does nothing for a number of 0 or below; otherwise fills the record with
// the description and, behind a colon, the subject, traces "Error" and shows the dialog. Raises
// overflow (6) and throws ExitRequested as DisplayErrMSgDialog does.
void errorTail(TraceContext& context, const TailNames& names, const base::PendingError& error);

// Runs a procedure's body between its Start and End; a RuntimeError ends in the tail, which leaves
// no End, and the caller goes on. A result that must outlive an error is declared before the call.
template <typename Body>
void runTraced(TraceContext& context, std::string_view startEndName, const TailNames& names,
               Body&& body)
{
    base::PendingError failure;
    failure.attempt([&] {
        const TraceScope scope(context.trace, startEndName);
        std::forward<Body>(body)();
    });
    errorTail(context, names, failure);
}

template <typename Body>
void runTraced(TraceContext& context, std::string_view name, std::string_view module,
               std::string_view customMessage, Body&& body)
{
    runTraced(context, name, TailNames{name, name, module, customMessage},
              std::forward<Body>(body));
}

} // namespace vardelin::trace
