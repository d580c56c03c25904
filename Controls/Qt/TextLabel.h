#pragma once

#include <QFont>
#include <QLabel>

#include <map>

namespace farview
{

/// A label that remembers how high it is at a width. Layouts inside layouts ask for that again and
/// again, and each answer lays the text out anew: a quarter of the window's start.
///
/// A label with the dynamic property "selectable" can be selected with the mouse once it has been
/// shown: the toolkit makes a whole document of such a text, which nobody needs before.
class TextLabel final : public QLabel
{
public:
    using QLabel::QLabel;

    int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    /// What the heights were measured for, besides the width.
    struct Subject {
        QString text;
        QFont font;
        int margin = 0;
        int indent = 0;
        bool wordWrap = false;

        bool operator==(const Subject&) const = default;
    };

    mutable Subject mSubject;
    mutable std::map<int, int> mHeights;
};

} // namespace farview
