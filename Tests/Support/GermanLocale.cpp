#include "Tests/Support/GermanLocale.h"

#include <clocale>
#include <cstdlib>

GermanLocale::GermanLocale()
{
    // Its status also tells of mere warnings; whether the locale works says more.
    const auto command =
        "localedef -i de_DE -f UTF-8 '" + mFolder.path("de_DE.UTF-8") + "' >/dev/null 2>&1";
    [[maybe_unused]] const int status = std::system(command.c_str());
    mIsInForce = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
}

GermanLocale::~GermanLocale() { std::setlocale(LC_ALL, "C"); }
