#include "Tests/Common/SwitchFixture.h"

namespace farview::test
{
namespace
{

class BundleImageNamed : public testing::Test
{
protected:
    BundleImageNamed()
    {
        bundle.addResource("SliderKnob", "tiff");
        path = *bundle.pathForResource("SliderKnob", "tiff");
        images->files[path] = {4, 3};
    }

    FakeBundle bundle{"/pane"};
    std::shared_ptr<FakeImages> images = std::make_shared<FakeImages>();
    QLNImageSource source{&bundle, images};
    std::string path;
};

TEST_F(BundleImageNamed, LoadsTheTiffOfThatNameAndRegistersItUnderItsBareName)
{
    const auto image = bundleImageNamed(source, "SliderKnob");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->size(), (Size{4, 3}));
    EXPECT_EQ(images->imageNamed("SliderKnob"), image);
    EXPECT_EQ(images->imageNamed(path), nullptr);
}

TEST_F(BundleImageNamed, LoadsTheFileOnEveryCall)
{
    const auto first = bundleImageNamed(source, "SliderKnob");
    EXPECT_NE(bundleImageNamed(source, "SliderKnob"), first);
    EXPECT_EQ(images->loads, 2);
}

TEST_F(BundleImageNamed, ReturnsWhatSomeoneRegisteredUnderThePath)
{
    const auto other = std::make_shared<FakeImage>("other", Size{1, 1});
    images->setName(other, path);
    EXPECT_EQ(bundleImageNamed(source, "SliderKnob"), other);
    EXPECT_EQ(images->loads, 0);
}

TEST_F(BundleImageNamed, IsNothingWhereThereIsNothing)
{
    EXPECT_EQ(bundleImageNamed(source, "SliderWell"), nullptr);
    images->files.clear();
    EXPECT_EQ(bundleImageNamed(source, "SliderKnob"), nullptr);
    EXPECT_TRUE(images->named.empty());
    EXPECT_EQ(bundleImageNamed({}, "SliderKnob"), nullptr);
    EXPECT_EQ(bundleImageNamed({&bundle, nullptr}, "SliderKnob"), nullptr);
}

} // namespace
} // namespace farview::test
