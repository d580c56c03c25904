#include "Applications/PrivilegedHelpers/DisplayResolutions.h"

int main(int argc, char** /*argv*/) { return storeDisplayResolutions(true, argc); }
