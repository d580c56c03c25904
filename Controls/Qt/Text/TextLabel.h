#pragma once

#include "Controls/Qt/Text/TextMeasure.h"

#include <QFont>
#include <QLabel>

#include <map>
#include <optional>

namespace farview
{

/// A label whose answers to layouts are the toolkit's, given with less work: the toolkit's own lays
/// its text out three to five times for its hints, and once more whenever layouts inside layouts
/// ask for its height. Together a quarter of the window's start.
///
/// A label with the dynamic property "selectable" can be selected with the mouse once it has been
/// shown: the toolkit makes a whole document of such a text, which nobody needs before.
class TextLabel final : public QLabel
{
public:
    using QLabel::QLabel;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    /// What the answers are for.
    struct Subject {
        QString text;
        QFont font;
        QMargins margins;
        int margin = 0;
        int indent = 0;
        QSize least;
        QSize most;
        bool wraps = false;

        bool operator==(const Subject&) const = default;
    };
    struct Hints {
        QSize best;
        QSize least;
    };

    void forgetWhatChanged() const;
    bool isPlain() const;
    const Hints& hints() const;
    Hints ownHints() const;
    TextRoom roomAt(int width) const;
    TextRoom bestRoom(int around) const;

    mutable Subject mSubject;
    mutable std::optional<Hints> mHints;
    mutable std::map<int, int> mHeights;
};

} // namespace farview
