#pragma once

#include <chrono>
#include <functional>

/// Runs Qt's loop until `condition` is true. False when it is not within `limit`.
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::seconds(10));

/// Runs Qt's loop for that long: only for "nothing more comes", never to wait for something.
void runLoopFor(std::chrono::milliseconds span);
