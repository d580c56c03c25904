#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TypedPassword.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A computer with Farview's helpers installed below /opt/farview, three users (fvuser, fvother and
/// the administrator fvadmin) and, when a test starts them, a system bus and polkit.
class OwnComputer : public testing::Test
{
protected:
    OwnComputer();

    // The system.
    /// As the administrator installs it: helpers, policy, and what makes a bundle of the rest.
    static void install();
    void startBus();
    /// With one rule for Farview's actions: "YES", "NO", "AUTH_ADMIN_KEEP", or none of its own.
    void startPolkit(const std::string& result);
    void start(const std::string& result)
    {
        startBus();
        startPolkit(result);
    }
    static void forgetSetting();

    // The user fvuser, the panel, and what may ask for a password.
    void openPanel();
    void startAgent(const std::string& mode);
    /// Somebody at a terminal who types that password when asked.
    void startTyping(const std::string& password);
    /// Tells the panel what its user does; what is seen then is a line that begins with `order`.
    std::string tell(const std::string& order);
    /// Repeats looking until that is seen.
    bool sees(const std::string& text);
    bool panelSays(const std::string& text) const { return contains("panel.err", text); }
    bool agentSays(const std::string& text) const { return contains("agent.out", text); }
    std::string panelLog() const { return text("panel.err") + text("panel.out"); }

    /// What that user's programs read: "offered" or "not offered".
    static std::string settingFor(const std::string& user);
    static std::vector<std::string> as(const std::string& user,
                                       const std::vector<std::string>& command);
    /// Runs a command and returns its exit status and what it printed.
    static std::pair<int, std::string> run(const std::vector<std::string>& command);
    /// Where the window server's setting is kept.
    static std::string settingFile();
    static bool waitFor(const std::function<bool()>& condition);

    static constexpr const char* bundle =
        "/opt/farview/lib/farview/PreferencePanes/Farview Preferences.prefPane";
    static std::string tool(const char* which)
    {
        return std::string(bundle) + "/Contents/Resources/com.quillon.displayresolutions" + which;
    }

    std::unique_ptr<ChildProcess> bus;
    std::unique_ptr<ChildProcess> polkit;
    std::unique_ptr<ChildProcess> panel;
    std::unique_ptr<ChildProcess> agent;
    std::optional<TypedPassword> typing;

private:
    static std::string text(const std::string& name);
    static bool contains(const std::string& name, const std::string& words)
    {
        return text(name).find(words) != std::string::npos;
    }
    static std::unique_ptr<ChildProcess> startPeer(const std::vector<std::string>& arguments,
                                                   const std::string& name);

    int mOrders = -1;
};

} // namespace farview
