#pragma once

#include "ui/form_binder.h"

#include <initializer_list>
#include <string>

#include <QDialog>

class QPushButton;
class QVBoxLayout;

namespace vardelin::ui {

// A form in a window of its own, in front of all others until it is answered. It closes by itself
// when a handler lets `stays` fall. A person may close it by its frame or Esc as well: `stays`
// holds then, and whoever asked for the form sees by that that nothing was answered.
class ModalForm : public QDialog {
    Q_OBJECT

public:
    // Ties more to what the person does here: `also` runs behind every handler of the form.
    FormBinder& binder() { return m_binder; }

    // Hides the form and gives the keyboard back to the window that it stood in front of: where a
    // message closes right before the form does, a window manager gives it to nobody.
    void done(int result) override;

protected:
    // `stays` must outlive the window.
    ModalForm(const char* name, const std::string& caption, const bool& stays, QWidget* parent);

    // The buttons at the lower edge, the first one being the default; `apart` stands at its left
    // end and comes last by the keyboard.
    void addButtons(QVBoxLayout& layout, std::initializer_list<QPushButton*> buttons,
                    QPushButton* apart = nullptr);

    FormBinder m_binder;
};

} // namespace vardelin::ui
