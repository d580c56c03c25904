#pragma once

#include "Platform/NetService.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// Writes down what a browser and its services report.
class DiscoveryRecorder : public farview::NetServiceBrowserDelegate,
                          public farview::NetServiceDelegate,
                          public std::enable_shared_from_this<DiscoveryRecorder>
{
public:
    using Service = std::shared_ptr<farview::NetService>;

    std::vector<Service> present;
    std::vector<std::string> batches; ///< "+3" for three found together, "-1" for one removed
    std::vector<Service> resolved;
    std::vector<Service> unresolved;
    std::vector<std::pair<std::string, farview::Data>> records;
    bool resolvesWhatIsFound = false;
    farview::Duration timeout{5};

    void didFindService(farview::NetServiceBrowser&, const Service& service,
                        bool moreComing) override
    {
        present.push_back(service);
        service->setDelegate(weak_from_this());
        if (resolvesWhatIsFound)
            service->resolveWithTimeout(timeout);
        count("+", moreComing);
    }
    void didRemoveService(farview::NetServiceBrowser&, const Service& service,
                          bool moreComing) override
    {
        removedSameObject = std::find(present.begin(), present.end(), service) != present.end();
        std::erase(present, service);
        count("-", moreComing);
    }
    void netServiceDidResolveAddress(const Service& service) override
    {
        resolved.push_back(service);
    }
    void didNotResolve(const Service& service, const std::string& error) override
    {
        unresolved.push_back(service);
        lastError = error;
    }
    void didUpdateTXTRecordData(const Service& service, const farview::Data& data) override
    {
        records.emplace_back(service->name(), data);
    }

    Service find(const std::string& name) const
    {
        const auto found = std::find_if(present.begin(), present.end(),
                                        [&](const auto& each) { return each->name() == name; });
        return found == present.end() ? nullptr : *found;
    }
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const auto& each : present)
            names.push_back(each->name());
        std::sort(names.begin(), names.end());
        return names;
    }

    bool removedSameObject = false;
    std::string lastError;

private:
    void count(const std::string& sign, bool moreComing)
    {
        ++mCount;
        if (moreComing)
            return;
        batches.push_back(sign + std::to_string(mCount));
        mCount = 0;
    }

    int mCount = 0;
};
