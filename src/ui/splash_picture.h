#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

namespace vardelin::ui {

// The product's sign with a ring of marks around it that runs while the picture is seen.
class SplashPicture final : public QWidget {
    Q_OBJECT

public:
    explicit SplashPicture(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QTimer m_frames;
    QElapsedTimer m_since;
};

} // namespace vardelin::ui
