#include "robot/RobotWiring.h"

#include "common/Logging.h"
#include "protocol/Catalogue.h"
#include "robot/Robot.h"

#include <QByteArray>

#include <deque>
#include <vector>

namespace qrx {

namespace {

using R = WiringRow;

// Notifications that carry no command code of their own: the connection's
// status, the codes the catalogue does not list, and notifications the link
// declares but never emits (listeners may still connect to them by name).
const WiringRow kLinkRows[] = {
    {"connectSucceed(int)", "robot_net_slot_connectSucceed(int)", R::Slot},
    {"receivedData(ushort,QByteArray)", "robot_net_slot_receivedDataProcess(ushort,QByteArray)", R::Slot},
    {"receivedRunningMode(uchar)", "robot_net_slot_runningStatusProcess(uchar)", R::Slot},
    {"receivedDragSwitch(QByteArray)", "robot_DragSwitch(QByteArray)", R::Signal},
    {"receivePayloadNumPara(QByteArray)", "robot_receivePayloadNumPara(QByteArray)", R::Signal},
};

// Declared by the link, never emitted, and not listened to.
const char *const kNeverEmitted[] = {
    "receivedLaserManufacturer", "receiveRobotCycleTimes", "receivedOutInchSpeed", "recvSyncPositonerSwitch",
};

// Said by the link about what the host sends, for the host API (refusals),
// not a report of the controller.
const char *const kForTheHostApi[] = {"commandSent"};

QByteArray signatureOf(const protocol::Message &row, const char *name)
{
    switch (row.delivery) {
    case protocol::Delivery::Position:
        return "receivedPosition(QVector<double>,int,int,int)";
    case protocol::Delivery::NoArgument:
        return QByteArray(name) + "()";
    case protocol::Delivery::TestModeByte:
        return QByteArray(name) + "(signed char)";
    default:
        return QByteArray(name) + "(QByteArray)";
    }
}

struct Wiring
{
    std::deque<QByteArray> signatures; // owns the notification signatures of `rows`
    std::vector<WiringRow> rows;
    std::vector<const char *> unconnected;

    Wiring()
    {
        rows.assign(std::begin(kLinkRows), std::end(kLinkRows));
        // One connection per (notification, member): a notification that
        // several codes emit (receivedProRunStatus) is wired once.
        auto add = [this](const QByteArray &signature, const protocol::Listener &to) {
            if (to.kind == protocol::Listener::Nobody)
                return;
            for (const WiringRow &row : rows) {
                if (signature == row.notification && qstrcmp(row.member, to.member) == 0)
                    return;
            }
            signatures.push_back(signature);
            rows.push_back({signatures.back().constData(), to.member,
                            to.kind == protocol::Listener::Signal ? R::Signal : R::Slot});
        };
        for (const protocol::Message &row : protocol::incoming()) {
            if (row.delivery == protocol::Delivery::Connection)
                continue;
            if (row.listener.kind == protocol::Listener::Nobody && row.alsoTo.kind == protocol::Listener::Nobody)
                unconnected.push_back(row.name);
            const QByteArray signature = signatureOf(row, row.name);
            add(signature, row.listener);
            add(signature, row.alsoTo);
            if (row.secondName)
                add(signatureOf(row, row.secondName), row.secondListener);
        }
        unconnected.insert(unconnected.end(), std::begin(kNeverEmitted), std::end(kNeverEmitted));
        unconnected.insert(unconnected.end(), std::begin(kForTheHostApi), std::end(kForTheHostApi));
    }
};

const Wiring &wiring()
{
    static const Wiring w;
    return w;
}

} // namespace

const WiringRow *robotWiringRows(int *count)
{
    *count = int(wiring().rows.size());
    return wiring().rows.data();
}

const char *const *deliberatelyUnconnected(int *count)
{
    *count = int(wiring().unconnected.size());
    return wiring().unconnected.data();
}

int wireRobot(QObject *link, Robot *robot)
{
    int failed = 0;
    for (const WiringRow &row : wiring().rows) {
        const QByteArray signal = QByteArray("2") + row.notification;
        const QByteArray member = QByteArray(row.target == WiringRow::Signal ? "2" : "1") + row.member;
        if (!QObject::connect(link, signal.constData(), robot, member.constData(), Qt::DirectConnection)) {
            ++failed;
            const QString line = QStringLiteral("wiring failed: %1 -> %2")
                                     .arg(QLatin1String(row.notification), QLatin1String(row.member));
            qCWarning(lcRobot).noquote() << line;
        }
    }
    return failed;
}

} // namespace qrx
