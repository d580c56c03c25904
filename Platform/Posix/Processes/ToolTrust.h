#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace farview
{

/// What counts about one part of a program's path when it is to run with root's rights.
struct PathPart {
    std::string path;
    uid_t owner = 0;
    mode_t mode = 0; ///< with the bits of its type
};

/// Whether root is the only one who can say what lies under the last of these paths, which come
/// from "/" downwards. Returns the first that others can write; empty when there is none. The last
/// may be a program, or anything else that has an owner.
std::string firstChangeableByOthers(const std::vector<PathPart>& parts);

/// The absolute path without links and without "." and "..", if it leads to a program; else empty.
std::string canonicalProgram(const std::string& path);

/// What the system says about "/" and every further part of a canonical path.
std::vector<PathPart> partsOfPath(const std::string& canonicalPath);

} // namespace farview
