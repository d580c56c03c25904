#include "Applications/Update/UpdateCommands.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <unistd.h>
#include <vector>

namespace farview
{
namespace
{

class UpdateCommandsTest : public testing::Test
{
protected:
    ~UpdateCommandsTest() override
    {
        ::close(mEnds[0]);
        close();
    }

    void write(const std::string& text)
    {
        EXPECT_EQ(::write(mEnds[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        commands.poll();
    }
    void close()
    {
        ::close(mEnds[1]);
        mEnds[1] = -1;
    }

private:
    static std::array<int, 2> pipe()
    {
        std::array<int, 2> ends{-1, -1};
        EXPECT_EQ(::pipe(ends.data()), 0);
        return ends;
    }

    std::array<int, 2> mEnds = pipe();

protected:
    std::vector<UpdateCommand> heard;
    UpdateCommands commands{mEnds[0], [this](UpdateCommand command) { heard.push_back(command); }};
};

using enum UpdateCommand;

TEST_F(UpdateCommandsTest, AreOneWordPerLine)
{
    write("download\ninstall\n");
    write("can");
    EXPECT_EQ(heard, (std::vector{download, install}));
    write("cel\n");
    EXPECT_EQ(heard, (std::vector{download, install, cancel}));
}

TEST_F(UpdateCommandsTest, OtherWordsMeanNothing)
{
    write("Download\n download\ndownload \n\ninstall now\n" + std::string(10000, 'x') + "\n");
    EXPECT_TRUE(heard.empty());
    write("install\n");
    EXPECT_EQ(heard, std::vector{install});
}

TEST_F(UpdateCommandsTest, TheEndIsHeardOnceAndHalfAWordNever)
{
    write("download\ninstall");
    close();
    commands.poll();
    commands.poll();
    EXPECT_EQ(heard, (std::vector{download, ended}));
}

TEST_F(UpdateCommandsTest, NothingIsWaitedFor)
{
    commands.poll();
    EXPECT_TRUE(heard.empty());
}

} // namespace
} // namespace farview
