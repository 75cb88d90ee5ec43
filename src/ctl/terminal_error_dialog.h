#pragma once

#include "trace/error_tail.h"

namespace vardelin::ctl {

class Output;

// The error dialog of a terminal: prints its texts to the standard error stream and answers
// "&Exit", so that the program ends with the code of a failure.
//
// While an object of class Completing lives the answer is "&Continue": a procedure of several steps
// goes on as it does for a person who continues, and the failure counts at its end.
class TerminalErrorDialog final : public trace::ErrorDialog {
public:
    explicit TerminalErrorDialog(Output& output) : m_output(output) {}

    void showModal(trace::frmErrLog& form) override;

    class Completing {
    public:
        explicit Completing(TerminalErrorDialog& dialog) : m_dialog(dialog)
        {
            m_dialog.m_answersContinue = true;
            m_dialog.m_failed = false;
        }
        Completing(const Completing&) = delete;
        Completing& operator=(const Completing&) = delete;
        ~Completing() { m_dialog.m_answersContinue = false; }

        bool failed() const { return m_dialog.m_failed; }

    private:
        TerminalErrorDialog& m_dialog;
    };

private:
    Output& m_output;
    bool m_answersContinue = false;
    bool m_failed = false;
};

} // namespace vardelin::ctl
