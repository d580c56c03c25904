#pragma once

#include "Platform/DisplayConfiguration.h"
#include "Platform/GraphicsControl.h"

#include <cstdint>

// For machines with two graphics processors behind a switch, the mux; and for displays that show
// the same. A library of its own, which the panel does not use. Main thread only: what is found out
// is kept for the life of the process.

/// A way to the service that switches: the service, and a connection to it.
struct AGCHandle {
    farview::GraphicsControl::Object service = 0;
    farview::GraphicsControl::Object connection = 0;
};

/// The process's own. Attaching replaces what it holds; switching leaves its connection closed.
extern AGCHandle* const gAGC;

/// Finds the service and opens a connection to it. Where a notification port and a callback are
/// given, the callback hears of the service. What fails is printed to standard output.
bool AGCAttach(farview::GraphicsControl::Object masterPort, AGCHandle* handle,
               farview::GraphicsControl::Object notificationPort,
               farview::GraphicsControl::InterestCallback callback, void* reference);
bool AGCOpen(const AGCHandle* handle);
bool AGCClose(const AGCHandle* handle);
/// `value` becomes what the mux answers, or 0 when it does not.
bool AGCGetMuxState(const AGCHandle* handle, std::uint32_t dispatch, std::uint64_t state,
                    std::uint64_t* value);
bool AGCSetMuxState(const AGCHandle* handle, std::uint32_t dispatch, std::uint64_t state,
                    std::uint64_t value);
bool AGCSetExclusive(const AGCHandle* handle, std::uint64_t value);
/// Whether the mux says that it has the feature of that number (0 to 31).
bool AGCHasFeature(const AGCHandle* handle, std::uint32_t feature);

/// Goes over to the other graphics processor. What fails is logged.
void FVEForceSwitch();
/// Goes over to the graphics processor of that number. What fails is logged.
void setCurrentXMuxGPU(std::uint32_t gpu);
/// Whether displays can change between graphics processors. Found out once.
bool computerHasXMuxGPUCapability();
/// Whether this is one of the models that freeze when they switch, with a system that old.
bool computerHasXMuxGPUFreezeIssues();

/// Ends the mirroring of the main display. `option` says how long that lasts, as
/// `DisplayConfiguration` has it; the result is what completing the change gave.
farview::DisplayConfiguration::Error turnOffDisplayMirroringForSession(std::uint32_t option);

/// Where the choice of a graphics processor for much and for little work begins. Neither does
/// anything: the system chooses by itself.
void FVEUseHighPowerVideo();
void FVEUseLowPowerVideo();
