#pragma once

#include <vector>

#include <QRect>
#include <QWidget>

namespace vardelin::ui {

// Tells under the source tree what its three states look like, with the very marks of the rows. As
// many lines as its width needs.
class TreeLegend final : public QWidget {
    Q_OBJECT

public:
    explicit TreeLegend(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int boxSize() const;
    int lineHeight() const;
    std::vector<QRect> places(int width) const; // one a state, from the left and the top
};

} // namespace vardelin::ui
