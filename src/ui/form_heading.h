#pragma once

#include <functional>
#include <string>

#include <QWidget>

namespace vardelin::ui {

class ElidedLabel;

// What stands above a form that fills the main frame's area: its caption, and the button `cmdClose`
// which closes the form as the close box of a window of its own would.
class FormHeading final : public QWidget {
    Q_OBJECT

public:
    explicit FormHeading(QWidget& form);

    void showCaption(const std::string& caption);

private:
    QWidget& m_form;
    ElidedLabel* m_caption = nullptr;
};

} // namespace vardelin::ui
