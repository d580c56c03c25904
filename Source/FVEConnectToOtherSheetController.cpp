#include "Source/FVEConnectToOtherSheetController.h"

void FVEConnectToOtherSheetController::showConnectToOtherSheet(farview::Object* /*sender*/) {}
