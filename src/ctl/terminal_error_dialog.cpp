#include "ctl/terminal_error_dialog.h"

#include "base/text.h"
#include "ctl/output.h"

#include <fmt/format.h>

namespace vardelin::ctl {

void TerminalErrorDialog::showModal(trace::frmErrLog& form)
{
    m_output.error(fmt::format("{} (error {}: {}; {}, {})", base::trim(form.txtInf.text),
                               form.txtSysErrNo.text, form.txtSysErrMsg.text, form.txtModName.text,
                               form.txtProcName.text));
    if (m_answersContinue) {
        m_failed = true;
        trace::cmdCancel_Click(form);
    } else {
        trace::cmdOk_Click(form);
    }
}

} // namespace vardelin::ctl
