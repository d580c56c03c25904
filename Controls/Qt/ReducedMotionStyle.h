#pragma once

#include <QProxyStyle>

namespace farview
{

/// A style that lets nothing move when it is told so, the toolkit's own controls included;
/// otherwise like the style of that name.
class ReducedMotionStyle : public QProxyStyle
{
    Q_OBJECT

public:
    explicit ReducedMotionStyle(const QString& name) : QProxyStyle(name) {}

    /// Still from the beginning.
    void setStill(bool still);

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;

private:
    bool mIsStill = true;
};

} // namespace farview
