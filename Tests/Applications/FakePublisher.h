#pragma once

#include "Platform/NetServicePublisher.h"

#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A network that believes every announcement, or none.
class FakePublisher final : public NetServicePublisher
{
public:
    void setDelegate(std::weak_ptr<NetServicePublisherDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }
    void publish(const ServiceAnnouncement& wanted) override { service = wanted; }
    void updateTXTRecord(const std::map<std::string, Data>& record) override
    {
        service->TXTRecord = record;
        states.push_back(state());
    }
    void stop() override { service.reset(); }

    /// What the announcement says under "ConnState"; empty without one.
    std::string state() const
    {
        return service ? service->TXTRecord.at("ConnState").text() : std::string();
    }
    void succeed(const std::string& name) { mDelegate.lock()->didPublish(name); }
    void fail(const std::string& error) { mDelegate.lock()->didNotPublish(error); }

    std::optional<ServiceAnnouncement> service;
    /// The states told after the first.
    std::vector<std::string> states;

private:
    std::weak_ptr<NetServicePublisherDelegate> mDelegate;
};

} // namespace farview
