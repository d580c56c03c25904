#pragma once

#include <QScrollArea>

namespace farview
{

/// A page that scrolls up and down where the window is too low for it. It looks as if it were not
/// there: no frame, no ground of its own, no place in the order of the tab key.
class PageScroller : public QScrollArea
{
    Q_OBJECT

public:
    explicit PageScroller(QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace farview
