#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// The files of the project as the layout tests read them.
struct SourceFile {
    std::string path; ///< relative to the root
    std::vector<std::string> lines;
};

inline bool isSource(const std::filesystem::path& path)
{
    return path.extension() == ".h" || path.extension() == ".cpp";
}

inline std::vector<SourceFile> readSources(const std::vector<std::string>& folders)
{
    const std::filesystem::path root = FARVIEW_SOURCE_DIR;
    std::vector<SourceFile> files;
    for (const auto& folder : folders) {
        if (!std::filesystem::exists(root / folder))
            continue;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
            if (!entry.is_regular_file() || !isSource(entry.path()))
                continue;
            SourceFile file{std::filesystem::relative(entry.path(), root).string(), {}};
            std::ifstream stream(entry.path());
            for (std::string line; std::getline(stream, line);)
                file.lines.push_back(line);
            files.push_back(std::move(file));
        }
    }
    std::sort(files.begin(), files.end(),
              [](const auto& left, const auto& right) { return left.path < right.path; });
    return files;
}

/// Every folder that holds code of the product.
inline std::vector<SourceFile> productSources()
{
    return readSources({"Platform", "Controls", "Common", "Source", "PaneBundle", "Link", "Screen",
                        "Applications"});
}
