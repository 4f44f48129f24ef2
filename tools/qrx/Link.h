#pragma once
// The controller link as qrx uses it: connect once the command line has been
// checked, within the bound, and tell whether the controller refused what
// was just sent (from the refusal the library keeps, never from a text).

#include <string>

namespace qrxcli {

// The controller's address (--host or QRX_HOST), used by goOnline().
void setHost(const std::string &host);
// Connects (port 6001) unless connected: called by each command once its
// arguments are checked. Throws "not connected", or a usage error without
// an address.
void goOnline();
// Says goodbye to the controller (0x7277) and closes the link, if it is up.
void disconnectLink();

// Forgets any earlier refusal: call before sending what failIfRefused()
// is about.
void expectAnswer();
// Waits until the controller has taken everything sent before (a query
// answered by its own reply: the controller answers in order, so a refusal
// of an earlier command arrives before it); "timed out" after the bound.
void settle();
// After settle(): throws "refused by the controller" with the controller's
// text when it refused a command sent since expectAnswer().
void failIfRefused();

} // namespace qrxcli
