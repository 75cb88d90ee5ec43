#pragma once

#include <QLabel>
#include <QString>

namespace vardelin::ui {

// One line that loses its middle where it does not fit, so that a path keeps its drive and its
// file's name. The tool tip and the accessible name are the whole text.
class ElidedLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void setWhole(const QString& text);
    const QString& whole() const { return m_whole; }

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void fit();

    QString m_whole;
};

} // namespace vardelin::ui
