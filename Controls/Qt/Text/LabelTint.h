#pragma once

#include <QLabel>
#include <QObject>

namespace farview
{

/// Keeps the text of a label in the colour of its rank, whatever the desktop's colours become.
/// Owned by the label.
class LabelTint : public QObject
{
    Q_OBJECT

public:
    /// The label's own, made when it is asked for first.
    static LabelTint& of(QLabel& label);

    /// Explains rather than says.
    void setSecondary(bool secondary);
    /// Says what went wrong; outranks the other.
    void setError(bool error);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit LabelTint(QLabel& label);
    void show();

    QLabel& mLabel;
    bool mIsSecondary = false;
    bool mIsError = false;
};

} // namespace farview
