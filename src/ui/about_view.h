#pragma once

#include <QDialog>

namespace vardelin::ui {

// The about box: the product, its version, and what it is made with under which licences.
class AboutView final : public QDialog {
    Q_OBJECT

public:
    explicit AboutView(QWidget* parent = nullptr);
};

// The version of the program, such as `0.1.0`.
const char* productVersion();

} // namespace vardelin::ui
