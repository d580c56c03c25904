#include "Link/Keys/OwnKey.h"

#include "Tests/Link/MadeCertificate.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/OwnMounts.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <pty.h>
#include <sys/stat.h>

using namespace farview;
using testing::Contains;
using testing::HasSubstr;

namespace
{

namespace fs = std::filesystem;

unsigned modeOfKey(const std::string& path)
{
    struct stat status {
    };
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

std::string bytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class OwnKeyTest : public testing::Test
{
protected:
    /// A sound file for its owner alone; what a test then does to it.
    void keepKey() { ASSERT_TRUE(ownKey(path).key); }
    void keep(const std::string& text)
    {
        folder.write("farview/device.pem", text);
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    }
    /// It is refused by name, with the reason and the way out, and stays as it was.
    void expectUnusable(const std::string& why)
    {
        const std::string before = fs::is_regular_file(path) ? bytesOf(path) : "";
        const auto mode = modeOfKey(path);
        const OwnKeyResult result = ownKey(path);
        EXPECT_FALSE(result.key) << why;
        EXPECT_THAT(result.trouble, HasSubstr(path));
        EXPECT_THAT(result.trouble, HasSubstr(why));
        EXPECT_THAT(result.trouble, HasSubstr("Remove the file"));
        EXPECT_EQ(fs::is_regular_file(path) ? bytesOf(path) : "", before);
        EXPECT_EQ(modeOfKey(path), mode);
        EXPECT_FALSE(readOwnKey(path).key);
    }
    void withOwnDisk(const std::function<void()>& body)
    {
        farview::withOwnDisk(fs::path(path).parent_path(), body);
    }

    TemporaryFolder folder;
    std::string path = folder.path("farview/device.pem");
};

TEST_F(OwnKeyTest, IsMadeAtFirstUseAndStaysTheSame)
{
    EXPECT_FALSE(readOwnKey(path).key);
    EXPECT_EQ(readOwnKey(path).trouble, "") << "a file that is missing is no trouble";
    const auto made = ownKey(path);
    ASSERT_TRUE(made.key) << made.trouble;
    const std::string file = bytesOf(path);
    for (const auto& again : {ownKey(path), readOwnKey(path)}) {
        ASSERT_TRUE(again.key) << again.trouble;
        EXPECT_EQ(again.key->fingerprint, made.key->fingerprint);
        EXPECT_EQ(again.key->secret, made.key->secret);
    }
    EXPECT_EQ(bytesOf(path), file);
}

TEST_F(OwnKeyTest, TwoKeysAreNeverTheSame)
{
    EXPECT_NE(makeOwnKey().fingerprint, makeOwnKey().fingerprint);
}

TEST_F(OwnKeyTest, TheCertificateTellsNothingAndDoesNotExpire)
{
    const auto certificate = makeOwnKey().certificate;
    EXPECT_EQ(certificate.subjectInfo(QSslCertificate::CommonName), QStringList("farview"));
    EXPECT_EQ(certificate.subjectInfoAttributes().size(), 1);
    EXPECT_EQ(certificate.effectiveDate().date().year(), 2000);
    EXPECT_EQ(certificate.expiryDate().date().year(), 9999);
}

TEST_F(OwnKeyTest, IsForItsOwnerAloneWhateverTheUmask)
{
    for (const mode_t mask : {0, 022, 0777}) {
        fs::remove_all(fs::path(path).parent_path());
        const mode_t before = ::umask(mask);
        const auto made = ownKey(path);
        ::umask(before);
        ASSERT_TRUE(made.key) << made.trouble;
        EXPECT_EQ(modeOfKey(path), 0600U);
        EXPECT_EQ(modeOfKey(fs::path(path).parent_path()), 0700U);
    }
}

TEST_F(OwnKeyTest, IsNotUsedWhenOthersMayReadOrWriteIt)
{
    keepKey();
    for (const mode_t mode : {0640, 0620, 0604, 0602, 0610, 0666}) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        expectUnusable("other users may read or change it");
    }
    ASSERT_EQ(::chmod(path.c_str(), 0400), 0);
    EXPECT_TRUE(ownKey(path).key) << "nobody else can read it";
}

TEST_F(OwnKeyTest, IsNotUsedWhenItIsLinked)
{
    keepKey();
    fs::create_hard_link(path, folder.path("second"));
    expectUnusable("it is linked to another place");
    fs::remove(path);
    fs::create_symlink(folder.path("second"), path);
    expectUnusable("it is a link");
    EXPECT_TRUE(readOwnKey(folder.path("second")).key) << "it is only the link that is refused";
    fs::remove(path);
    fs::create_symlink(folder.path("nowhere"), path);
    expectUnusable("it is a link");
    EXPECT_FALSE(fs::exists(folder.path("nowhere")));
}

TEST_F(OwnKeyTest, IsNotUsedWhenItIsNoFile)
{
    fs::create_directories(path);
    expectUnusable("it is no file");
    fs::remove(path);
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    expectUnusable("it is no file");
}

TEST_F(OwnKeyTest, IsNotUsedWhenItIsEmptyBrokenCutOrTooLarge)
{
    keepKey();
    const std::string good = bytesOf(path);
    for (const std::string& text : {std::string(), std::string("no key"), good.substr(0, 100),
                                    good.substr(0, good.size() / 2),
                                    good.substr(0, good.size() - 30), std::string(4096, '\0')}) {
        keep(text);
        expectUnusable("it is broken");
    }
    keep(good + std::string(20000, '\n'));
    expectUnusable("it is too large");
    keep(good);
    EXPECT_TRUE(ownKey(path).key);
}

TEST_F(OwnKeyTest, IsNotUsedWhenKeyAndCertificateDoNotBelongTogether)
{
    const MadeCertificate one("P-256");
    const MadeCertificate another("P-256");
    keep(one.keyPem() + another.certificatePem());
    expectUnusable("it is broken");
    keep(one.keyPem());
    expectUnusable("it is broken");
    keep(one.certificatePem());
    expectUnusable("it is broken");
    keep(one.keyPem() + one.certificatePem());
    EXPECT_TRUE(ownKey(path).key);
}

TEST_F(OwnKeyTest, IsNotUsedWhenItIsOfAnotherKind)
{
    for (const char* kind : {"RSA", "P-384", "secp256k1", "Ed25519"}) {
        const MadeCertificate other(kind);
        keep(other.keyPem() + other.certificatePem());
        expectUnusable("it is broken");
    }
}

// On a terminal, where a library that asks for the password would wait for ever.
TEST_F(OwnKeyTest, AsksNobodyForThePasswordOfAKey)
{
    const MadeCertificate made("P-256");
    keep(made.encryptedKeyPem("secret") + made.certificatePem());
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        ::alarm(20);
        ::_exit(ownKey(path).trouble.empty() ? 1 : 0);
    }
    std::array<char, 256> printed{};
    EXPECT_LE(::read(terminal, printed.data(), printed.size() - 1), 0) << printed.data();
    ::close(terminal);
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(OwnKeyTest, IsNotUsedWhenItBelongsToAnotherUser)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can lay out a file of another user";
    keepKey();
    ASSERT_EQ(::chown(path.c_str(), 65534, 65534), 0);
    expectUnusable("it belongs to another user");
}

