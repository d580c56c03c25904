#include "Platform/NetService.h"

#include "Platform/Fake/FakeNetService.h"
#include "Platform/NotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Data;
using farview::FakeDevice;
using farview::FakeNetService;
using farview::NetService;
using testing::SizeIs;

namespace
{

using Record = std::map<std::string, Data>;

Data wire(std::initializer_list<std::string> entries)
{
    std::string bytes;
    for (const auto& entry : entries)
        bytes += static_cast<char>(entry.size()) + entry;
    return Data::fromText(bytes);
}

Record decoded(const Data& data) { return NetService::dictionaryFromTXTRecordData(data); }

TEST(TXTRecord, IsDecodedByTheTable)
{
    struct Row {
        const char* what;
        Data bytes;
        Record expected;
    };
    const std::string binary("\x00\xff=\x80", 4);
    auto tooLong = wire({"key=value"});
    tooLong.bytes.insert(tooLong.bytes.end(), {200, 'x'});
    const std::vector<Row> table = {
        {"keys and values",
         wire({"ConnState=Connected", "other=1=2"}),
         {{"ConnState", Data::fromText("Connected")}, {"other", Data::fromText("1=2")}}},
        {"an empty record", {}, {}},
        {"one zero byte", {{0}}, {}},
        {"a length without its entry", {{1}}, {}},
        {"a great length without its entry", {{255}}, {}},
        {"no equals sign, no value", wire({"flag", "empty="}), {{"flag", {}}, {"empty", {}}}},
        {"entries without a key",
         wire({"=value", "", "=", "key=value"}),
         {{"key", Data::fromText("value")}}},
        {"the first of two equal keys wins",
         wire({"key=first", "key=second"}),
         {{"key", Data::fromText("first")}}},
        {"a length past the end ends the reading", tooLong, {{"key", Data::fromText("value")}}},
        {"binary values", wire({"key=" + binary}), {{"key", Data::fromText(binary)}}},
    };
    for (const auto& row : table)
        EXPECT_EQ(decoded(row.bytes), row.expected) << row.what;
}

TEST(TXTRecord, DecodesAnOversizedRecord)
{
    Data data;
    for (int entry = 0; entry < 5000; ++entry) {
        const auto one = wire({"key" + std::to_string(entry) + "=value"});
        data.bytes.insert(data.bytes.end(), one.bytes.begin(), one.bytes.end());
    }
    EXPECT_THAT(decoded(data), SizeIs(5000));
}

TEST(TXTRecord, ComesBackFromItsWireForm)
{
    const Record record{{"ConnState", Data::fromText("None")}, {"flag", {}}};
    EXPECT_EQ(decoded(NetService::dataFromTXTRecordDictionary(record)), record);
}

TEST(TXTRecord, CutsAnEntryThatIsTooLongForTheWire)
{
    const Record record{{"key", Data::fromText(std::string(1000, 'x'))}};
    const auto data = NetService::dataFromTXTRecordDictionary(record);
    EXPECT_EQ(data.size(), 256U);
    EXPECT_EQ(decoded(data).at("key").size(), 251U);
}

class NetServiceTest : public testing::Test
{
protected:
    std::shared_ptr<FakeNetService> service(FakeDevice device)
    {
        return std::make_shared<FakeNetService>(
            loop, std::make_shared<const FakeDevice>(std::move(device)));
    }

    farview::FakeRunLoop loop;
};

TEST_F(NetServiceTest, EqualsAnotherOfTheSameNameTypeAndDomain)
{
    const auto one = service({.name = "Desk", .hostName = "desk.local"});
    EXPECT_TRUE(one->isEqual(*one));
    EXPECT_TRUE(one->isEqual(*service({.name = "Desk", .hostName = "other.local"})));
    EXPECT_FALSE(one->isEqual(*service({.name = "Sofa", .hostName = "desk.local"})));
    EXPECT_FALSE(one->isEqual(*service({.name = "Desk", .hostName = "", .type = "_a._tcp"})));
    EXPECT_FALSE(one->isEqual(*service({.name = "Desk", .hostName = "", .domain = "b."})));
}

TEST_F(NetServiceTest, EqualsNothingElse)
{
    const farview::Notification notification("Desk", nullptr, {});
    EXPECT_FALSE(service({.name = "Desk", .hostName = ""})->isEqual(notification));
}

} // namespace
