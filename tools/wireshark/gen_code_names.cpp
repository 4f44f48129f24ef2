// Writes the Wireshark dissector with the library's own code names: the
// template's "-- @CODE_TABLES@" line becomes Lua tables built from the
// protocol catalogue, one per direction, and two more for the file
// connection's own codes, so the dissector never drifts from the code.
//
//   gen_code_names TEMPLATE OUTPUT

#include "protocol/Catalogue.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdio>

namespace {

using qrx::protocol::Message;

QByteArray table(const char *variable, const qrx::protocol::Rows &rows, qrx::protocol::Direction direction)
{
    QByteArray out = QByteArray("local ") + variable + " = {\n";
    for (const Message &m : rows) {
        if (m.direction != direction)
            continue;
        QByteArray name = m.name;
        if (m.secondName)
            name += QByteArray(" / ") + m.secondName;
        out += QByteArray("    [0x") + QByteArray::number(m.code, 16).toUpper().rightJustified(4, '0') + "] = \"" +
               name + "\",\n";
    }
    return out + "}\n";
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
    if (!text.contains(marker)) {
        std::fprintf(stderr, "gen_code_names: the template has no %s line\n", marker.trimmed().constData());
        return 1;
    }
    using qrx::protocol::Direction;
    text.replace(marker, table("incoming_names", qrx::protocol::incoming(), Direction::FromController) +
                             table("outgoing_names", qrx::protocol::outgoing(), Direction::ToController) +
                             table("file_incoming_names", qrx::protocol::fileConnection(),
                                   Direction::FromController) +
                             table("file_outgoing_names", qrx::protocol::fileConnection(),
                                   Direction::ToController));
    QFile out(QString::fromLocal8Bit(argv[2]));
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(text) != text.size()) {
        std::fprintf(stderr, "gen_code_names: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
