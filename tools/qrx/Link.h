#pragma once
// The controller link as qrx uses it: connect within the bound, collect the
// controller's messages from the error callback, and tell whether the
// controller refused what was just sent.

#include <cstddef>
#include <string>
#include <vector>

namespace qrxcli {

// Connects to host (port 6001) or throws "not connected".
void connectTo(const std::string &host);
// Says goodbye to the controller (0x7277) and closes the link.
void disconnectLink();

// Position in the stream of controller messages: messagesSince(mark())
// are those that arrived after the call.
std::size_t messageMark();
std::vector<std::string> messagesSince(std::size_t mark);

// Waits until the controller has answered everything sent before (two
// waiting queries in a row: the controller answers in order, so an error
// about an earlier command arrives before them).
void settle();
// After settle(): throws "refused by the controller" with the controller's
// error text when one arrived since mark.
void failIfRefused(std::size_t mark);

} // namespace qrxcli
