#include "trace/error_tail.h"

#include <exception>
#include <limits>

namespace vardelin::trace {
namespace {

constexpr std::string_view kInformative = "Informative";

std::int16_t narrowed(int number)
{
    using Limits = std::numeric_limits<std::int16_t>;
    if (number < Limits::min() || number > Limits::max())
        throw base::RuntimeError(base::error_number::kOverflow, std::to_string(number));
    return static_cast<std::int16_t>(number);
}

// The description with the thing that it is about, which the number alone does not tell.
std::string described(const base::PendingError& error)
{
    if (error.subject.empty() || error.description.find(error.subject) != std::string::npos)
        return error.description;
    return error.description + ": " + error.subject;
}

} // namespace

const std::array<ErrorBox, 9> kErrorBoxes{{
    {"Module Name", &frmErrLog::txtModName},
    {"Procedure\\Function Name", &frmErrLog::txtProcName},
    {"System Error Number", &frmErrLog::txtSysErrNo},
    {"System Error Message", &frmErrLog::txtSysErrMsg},
    {"Custom Error Number", &frmErrLog::txtCusErrNo},
    {"Custom Error Message", &frmErrLog::txtCusErrMsg},
    {"Error Type", &frmErrLog::txtErrType},
    {"Actions to be taken, If possible", &frmErrLog::txtActions},
    {"More information", &frmErrLog::txtInf},
}};

void cmdCancel_Click(frmErrLog& form)
{
    form.answer = ErrorAnswer::Continue;
}

void cmdOk_Click(frmErrLog& form)
{
    form.answer = ErrorAnswer::Exit;
}

bool DisplayErrMSgDialog(TraceContext& context, std::string_view type,
                         std::string_view customMessage, int number, std::string_view sysMessage,
                         std::string_view module, std::string_view procedure)
{
    const std::int16_t number16 = narrowed(number);
    context.trace.WriteRunTrace("DisplayErrMSgDialog", "Start", true);

    // A fresh form each time, so that nothing of a former error is left in a box.
    frmErrLog form;
    form.txtModName.text = module;
    form.txtProcName.text = procedure;
    form.txtSysErrNo.text = std::to_string(number16);
    form.txtSysErrMsg.text = sysMessage;
    form.txtErrType.text = type;
    form.txtInf.text = customMessage;

    // The dialog is the last resort: an error of its own is not shown again.
    base::PendingError unshown;
    unshown.attempt([&] { context.dialog.showModal(form); });
    if (form.answer == ErrorAnswer::Exit)
        throw ExitRequested{};

    context.trace.WriteRunTrace("DisplayErrMSgDialog", "End", true);
    return true;
}

TraceScope::TraceScope(RunTrace& trace, std::string_view name)
    : m_trace(trace), m_name(name), m_exceptions(std::uncaught_exceptions())
{
    m_trace.WriteRunTrace(m_name, "Start", true);
}

TraceScope::~TraceScope()
{
    if (std::uncaught_exceptions() != m_exceptions)
        return;
    try {
        m_trace.WriteRunTrace(m_name, "End", true);
    } catch (...) { // NOLINT(bugprone-empty-catch): a trace never stops the procedure it follows
    }
}

void errorTail(TraceContext& context, const TailNames& names, const base::PendingError& error)
{
    if (error.number <= 0)
        return;
    ErrorRecord& record = context.errors;
    record.ST_Err_Type = kInformative;
    record.ST_Err_Proc_Name = names.procedureField;
    record.ST_Err_Custom_Msg = names.customMessage;
    record.LG_Err_Number = error.number;
    record.ST_Err_Description = described(error);
    context.trace.WriteRunTrace(names.traceName, "Error", true);
    DisplayErrMSgDialog(context, record.ST_Err_Type, record.ST_Err_Custom_Msg, record.LG_Err_Number,
                        record.ST_Err_Description, names.module, record.ST_Err_Proc_Name);
}

} // namespace vardelin::trace
