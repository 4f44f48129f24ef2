// Watches the controller link for a few seconds: connects a TcpConnectModule
// to a controller (qrx-sim will do), prints each connect and loss and every
// sign of life (the controller's answers to the heartbeat), and exits 0 when
// the link came up.
//
//   qrx-link-watch <address> [seconds]

#include "link/TcpConnectModule.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLoggingCategory>
#include <QTextStream>
#include <QTimer>

namespace {

constexpr quint16 kControllerPort = 6001;
constexpr int kTimeBase = 300000; // checks every 1666 ms, as in the library
constexpr int kDefaultSeconds = 8;

QString now()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("hh:mm:ss.zzz"));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    if (args.size() < 2 || args.at(1) == QLatin1String("--help")) {
        out << "usage: " << args.value(0) << " <controller address> [seconds]\n"
            << "Connects to the controller on port 6001 and shows the link and its heartbeats.\n";
        return args.size() < 2 ? 2 : 0;
    }
    const QString address = args.at(1);
    bool ok = false;
    int seconds = args.value(2).toInt(&ok);
    if (!ok || seconds <= 0)
        seconds = kDefaultSeconds;

    // The link's own log lines (connect attempts, losses) go to stderr.
    QLoggingCategory::setFilterRules(QStringLiteral("qrx.link.debug=true"));

    TcpConnectModule link(address, kControllerPort, kTimeBase);
    bool cameUp = false;
    int heartbeats = 0;
    QObject::connect(&link, &LinkNotifications::connectSucceed, &app, [&](int status) {
        cameUp = cameUp || status != 0;
        out << now() << (status ? "  link up to " : "  link down from ") << address << '\n';
        out.flush();
    });

    // Every answer to a heartbeat moves the time the link was last seen alive.
    QDateTime lastSeen;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &app, [&] {
        const QDateTime seen = link.lastReceiveTime();
        if (!cameUp || seen == lastSeen)
            return;
        if (lastSeen.isValid()) {
            ++heartbeats;
            out << seen.toString(QStringLiteral("hh:mm:ss.zzz")) << "  heartbeat answered, link alive\n";
            out.flush();
        }
        lastSeen = seen;
    });
    watch.start(50);

    out << now() << "  watching " << address << ':' << kControllerPort << " for " << seconds << " s\n";
    out.flush();
    link.start();
    QTimer::singleShot(seconds * 1000, &app, &QCoreApplication::quit);
    app.exec();

    out << now() << "  " << (cameUp ? "link came up" : "link never came up") << ", " << heartbeats
        << " heartbeat answers seen\n";
    return cameUp ? 0 : 1;
}
