#pragma once
// Each test that needs a controller gets a loopback address of its own
// (127.n.x.y, derived from the test executable's name and folder, so it is
// stable from run to run), so the fixed controller ports never clash when
// ctest runs tests in parallel, nor when two build folders run their suites
// at once. 127.0.0.1 stays free for the demo; the example runs and the
// plain-C host use fixed addresses below 127.100. QRX_TEST_ADDRESS
// overrides it.

#include <QString>

namespace testsupport {

QString loopbackAddress();

} // namespace testsupport
