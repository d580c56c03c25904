#pragma once

#include "Platform/Fake/FakeRegistry.h"
#include "Platform/Posix/Registry/SysfsRegistry.h"
#include "Tests/Support/Fixture.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace farview
{

inline const std::string plane = "IOService";

// Each scene has a machine "Model", on it a bridge with two devices and a system with a place, and
// one published service.
struct ScriptedRegistry {
    FakeRegistry body;

    ScriptedRegistry() { EXPECT_EQ(body.readFixture(fixtureText("Model.registry")), 0); }
    void unpublish() { body.remove(body.entryFromPath("IOService:/IOResources/QLExGFX")); }
};

struct RegistryInFolders {
    TemporaryFolder folder;
    SysfsRegistry body{DriverExtensions({folder.path("Extensions")}), folder.path("sys"),
                       folder.path("proc")};

    RegistryInFolders()
    {
        folder.write("sys/devices/virtual/dmi/id/product_name", "Model\n");
        folder.write("sys/devices/LNXSYSTM:00/PNP0C0F:02/uevent", "");
        folder.write("sys/devices/bridge/device1/uevent", "");
        folder.write("sys/devices/bridge/device2/uevent", "");
        folder.write(
            "Extensions/QLExGFX.kext/Contents/Info.plist",
            "<plist><dict><key>CFBundleIdentifier</key><string>com.quillon.QLExGFX</string>"
            "<key>QLNPlatform</key><string>Linux</string></dict></plist>");
    }
    void unpublish() { std::filesystem::remove_all(folder.path("Extensions")); }
};

using RegistryScenes = testing::Types<ScriptedRegistry, RegistryInFolders>;

} // namespace farview
