#include "Platform/Fake/FakeFileManager.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

namespace farview
{
namespace
{

struct ScriptedFiles {
    FakeFileManager body;

    FileManager& manager() { return body; }
    std::string path(const std::string& name) const { return "/folder/" + name; }
    void addOtherFile(const std::string& name) { body.addFile(path(name)); }
    void setWritesFail(bool fail) { body.setWritesFail(fail); }
    bool isSetAside(const std::string& name) const
    {
        return body.setAside() == std::vector{path(name)};
    }
};

struct FilesOnDisk {
    PosixFileManager body;
    TemporaryFolder folder;

    FileManager& manager() { return body; }
    std::string path(const std::string& name) const { return folder.path("folder/" + name); }
    void addOtherFile(const std::string& name) { folder.write("folder/" + name, "no list"); }
    /// A file where the folder was: nothing below it can be made, even by root.
    void setWritesFail(bool fail)
    {
        const std::filesystem::path place = folder.path("folder");
        const std::filesystem::path kept = folder.path("kept");
        if (fail) {
            if (std::filesystem::exists(place))
                std::filesystem::rename(place, kept);
            folder.write("folder", "a file");
        } else {
            std::filesystem::remove(place);
        }
    }
    bool isSetAside(const std::string& name) const
    {
        return std::filesystem::exists(path(name) + ".broken-1");
    }
};

template <typename Scene> class FileManagerContract : public testing::Test
{
protected:
    FileManager& manager() { return mScene.manager(); }
    /// A path in a folder that exists.
    std::string file(const std::string& name)
    {
        EXPECT_TRUE(manager().createDirectoryAtPath(mScene.path("sub")));
        return mScene.path("sub/" + name);
    }

    Scene mScene;
};

using Scenes = testing::Types<ScriptedFiles, FilesOnDisk>;
TYPED_TEST_SUITE(FileManagerContract, Scenes);

TYPED_TEST(FileManagerContract, WhatIsNotThereDoesNotExist)
{
    EXPECT_FALSE(this->manager().fileExistsAtPath(this->mScene.path("none")));
    EXPECT_EQ(this->manager().propertyListWithContentsOfFile(this->mScene.path("none")),
              std::nullopt);
}

TYPED_TEST(FileManagerContract, AFolderCanBeMadeTwice)
{
    EXPECT_TRUE(this->manager().createDirectoryAtPath(this->mScene.path("a/b/c")));
    EXPECT_TRUE(this->manager().createDirectoryAtPath(this->mScene.path("a/b/c")));
    EXPECT_TRUE(this->manager().fileExistsAtPath(this->mScene.path("a/b/c")));
}

TYPED_TEST(FileManagerContract, AListReadsBackAsWritten)
{
    const auto path = this->file("list");
    const PropertyList list =
        PropertyList::Dictionary{{"a", PropertyList::Array{true, 1, 1.5, "text"}}};
    EXPECT_TRUE(this->manager().writePropertyList(list, path));
    EXPECT_TRUE(this->manager().fileExistsAtPath(path));
    EXPECT_EQ(this->manager().propertyListWithContentsOfFile(path), list);
    EXPECT_TRUE(this->manager().writePropertyList("other", path));
    EXPECT_EQ(this->manager().propertyListWithContentsOfFile(path), PropertyList("other"));
}

TYPED_TEST(FileManagerContract, ABrokenFileGivesNothingAndIsSetAsideByTheNextWrite)
{
    const auto path = this->file("list");
    this->mScene.addOtherFile("sub/list");
    EXPECT_TRUE(this->manager().fileExistsAtPath(path));
    EXPECT_EQ(this->manager().propertyListWithContentsOfFile(path), std::nullopt);
    EXPECT_FALSE(this->mScene.isSetAside("sub/list"));
    EXPECT_TRUE(this->manager().writePropertyList(1, path));
    EXPECT_TRUE(this->mScene.isSetAside("sub/list"));
    EXPECT_EQ(this->manager().propertyListWithContentsOfFile(path), PropertyList(1));
}

TYPED_TEST(FileManagerContract, BytesTakeThePlaceOfWhateverFileWasThere)
{
    const auto path = this->file("bytes");
    const std::array<std::uint8_t, 4> bytes = {'<', 0, 255, '\n'};
    EXPECT_TRUE(this->manager().writeData(bytes, path));
    EXPECT_TRUE(this->manager().fileExistsAtPath(path));
    EXPECT_EQ(this->manager().propertyListWithContentsOfFile(path), std::nullopt);
    EXPECT_TRUE(this->manager().writePropertyList(1, path));
    EXPECT_TRUE(this->manager().writeData({}, path));
    EXPECT_TRUE(this->manager().fileExistsAtPath(path));
    EXPECT_EQ(this->manager().propertyListWithContentsOfFile(path), std::nullopt);
}

TYPED_TEST(FileManagerContract, AWriteThatCannotBeSaysSo)
{
    this->mScene.setWritesFail(true);
    EXPECT_FALSE(this->manager().writePropertyList(1, this->mScene.path("list")));
    EXPECT_FALSE(this->manager().writeData({}, this->mScene.path("bytes")));
    EXPECT_FALSE(this->manager().createDirectoryAtPath(this->mScene.path("new")));
    this->mScene.setWritesFail(false);
    EXPECT_TRUE(this->manager().writePropertyList(1, this->file("list")));
}

} // namespace
} // namespace farview
