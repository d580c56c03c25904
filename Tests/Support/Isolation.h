#pragma once

#include <string>

/// Why the tests of this program do not run in namespaces of their own; empty when they do. Where
/// they do, the only network is an interface of the test with the address 10.88.0.1.
std::string whyNotIsolated();
