#include "Tests/Support/OwnDesktop.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>
#include <vector>

namespace
{

constexpr auto insideMark = "FARVIEW_TEST_INSIDE_ITS_DESKTOP";

} // namespace

bool isInsideOwnDesktop() { return std::getenv(insideMark) != nullptr; }

int enterOwnDesktop(int argc, char* argv[])
{
    setenv(insideMark, "1", 1);
    std::vector<char*> arguments = {const_cast<char*>(FARVIEW_WITH_DESKTOP)};
    arguments.insert(arguments.end(), argv, argv + argc);
    arguments.push_back(nullptr);
    execv(FARVIEW_WITH_DESKTOP, arguments.data());
    perror(FARVIEW_WITH_DESKTOP);
    return EXIT_FAILURE;
}
