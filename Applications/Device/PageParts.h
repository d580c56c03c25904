#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace farview
{

/// A button that a finger can hit is at least as high, in points.
inline constexpr int kFingerHeight = 48;

/// Adds a label to the end of the layout, which owns it. What it shows is foreign: never markup.
QLabel* plainLabel(QBoxLayout& layout, const char* objectName);
/// Adds a button to the end of the layout, which owns it. Return presses it while it has the
/// keyboard, and only then.
QPushButton* fingerButton(QBoxLayout& layout, const char* objectName, const QString& title);

} // namespace farview
