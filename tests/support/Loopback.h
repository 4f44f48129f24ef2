#pragma once
// Each test that needs a controller gets a loopback address of its own
// (127.0.0.2, 127.0.0.3, ...), so the fixed controller ports never clash
// when ctest runs tests in parallel. The address is derived from the test
// executable's name, so it is stable from run to run; QRX_TEST_ADDRESS
// overrides it.

#include <QString>

namespace testsupport {

QString loopbackAddress();

} // namespace testsupport
