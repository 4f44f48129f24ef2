#include "sim/replay/ReplayMain.h"

#include "sim/replay/ReplayServer.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

namespace qrxsim::replay {

int run(const QString &file, const QHostAddress &address, quint16 port)
{
    QTextStream err(stderr);
    const auto say = [&err](const QString &line) { err << "qrx-sim: replay: " << line << Qt::endl; };
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly)) {
        say(QStringLiteral("cannot read %1: %2").arg(file, in.errorString()));
        return 1;
    }
    const qrx::pcap::Recording recording = qrx::pcap::read(in.readAll());
    if (!recording.error.isEmpty())
        say(QStringLiteral("%1: %2; the %3 frames before it play").arg(file, recording.error).arg(recording.frames.size()));
    ReplayServer server(build(recording.frames), say);
    if (!server.listen(address, port))
        return 1;
    QTextStream(stdout) << "qrx-sim replaying " << file << " on " << address.toString() << ':' << server.port()
                        << Qt::endl;
    return QCoreApplication::exec();
}

} // namespace qrxsim::replay
