// Makes keys, signs archives and feeds, for whoever makes a release.

#include "Applications/Update/Signature.h"
#include "Platform/Posix/PropertyLists/PropertyListScalars.h"
#include "Platform/Posix/WholeFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using namespace farview;

constexpr auto usage = R"(Usage: farview-sign --make-key KEY
       farview-sign --public-key KEY
       farview-sign --sign-feed KEY FEED
       farview-sign --open-feed KEY FEED
       farview-sign KEY FILE

  --make-key    write a new secret key to the file KEY, which must not exist, for its owner alone
  --public-key  print the public key that belongs to the secret one
  --sign-feed   print FEED and, as its last line, its signature
  --open-feed   print FEED without its last line, which must be its signature with KEY
  KEY FILE      print the signature of FILE

A bundle whose Info.plist has the public key as SUPublicEDKey accepts what the secret key signed.
)";

constexpr int done = 0;
constexpr int failed = 1;
constexpr int wrongUse = 2;
constexpr std::size_t largestKey = 4096;
constexpr std::size_t largestFile = 1u << 30;

int fail(const std::string& what)
{
    std::fprintf(stderr, "farview-sign: %s\n", what.c_str());
    return failed;
}

bool writeNewFile(const std::string& path, const std::string& text)
{
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    return file.isOpen() &&
           ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
           ::fsync(file.get()) == 0;
}

int makeKey(const std::string& path)
{
    const auto key = SigningKey::generated();
    if (!key || !writeNewFile(path, key->text() + "\n"))
        return fail("cannot write a new file " + path);
    std::puts(key->publicKey().c_str());
    return done;
}

std::optional<SigningKey> keyIn(const std::string& path)
{
    const auto file = readWholeFile(path, largestKey);
    return SigningKey::fromText(trimmed(file.bytes));
}

int printPublicKey(const std::string& path)
{
    const auto key = keyIn(path);
    if (!key)
        return fail("no secret key in " + path);
    std::puts(key->publicKey().c_str());
    return done;
}

using Making = std::optional<std::string> (*)(const SigningKey& key, std::string_view bytes);

/// Prints what is made of the file with the key.
int print(const std::string& keyPath, const std::string& path, Making make)
{
    const auto key = keyIn(keyPath);
    if (!key)
        return fail("no secret key in " + keyPath);
    const auto file = readWholeFile(path, largestFile);
    if (file.status != WholeFile::Status::read)
        return fail("cannot read " + path);
    const auto text = make(*key, file.bytes);
    if (!text)
        return fail(path + " is no feed that this key signed");
    std::fwrite(text->data(), 1, text->size(), stdout);
    return std::fflush(stdout) == 0 ? done : fail("cannot write");
}

std::optional<std::string> signatureLine(const SigningKey& key, std::string_view bytes)
{
    return key.signatureOf(bytes) + "\n";
}

std::optional<std::string> signedFeed(const SigningKey& key, std::string_view feed)
{
    return key.signedFeed(feed);
}

std::optional<std::string> openedFeed(const SigningKey& key, std::string_view bytes)
{
    const auto feed = verifiedFeed(bytes, key.publicKey());
    return feed ? std::optional(std::string(*feed)) : std::nullopt;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 1 && (arguments[0] == "--help" || arguments[0] == "-h")) {
        std::fputs(usage, stdout);
        return done;
    }
    if (arguments.size() == 3 && arguments[0] == "--sign-feed")
        return print(arguments[1], arguments[2], signedFeed);
    if (arguments.size() == 3 && arguments[0] == "--open-feed")
        return print(arguments[1], arguments[2], openedFeed);
    if (arguments.size() != 2) {
        std::fputs(usage, stderr);
        return wrongUse;
    }
    if (arguments[0] == "--make-key")
        return makeKey(arguments[1]);
    if (arguments[0] == "--public-key")
        return printPublicKey(arguments[1]);
    return print(arguments[0], arguments[1], signatureLine);
}
