#pragma once

#include <QWidget>

namespace farview
{

/// A calm ground with round corners around what belongs together and matters most.
class Card : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace farview
