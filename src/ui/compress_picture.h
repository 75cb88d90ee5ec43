#pragma once

#include <QElapsedTimer>
#include <QSvgRenderer>
#include <QTimer>
#include <QWidget>

namespace vardelin::ui {

// Files on their way from a folder into an archive, growing smaller as they go; it runs while it is
// seen.
class CompressPicture final : public QWidget {
    Q_OBJECT

public:
    explicit CompressPicture(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QTimer m_frames;
    QElapsedTimer m_since;
    QSvgRenderer m_folder;
    QSvgRenderer m_file;
    QSvgRenderer m_archive;
};

} // namespace vardelin::ui
