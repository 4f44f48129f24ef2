#pragma once
// The protocol catalogue: every command code this library knows, one row per
// code and direction, in one place (Catalogue.cpp).
//
// A message from the controller names the link notification it becomes (by
// name: the link maps names to its signals), how the dispatcher delivers
// it, and, for a reply, the query it answers. A request to the controller
// names its code (Codes.h) and the reply the controller answers it with.
//
// The dispatcher (link/LinkNotifications.cpp), the state model's report
// table (robot/ReportTable.cpp), the exported functions (through the named
// codes), qrx-sim and the tests all read these rows. Lookups are binary
// searches over constant arrays: no allocation, no lock, safe from any
// thread. Nothing here knows the link or the state model.

#include "protocol/Codes.h"

#include <QtGlobal>

namespace qrx::protocol {

enum class Direction : quint8 {
    FromController, // the controller sends it, the link dispatches it
    ToController,   // the library sends it
};

// How the dispatcher turns a received payload into its notification.
enum class Delivery : quint8 {
    Forward,       // emit the notification (then the second, if named) with the payload as it came
    ForwardIfJson, // as Forward, but only when the payload parses as JSON
    TestModeByte,  // receivedTestMode(signed char) for a payload of exactly one byte
    Position,      // receivedPosition(...) decoded from "posDeg", "coord", "robot", "configuration"
    NoArgument,    // recvJobFileInfoFinish(), payload ignored
    Connection,    // consumed by the connection itself (heartbeat); never dispatched
    None,          // a request: nothing to deliver
};

struct Message
{
    quint16 code;
    Direction direction;
    const char *name;            // the notification's name, or the request's name in Codes.h
    Delivery delivery;
    quint16 pairedWith;          // a reply: the query it answers; a request: the reply it gets (0: none)
    const char *secondName = nullptr; // a second notification of the same payload

    bool isReply() const { return direction == Direction::FromController && pairedWith != 0; }
};

// The row of a code in the given direction, or null.
const Message *find(quint16 code, Direction direction = Direction::FromController);
// Incoming row first, then the request row; null when the code is unknown.
const Message *findAny(quint16 code);
// The name of a code ("recriveMoreRobotCurPosition", "GetCurrentPosition"),
// or null when the code is unknown.
const char *name(quint16 code);
// The code the controller answers a request with (0x2F07 -> 0x2F08), or 0.
quint16 replyTo(quint16 requestCode);

// Every row of one direction, sorted by code.
struct Rows
{
    const Message *first;
    int count;
    const Message *begin() const { return first; }
    const Message *end() const { return first + count; }
};
Rows incoming();
Rows outgoing();

// The file connection's own codes (port 5000), both directions, sorted by
// code; the main link's lookups above do not see them.
Rows fileConnection();
// The file connection's row of a code sent in the given direction, or null.
const Message *findFileCode(quint16 code, Direction direction);

} // namespace qrx::protocol
