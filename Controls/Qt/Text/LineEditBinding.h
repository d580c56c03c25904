#pragma once

#include "Controls/Qt/Binding.h"

#include <QLineEdit>

#include <string>

namespace farview
{

/// A field to type into.
class LineEditBinding : public Binding
{
    Q_OBJECT

public:
    LineEditBinding(std::shared_ptr<TextField> field, QLineEdit* lineEdit);

protected:
    void adopt() override;
    void show(Change change) override;

private:
    std::shared_ptr<TextField> mField;
    QLineEdit* mLineEdit;
    std::string mShownText;
};

} // namespace farview
