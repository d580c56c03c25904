#pragma once

#include "Applications/Update/Signature.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// What stands in an archive, honest or not.
struct ArchiveEntry {
    enum class Kind { file, folder, symbolicLink, hardLink, device };

    std::string path;
    Kind kind = Kind::file;
    std::string contents; ///< of a file; where a link leads
    unsigned mode = 0644;
    std::uint64_t zeros = 0; ///< so many zero bytes instead of the contents
};

/// A tar archive, compressed with xz.
std::string packed(const std::vector<ArchiveEntry>& entries);
/// Files and folders of the bundle, with its own name at the top.
std::vector<ArchiveEntry> entriesOf(const std::string& bundle);

/// A new value for texts in a bundle's Info.plist.
void setInfo(const std::string& bundle, const std::map<std::string, std::string>& values);
std::string infoText(const std::string& bundle, const std::string& key);
/// Every path in the folder with mode, kind and contents: equal when nothing has changed.
std::map<std::string, std::string> snapshot(const std::string& folder);

/// One entry of a feed.
struct Offer {
    std::string version;
    std::string address;
    std::string signature;
    std::uint64_t length = 0;
    std::string minimumSystemVersion;
    std::string notes = "What is new";
};

/// The honest offer of an archive.
Offer offerOf(const std::string& archive, const std::string& version, const std::string& address,
              const SigningKey& key);
/// A feed with these items, not signed yet, that says it was signed so many seconds from now and
/// expires so many seconds from now.
std::string feedOf(const std::vector<Offer>& offers, int isSigned = 0, int expires = 3600);

/// A small bundle that an update is tried on: files, a program, an Info.plist. Returns its path.
std::string makeBundle(const std::string& folder, const std::string& version,
                       const std::string& feed, const std::string& publicKey);
/// A copy of the pane bundle of the build tree, without debugging information, below the folder.
std::string copyPane(const std::string& pane, const std::string& folder);

} // namespace farview
