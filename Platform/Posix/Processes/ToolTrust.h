#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace farview
{

/// One part of the path of a program that is to run with root's rights.
struct PathPart {
    std::string path;
    uid_t owner = 0;
    mode_t mode = 0; ///< with the bits of its type
};

/// The first of these parts, given from "/" downwards, that anyone but root can change; empty when
/// only root can. The last part may be a program, or anything else that has an owner.
std::string firstChangeableByOthers(const std::vector<PathPart>& parts);

/// The absolute path without links and without "." and "..", if it leads to a program; else empty.
std::string canonicalProgram(const std::string& path);

/// What the system says about "/" and every further part of a canonical path.
std::vector<PathPart> partsOfPath(const std::string& canonicalPath);

} // namespace farview
