#include "Common/Rules/FirewallAdvice.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace farview;

namespace
{

TEST(FirewallAdvice, NamesTheToolOfTheFirewallThatIsAtWork)
{
    struct Row {
        FirewallState firewall;
        const char* tool;
    };
    const Row rows[] = {
        {{FirewallKind::unknown, false, false}, ""},
        {{FirewallKind::unknown, true, true}, ""},
        {{FirewallKind::ufw, false, true}, ""},
        {{FirewallKind::firewalld, false, true}, ""},
        {{FirewallKind::ufw, true, false}, "ufw"},
        {{FirewallKind::ufw, true, true}, "Gufw"},
        {{FirewallKind::firewalld, true, false}, "firewall-cmd"},
        {{FirewallKind::firewalld, true, true}, "firewall-config"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(firewallAdvice(row.firewall).tool, row.tool)
            << int(row.firewall.kind) << row.firewall.active << row.firewall.hasWindow;
}

int places(const std::string& text)
{
    int count = 0;
    for (auto at = text.find("%@"); at != std::string::npos; at = text.find("%@", at + 2))
        ++count;
    return count;
}

TEST(FirewallAdvice, AlwaysNamesBothPortsAndHasAPlaceForEachThingToFillIn)
{
    for (const auto kind : {FirewallKind::unknown, FirewallKind::ufw, FirewallKind::firewalld}) {
        for (const bool hasWindow : {false, true}) {
            const auto advice = firewallAdvice({kind, true, hasWindow});
            EXPECT_NE(advice.text.find("UDP port 5353"), std::string::npos) << advice.text;
            EXPECT_NE(advice.text.find("TCP port %@"), std::string::npos) << advice.text;
            EXPECT_EQ(places(advice.text), advice.tool.empty() ? 1 : 2) << advice.text;
        }
    }
}

} // namespace
