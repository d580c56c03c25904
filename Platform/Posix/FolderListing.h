#pragma once

#include <string>
#include <vector>

namespace farview
{

/// The names of all that lies in the folder, sorted, without "." and ".."; empty when it cannot be
/// read.
std::vector<std::string> namesInFolder(const std::string& path);

/// The names of the folders in the folder, sorted; links are left out, so a walk cannot circle.
std::vector<std::string> foldersInFolder(const std::string& path);

/// Whether anything is at the path, a link that leads nowhere included.
bool isAnythingAt(const std::string& path);

/// The folder that the path's last part lies in: "." for a lone name, "/" for "/name".
std::string parentFolder(const std::string& path);

/// Whether the path itself, not what a link there leads to, is a folder.
bool isRealFolder(const std::string& path);

/// One part of a path: not empty, no slash, not "." or "..".
bool isPlainFileName(const std::string& name);

} // namespace farview
