#include "Applications/Device/PageParts.h"

namespace farview
{

QLabel* plainLabel(QBoxLayout& layout, const char* objectName)
{
    auto* label = new QLabel;
    label->setObjectName(QString::fromLatin1(objectName));
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setWordWrap(true);
    layout.addWidget(label);
    return label;
}

QPushButton* fingerButton(QBoxLayout& layout, const char* objectName, const QString& title)
{
    auto* button = new QPushButton(title);
    button->setObjectName(QString::fromLatin1(objectName));
    button->setAutoDefault(true);
    button->setMinimumHeight(kFingerHeight);
    layout.addWidget(button);
    return button;
}

} // namespace farview
