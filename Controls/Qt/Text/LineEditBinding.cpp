#include "Controls/Qt/Text/LineEditBinding.h"

#include "Controls/Qt/Text/PlainText.h"

namespace farview
{

LineEditBinding::LineEditBinding(std::shared_ptr<TextField> field, QLineEdit* lineEdit)
    : Binding(field, lineEdit), mField(std::move(field)), mLineEdit(lineEdit)
{
    connect(lineEdit, &QLineEdit::textChanged, this, [this](const QString& text) {
        // Assistive technology sets the text instead of typing it.
        if (isShowing())
            return;
        // What was typed is on show already: setting it again would move the cursor.
        mShownText = text.toStdString();
        userDid([this] { mField->userTyped(mShownText); });
    });
}

void LineEditBinding::adopt()
{
    mShownText = mLineEdit->text().toStdString();
    mField->setStringValue(mShownText);
    mField->setEditable(!mLineEdit->isReadOnly());
}

void LineEditBinding::show(Change change)
{
    mLineEdit->setReadOnly(!mField->isEditable());
    if (mField->stringValue() != mShownText) {
        mShownText = mField->stringValue();
        mLineEdit->setText(plainLine(mShownText));
    }
    if (change == Change::textSelection) {
        mLineEdit->selectAll();
        mLineEdit->setFocus();
    }
}

} // namespace farview
