#include "Platform/Desktop/Discovery/ServicePublication.h"

#include <avahi-common/alternative.h>
#include <avahi-common/malloc.h>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// Somebody who answers every name with "mine" must not keep us busy for ever.
constexpr int mostRenames = 50;

std::string taken(char* text)
{
    std::string result = text ? text : "";
    avahi_free(text);
    return result;
}

} // namespace

std::vector<std::string> recordEntries(const std::map<std::string, Data>& record)
{
    constexpr std::size_t longestEntry = 255;
    std::vector<std::string> entries;
    for (const auto& [key, value] : record) {
        entries.push_back(key + "=" + value.text());
        entries.back().resize(std::min(entries.back().size(), longestEntry));
    }
    return entries;
}

ServicePublication::ServicePublication(EntryGroupMaker& maker, ServiceAnnouncement announcement,
                                       Events events)
    : mMaker(maker), mAnnouncement(std::move(announcement)), mEvents(std::move(events))
{
}

void ServicePublication::begin(std::vector<HostAddress> addresses)
{
    mAddresses = std::move(addresses);
    announceHost();
}

void ServicePublication::setAddresses(std::vector<HostAddress> addresses)
{
    if (addresses == mAddresses)
        return;
    mAddresses = std::move(addresses);
    announceHost();
}

void ServicePublication::announceHost()
{
    mHost.reset();
    // Without a network there is nothing to announce yet.
    if (mAddresses.empty()) {
        mService.reset();
        return;
    }
    mHost = mMaker.announceHost(host(), mAddresses, [this](auto state) { handleHost(state); });
}

void ServicePublication::announceService()
{
    mService.reset();
    mService =
        mMaker.announceService(mAnnouncement, host(), [this](auto state) { handleService(state); });
}

void ServicePublication::handleHost(EntryGroup::State state)
{
    if (state == EntryGroup::State::established) {
        if (!mService)
            announceService();
        return;
    }
    if (state != EntryGroup::State::collision || !mayRename()) {
        fail(state, "the host name");
        return;
    }
    mAnnouncement.hostName = taken(avahi_alternative_host_name(mAnnouncement.hostName.c_str()));
    mService.reset();
    announceHost();
}

void ServicePublication::handleService(EntryGroup::State state)
{
    if (state == EntryGroup::State::established) {
        const auto published = mEvents.published;
        published(mAnnouncement.name);
        return;
    }
    if (state != EntryGroup::State::collision || !mayRename()) {
        fail(state, "the service");
        return;
    }
    mAnnouncement.name = taken(avahi_alternative_service_name(mAnnouncement.name.c_str()));
    announceService();
    const auto renamed = mEvents.renamed;
    renamed(mAnnouncement.name);
}

bool ServicePublication::mayRename() { return ++mRenames <= mostRenames; }

void ServicePublication::fail(EntryGroup::State state, const std::string& what)
{
    const auto failed = mEvents.failed;
    const bool isFinal = state == EntryGroup::State::invalid;
    failed(what + (isFinal ? " cannot be announced: its name or its record is not valid"
                           : " could not be announced"),
           isFinal);
}

void ServicePublication::updateTXTRecord(const std::map<std::string, Data>& record)
{
    mAnnouncement.TXTRecord = record;
    if (mService)
        mService->updateTXTRecord(mAnnouncement);
}

} // namespace farview