TEST_F(OwnKeyTest, SaysThatItCannotBeStored)
{
    folder.write("farview", "a file where the folder should be");
    EXPECT_THAT(ownKey(path).trouble, HasSubstr(path));
    EXPECT_FALSE(ownKey(path).key);
}

TEST_F(OwnKeyTest, IsMadeOnceAFullDiskHasRoomAgain)
{
    withOwnDisk([&] {
        const fs::path place = fs::path(path).parent_path();
        fillDisk(place / "full");
        EXPECT_FALSE(ownKey(path).key);
        EXPECT_THAT(ownKey(path).trouble, HasSubstr(path + ": No space left"));
        EXPECT_FALSE(fs::exists(path)) << "half a key would be in the way for good";
        fs::remove(place / "full");
        EXPECT_TRUE(ownKey(path).key);
    });
}

TEST_F(OwnKeyTest, IsReadButNotMadeInAReadOnlyFolder)
{
    withOwnDisk([&] {
        const fs::path place = fs::path(path).parent_path();
        setReadOnly(place, true);
        EXPECT_THAT(ownKey(path).trouble, HasSubstr(path + ": Read-only"));
        setReadOnly(place, false);
        const auto made = ownKey(path);
        setReadOnly(place, true);
        const auto read = ownKey(path);
        EXPECT_TRUE(made.key && read.key && made.key->fingerprint == read.key->fingerprint);
    });
}

TEST_F(OwnKeyTest, ProgramsThatMakeItAtTheSameMomentHaveTheSame)
{
    std::array<int, 2> start{};
    ASSERT_EQ(::pipe2(start.data(), O_CLOEXEC), 0);
    std::vector<std::unique_ptr<ForkedProcess>> programs;
    for (int number = 0; number < 6; ++number)
        programs.push_back(std::make_unique<ForkedProcess>([&, number] {
            ::close(start[1]);
            char none = 0;
            EXPECT_EQ(::read(start[0], &none, 1), 0);
            const auto made = ownKey(path);
            EXPECT_TRUE(made.key) << made.trouble;
            const auto print = made.key ? made.key->fingerprint : LinkDigest{};
            std::ofstream(folder.path("print-" + std::to_string(number)))
                .write(reinterpret_cast<const char*>(print.data()), print.size());
        }));
    ::close(start[0]);
    ::close(start[1]);
    for (auto& program : programs)
        EXPECT_EQ(program->wait(), 0);
    const auto print = ownKey(path).key.value().fingerprint;
    for (int number = 0; number < 6; ++number)
        EXPECT_EQ(bytesOf(folder.path("print-" + std::to_string(number))),
                  std::string(print.begin(), print.end()));
    for (const auto& file : fs::directory_iterator(fs::path(path).parent_path()))
        EXPECT_THAT((std::vector<std::string>{path, path + ".lock"}), Contains(file.path()));
}

TEST_F(OwnKeyTest, LiesBesideTheSettingsOfItsProgram)
{
    const ScopedEnvironment config("XDG_CONFIG_HOME", folder.path().c_str());
    EXPECT_EQ(ownKeyPath("com.example.Device"), folder.path("farview/com.example.Device.pem"));
}

} // namespace
