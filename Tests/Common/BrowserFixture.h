#pragma once

#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/FVEConstants.h"
#include "Platform/Fake/FakePlatform.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

/// A browser on a scripted network, and a journal of what it announces: each notification as its
/// name without the common prefix.
class BrowserFixture : public testing::Test
{
protected:
    BrowserFixture()
    {
        QLNBonjourBrowser::setBonjourServiceName(kVirtualScreenServiceName);
        for (const char* name :
             {kQLNBonjourBrowserWillAddService, kQLNBonjourBrowserDidAddService,
              kQLNBonjourBrowserWillRemoveService, kQLNBonjourBrowserDidRemoveService,
              kQLNBonjourBrowserDidUpdateService, kQLNBonjourBrowserDidUpdateTXTRecord,
              kQLNBonjourBrowserWillUpdateService})
            fake.notificationCenter.addObserver(
                journalLife,
                [this](const farview::Notification& heard) {
                    journal.push_back(heard.name().substr(prefix.size()));
                    notifications.push_back(heard.userInfo());
                    posters.push_back(heard.object());
                },
                name, nullptr);
    }
    ~BrowserFixture() override { QLNBonjourBrowser::setBonjourServiceName(std::nullopt); }

    static farview::FakeDevice device(const std::string& name, farview::FakeResolve resolve = {})
    {
        farview::FakeDevice made;
        made.name = name;
        made.hostName = name + ".local";
        made.resolve = resolve;
        return made;
    }
    static farview::FakeResolve answersAfter(double seconds)
    {
        return {farview::FakeResolve::Outcome::succeeds, farview::Duration(seconds), true};
    }
    static farview::FakeResolve fails()
    {
        return {farview::FakeResolve::Outcome::fails, farview::Duration(0), true};
    }
    static farview::FakeResolve neverAnswers()
    {
        return {farview::FakeResolve::Outcome::never, farview::Duration(0), true};
    }

    void announce(std::vector<farview::FakeDevice> devices)
    {
        fake.discovery.announce(std::move(devices));
    }
    void settle() { fake.runLoop.runUntilIdle(); }
    /// The browser begins to search, and these are its first batch.
    void find(std::vector<farview::FakeDevice> devices)
    {
        browser->init();
        findMore(std::move(devices));
    }
    void findMore(std::vector<farview::FakeDevice> devices)
    {
        announce(std::move(devices));
        settle();
    }
    void advance(double seconds) { fake.runLoop.advance(farview::Duration(seconds)); }
    void forget()
    {
        journal.clear();
        notifications.clear();
        posters.clear();
    }
    /// Calls `action` whenever that notification is posted.
    void whenPosted(const char* name, std::function<void()> action)
    {
        fake.notificationCenter.addObserver(
            journalLife, [action](const farview::Notification&) { action(); }, name, nullptr);
    }

    static std::vector<std::string> names(const QLNBonjourBrowser::ServiceList& list)
    {
        std::vector<std::string> found;
        for (const auto& service : list)
            found.push_back(service->name());
        return found;
    }
    std::vector<std::string> active() const { return names(browser->activeServiceList()); }
    std::shared_ptr<QLNBonjourBrowser> makeBrowser()
    {
        return std::make_shared<QLNBonjourBrowser>(fake.discovery, fake.runLoop,
                                                   fake.notificationCenter);
    }

    const std::string prefix = "kQLNBonjourBrowser";
    farview::FakePlatform fake;
    std::shared_ptr<int> journalLife = std::make_shared<int>();
    std::vector<std::string> journal;
    std::vector<farview::UserInfo> notifications;
    std::vector<const farview::Object*> posters;
    std::shared_ptr<QLNBonjourBrowser> browser = makeBrowser();
};
