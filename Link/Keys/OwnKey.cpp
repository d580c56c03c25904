#include "Link/Keys/OwnKey.h"

#include "Link/Keys/KeyMaking.h"
#include "Link/Keys/PairingProof.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/Settings/FileReplacement.h"
#include "Platform/Posix/Settings/LockFile.h"
#include "Platform/Posix/Settings/PreferencesLocations.h"

#include <QSslSocket>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>

namespace farview
{

namespace
{

constexpr off_t largestFile = 16384;
/// How long another program may take that makes it at the same moment.
constexpr std::chrono::milliseconds longestMaking{1000};
constexpr const char* wayOut =
    " Remove the file and a new key is made; every device or computer that knows the old one has "
    "to be confirmed again.";

OwnKeyResult unusable(const std::string& path, const std::string& why)
{
    return {{}, "The key in " + path + " is not used: " + why + wayOut};
}

OwnKeyResult notMade(const std::string& path, int error)
{
    return {{}, "No key can be stored in " + path + ": " + std::strerror(error) + "."};
}

/// Why nobody should rely on the file; empty when all is well.
std::string flaw(const struct stat& status)
{
    if (!S_ISREG(status.st_mode))
        return "it is no file.";
    if (status.st_uid != ::geteuid())
        return "it belongs to another user.";
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        return "other users may read or change it, or might have.";
    if (status.st_nlink != 1)
        return "it is linked to another place.";
    return status.st_size > largestFile ? "it is too large." : "";
}

std::string contents(int descriptor)
{
    std::array<char, largestFile> bytes{};
    const auto size = ::pread(descriptor, bytes.data(), bytes.size(), 0);
    return {bytes.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
}

std::optional<OwnKey> keyIn(const std::string& pem)
{
    if (!isKeyAndCertificate(pem))
        return std::nullopt;
    const QByteArray bytes = QByteArray::fromStdString(pem);
    OwnKey key{.secret = QSslKey(bytes, QSsl::Ec), .certificate = QSslCertificate(bytes)};
    const auto ownFingerprint = fingerprint(key.certificate);
    if (key.secret.isNull() || !ownFingerprint)
        return std::nullopt;
    key.fingerprint = *ownFingerprint;
    return key;
}

/// Makes the file, unless another program was quicker. Returns 0, or an errno.
int makeFile(const std::string& path)
{
    if (const int error = makeFolders(parentFolder(path), S_IRWXU))
        return error;
    LockFile lock;
    if (const int error = lock.acquire(path + ".lock", longestMaking))
        return error;
    struct stat status {
    };
    if (::lstat(path.c_str(), &status) == 0)
        return 0;
    const std::string pem = makeKeyAndCertificate();
    FileReplacement file(path);
    if (const int error = pem.empty() ? ENOTSUP : file.write(pem, S_IRUSR | S_IWUSR))
        return error;
    return file.commit();
}

} // namespace

std::string ownKeyPath(const std::string& domain)
{
    const auto settings = PreferencesLocations(EnvironmentUse::honoured)
                              .location(domain, PreferencesUser::current, PreferencesHost::any);
    return parentFolder(settings.path) + "/" + domain + ".pem";
}

OwnKeyResult readOwnKey(const std::string& path)
{
    if (!QSslSocket::supportsSsl())
        return {{}, "Nothing can be encrypted: the TLS plug-in of Qt Network is missing."};
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen() && errno == ENOENT)
        return {};
    if (!file.isOpen())
        return unusable(path, errno == ELOOP ? "it is a link." : std::strerror(errno));
    struct stat status {
    };
    if (::fstat(file.get(), &status) != 0)
        return unusable(path, std::strerror(errno));
    if (const auto why = flaw(status); !why.empty())
        return unusable(path, why);
    if (auto key = keyIn(contents(file.get())))
        return {std::move(key), {}};
    return unusable(path, "it is broken.");
}

OwnKeyResult ownKey(const std::string& path)
{
    OwnKeyResult result = readOwnKey(path);
    if (result.key || !result.trouble.empty())
        return result;
    if (const int error = makeFile(path))
        return notMade(path, error);
    return readOwnKey(path);
}

OwnKey makeOwnKey() { return keyIn(makeKeyAndCertificate()).value_or(OwnKey()); }

} // namespace farview
