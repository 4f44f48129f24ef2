#pragma once
// The wiring of a Robot to its link: every link notification that the
// Robot listens to, with the handler slot (or Robot signal) it goes to.
// The rows come from the protocol catalogue (protocol/Catalogue.cpp), plus
// the few notifications that carry no code (RobotWiring.cpp); a notification
// of the link that is in neither the rows nor the "deliberately unconnected"
// list is a mistake, and the tests say so.

#include <QtGlobal>

class QObject;
class Robot;

namespace qrx {

struct WiringRow
{
    enum Target { Slot, Signal };
    const char *notification; // normalised signature of the link signal
    const char *member;       // normalised signature of the Robot slot or signal
    Target target;
};

// All rows: the notifications without a code first, then by code.
const WiringRow *robotWiringRows(int *count);

// Link notifications that no Robot member listens to, on purpose
// (names only, without arguments).
const char *const *deliberatelyUnconnected(int *count);

// Connects every row, directly: handlers run on the link thread. Returns the
// number of rows that could not be connected (each is also logged).
int wireRobot(QObject *link, Robot *robot);

} // namespace qrx
