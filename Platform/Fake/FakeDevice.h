#pragma once

#include "Platform/NetService.h"

#include <map>
#include <string>
#include <vector>

namespace farview
{

/// How a device answers when its service is resolved.
struct FakeResolve {
    enum class Outcome {
        succeeds,
        fails,
        never, ///< no answer: the resolve ends with its time-out
    };

    Outcome outcome = Outcome::succeeds;
    /// How long the answer takes; zero: the next turn. An answer after the time-out is a failure.
    Duration delay{0};
    /// False: a faulty body that answers when it answers (or never), whatever the time-out.
    bool heedsTimeout = true;
};

/// A device on the scripted network, as it announces itself.
struct FakeDevice {
    std::string name;
    std::string hostName;
    std::map<std::string, Data> TXTRecord = {};
    FakeResolve resolve = {};
    std::vector<Endpoint> endpoints = {{"192.168.1.20", 6001, 0}};
    std::string type = "_qlexvscreen._udp";
    std::string domain = "local.";
    /// The record in wire form, when it is not what `TXTRecord` would give: broken records.
    Data rawTXTRecord = {};

    Data TXTRecordData() const
    {
        return rawTXTRecord.isEmpty() ? NetService::dataFromTXTRecordDictionary(TXTRecord)
                                      : rawTXTRecord;
    }
};

} // namespace farview
