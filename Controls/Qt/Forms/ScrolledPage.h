#pragma once

#include <QWidget>

namespace farview
{

/// What a `PageScroller` scrolls. It stays hidden and takes no room before its scroller lets it: to
/// lay out texts that nobody sees would hold up the window.
class ScrolledPage final : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// From now on it takes the room that it needs.
    void takeRoom() { mTakesRoom = true; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;
    void setVisible(bool visible) override;

private:
    bool mTakesRoom = false;
};

} // namespace farview
