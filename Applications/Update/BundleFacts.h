#pragma once

#include <optional>
#include <string>

namespace farview
{

/// What a bundle's Info.plist says about itself and its updates. What is missing or of the wrong
/// type is empty.
struct BundleFacts {
    std::string identifier; ///< CFBundleIdentifier
    std::string version;    ///< CFBundleVersion; empty when it is none that can be compared
    std::string feed;       ///< SUFeedURL
    std::string publicKey;  ///< SUPublicEDKey, Base64
};

/// Nothing when there is no bundle, or no Info.plist that can be read.
std::optional<BundleFacts> readBundleFacts(const std::string& path);

/// The bundle's own path: absolute, through no link. It need not exist.
std::string ownPath(const std::string& path);

/// Whether this user may replace the bundle: write it, and the folder that it lies in.
bool mayReplaceBundle(const std::string& path);

} // namespace farview
