// Writes the Wireshark dissector with the library's own code names: the
// template's "-- @CODE_TABLES@" line becomes Lua tables built from the link's
// dispatch table (incoming codes and their notifications) and the link's
// heartbeat codes, so the dissector never drifts from the code.
//
//   gen_code_names TEMPLATE OUTPUT

#include "link/DispatchTable.h"
#include "link/LinkNotifications.h"
#include "link/TcpConnectModulePrivate.h"

#include <QByteArray>
#include <QFile>
#include <QMetaMethod>
#include <QString>
#include <QTextStream>

#include <cstdio>

namespace {

// The notification that a row emits, as its signal's own name.
QByteArray notificationName(const qrx::DispatchRow &row)
{
    switch (row.kind) {
    case qrx::DispatchRow::TestModeByte:
        return QMetaMethod::fromSignal(&LinkNotifications::receivedTestMode).name();
    case qrx::DispatchRow::Position:
        return QMetaMethod::fromSignal(&LinkNotifications::receivedPosition).name();
    case qrx::DispatchRow::NoArgument:
        return QMetaMethod::fromSignal(&LinkNotifications::recvJobFileInfoFinish).name();
    case qrx::DispatchRow::Forward:
    case qrx::DispatchRow::ForwardIfJson:
        break;
    }
    QByteArray name = QMetaMethod::fromSignal(row.first).name();
    if (row.second)
        name += " / " + QMetaMethod::fromSignal(row.second).name();
    return name;
}

QByteArray entry(quint16 code, const QByteArray &name)
{
    return QByteArray("    [0x") + QByteArray::number(code, 16).toUpper().rightJustified(4, '0') + "] = \"" + name +
           "\",\n";
}

QByteArray codeTables()
{
    QByteArray incoming = "local incoming_names = {\n";
    int rows = 0;
    for (uint code = 0; code <= 0xFFFF; ++code) {
        if (const qrx::DispatchRow *row = qrx::findDispatchRow(quint16(code))) {
            incoming += entry(quint16(code), notificationName(*row));
            ++rows;
        }
    }
    incoming += "}\n";
    if (rows != qrx::dispatchRowCount())
        return QByteArray();

    QByteArray heartbeat = "local heartbeat_names = {\n";
    heartbeat += entry(TcpConnectModulePrivate::kHeartbeat, "heartbeat");
    heartbeat += entry(TcpConnectModulePrivate::kHeartbeatAnswer, "heartbeat answer");
    heartbeat += "}\n";

    // Host-to-controller codes have no table of names in the library yet.
    const QByteArray outgoing = "local outgoing_names = {\n}\n";
    return incoming + outgoing + heartbeat;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: gen_code_names TEMPLATE OUTPUT\n");
        return 2;
    }
    QFile in(QString::fromLocal8Bit(argv[1]));
    if (!in.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "gen_code_names: cannot read %s\n", argv[1]);
        return 1;
    }
    QByteArray text = in.readAll();
    const QByteArray marker = "-- @CODE_TABLES@\n";
    const QByteArray tables = codeTables();
    if (!text.contains(marker) || tables.isEmpty()) {
        std::fprintf(stderr, "gen_code_names: no marker in the template, or the dispatch table did not read back\n");
        return 1;
    }
    text.replace(marker, tables);
    QFile out(QString::fromLocal8Bit(argv[2]));
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(text) != text.size()) {
        std::fprintf(stderr, "gen_code_names: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
