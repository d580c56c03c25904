#pragma once

#include "Controls/Switch/FVEChiseledTextButton.h"

#include <QAbstractButton>

#include <memory>

namespace farview
{

/// Shows a word that can be pressed and looks engraved. Empty until it has its button.
class ChiseledTextWidget : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ChiseledTextWidget(QWidget* parent);

    void setButton(std::shared_ptr<const FVEChiseledTextButton> button);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::shared_ptr<const FVEChiseledTextButton> mButton;
};

} // namespace farview
