#pragma once
// The dispatcher's view of the protocol catalogue: the rows of the codes it
// turns into notifications. A new message is one new row in
// protocol/Catalogue.cpp.

#include "protocol/Catalogue.h"

namespace qrx {

using DispatchRow = protocol::Message;

// The row of an incoming code that the dispatcher delivers, or nullptr if
// the code is not in the catalogue (or is the connection's own heartbeat).
// Binary search over a sorted constant array: no allocation, no lock.
const DispatchRow *findDispatchRow(quint16 code);

// Number of rows the dispatcher delivers (for diagnostics and benchmarks).
int dispatchRowCount();

} // namespace qrx
