#pragma once

#include <optional>
#include <string>

namespace farview
{

/// What a bundle's Info.plist says about its updates. Empty: missing, or of the wrong type.
struct BundleFacts {
    std::string identifier; ///< CFBundleIdentifier
    std::string version;    ///< CFBundleVersion; empty when it is none that can be compared
    std::string feed;       ///< SUFeedURL
    std::string publicKey;  ///< SUPublicEDKey, Base64
};

/// Returns nothing when the Info.plist is missing or cannot be read.
std::optional<BundleFacts> readBundleFacts(const std::string& path);

/// The absolute path without links. The bundle need not exist.
std::string canonicalPath(const std::string& path);

/// Whether this user may replace the bundle: write it, and the folder that it lies in.
bool mayReplaceBundle(const std::string& path);

} // namespace farview
