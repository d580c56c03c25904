#include "Platform/Desktop/Screens/X11/XTestInput.h"

#include "Platform/Desktop/Screens/X11/XConnection.h"
#include "Tests/Support/InputTestDevice.h"
#include "Tests/Support/InputWindow.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(XTestInput, AfterADeathWhatProgramsPressedIsLiftedAndNotWhatHandsHold)
{
    const PrivateXServer server;
    const auto connection = connectX(server.display().c_str());
    XTestInput hands(connection.get());
    hands.key(38, true);
    hands.button(3, true);
    const auto pen = InputTestDevices(server.folder()).maker()();
    PenState state{};
    state.isDown = true;
    pen->pen(state, {});
    xcb_flush(connection.get());
    EXPECT_TRUE(
        waitUntil([&] { return heldDown(server.display()) == "key 38 button 1 button 3"; }));
    releaseAllOfXTest(connection.get());
    EXPECT_EQ(heldDown(server.display()), "button 1");
}

} // namespace
} // namespace farview
