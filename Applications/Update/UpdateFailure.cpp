#include "Applications/Update/UpdateFailure.h"

#include "Platform/Posix/PropertyLists/PropertyListFile.h"

#include <cerrno>

namespace farview
{

UpdateFailure writeFailure(int error, const std::string& what)
{
    const bool isFull = error == ENOSPC || error == EDQUOT;
    return {isFull ? UpdateProblem::noSpace : UpdateProblem::write, what + ": " + errorText(error)};
}

} // namespace farview
