// TXT records, which anyone on the network can announce.

#include "Common/NSString_Additions.h"
#include "Platform/NetService.h"
#include "Tests/Fuzz/Expect.h"

using farview::NetService;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const farview::Data record{{bytes, bytes + size}};
    const auto dictionary = NetService::dictionaryFromTXTRecordData(record);
    const auto written = NetService::dataFromTXTRecordDictionary(dictionary);
    expect(NetService::dictionaryFromTXTRecordData(written) == dictionary,
           "a record is read as it was written");
    for (const auto& [key, value] : dictionary)
        FVExConnectStateFromString(value.text());
    return 0;
}
