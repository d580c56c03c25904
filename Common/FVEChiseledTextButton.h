#pragma once

#include "Controls/Control.h"

/// A button whose title is drawn engraved; otherwise an ordinary button.
class FVEChiseledTextButton : public farview::Button
{
};
