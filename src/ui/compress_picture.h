#pragma once

#include <string>

#include <QBuffer>
#include <QMovie>
#include <QWidget>

namespace vardelin::ui {

// An animated picture, some lines of text high and as wide as it then is; it runs while it is seen.
// One that is stored larger than that has soft edges, though its pixels are there or not.
class CompressPicture final : public QWidget {
    Q_OBJECT

public:
    // The bytes of a GIF. Where they are none or damaged at their beginning, nothing plays,
    // and the widget has no size; damage further on ends the picture there.
    explicit CompressPicture(const std::string& picture, QWidget* parent = nullptr);

    bool plays() const { return m_plays; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QBuffer m_bytes; // the movie reads it again at each turn
    QMovie m_movie;
    bool m_plays = false;
};

} // namespace vardelin::ui
