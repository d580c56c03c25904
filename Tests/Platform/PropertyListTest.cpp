#include "Platform/Types/PropertyList.h"

#include <gtest/gtest.h>

using farview::PropertyList;

namespace
{

TEST(PropertyList, KeepsItsType)
{
    EXPECT_TRUE(PropertyList(true).is<bool>());
    EXPECT_TRUE(PropertyList(1).is<std::int64_t>());
    EXPECT_TRUE(PropertyList(1.0).is<double>());
    EXPECT_TRUE(PropertyList("text").is<std::string>());
    EXPECT_TRUE(PropertyList(PropertyList::Array{}).is<PropertyList::Array>());
    EXPECT_TRUE(PropertyList(PropertyList::Dictionary{}).is<PropertyList::Dictionary>());
    EXPECT_EQ(PropertyList(1).get<bool>(), nullptr);
}

TEST(PropertyList, ValuesOfDifferentTypesDiffer)
{
    EXPECT_NE(PropertyList(true), PropertyList(1));
    EXPECT_NE(PropertyList(1), PropertyList(1.0));
    EXPECT_NE(PropertyList("1"), PropertyList(1));
    EXPECT_EQ(PropertyList(PropertyList::Array{1, "a"}), PropertyList(PropertyList::Array{1, "a"}));
}

} // namespace
