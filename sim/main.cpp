// qrx-sim: a simulated robot controller on the controller's frame port.

#include "sim/files/FileOptions.h"
#include "sim/Describe.h"
#include "sim/Fleet.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QHostAddress>
#include <QSocketNotifier>
#include <QTextStream>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    // Only async-signal-safe work here: the event loop reads the pipe.
    [[maybe_unused]] const ssize_t written = ::write(g_signalPipe[1], &byte, 1);
}

// Ctrl-C and SIGTERM end the event loop, so the simulator closes its
// clients and its port before the process exits.
void quitOnSignals(QCoreApplication &app)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, &app);
    QObject::connect(notifier, &QSocketNotifier::activated, &app, [&app] { app.quit(); });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qrx-sim"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral(
            "A simulated robot controller for qrx_host.\n"
            "It listens for host programs on the controller's frame port, answers their\n"
            "heartbeats (0x7266 -> 0x7267), can send heartbeats of its own, and answers\n"
            "the commands it knows from its command tables:\n"
            "  - start-up reports after a connection: robot type, robot count, current\n"
            "    robot, servo and mode state;\n"
            "  - servo, deadman, operation mode, coordinate system, speed and test mode,\n"
            "    set and queried; the drives come up 500 ms after the deadman;\n"
            "  - jogging (the axis moves while jog steps keep coming) and joint, linear,\n"
            "    circular and spline moves that travel toward their target over time;\n"
            "  - digital and analog IO (outputs wired back to the inputs), global\n"
            "    variables and positions, motor figures, tool and user frames,\n"
            "    four-point and zero-point calibration;\n"
            "  - job programs: open, run, step, pause, continue, stop, the running line;\n"
            "    a job in the --job-dir folder (R1..R4, where uploads land) runs its own\n"
            "    instructions as the queue below runs them;\n"
            "  - the continuous-motion queue: its instructions run in order; the running\n"
            "    state (0x3D03) and running line (0x3503) show how far it has got.\n\n") +
        qrxsim::controllerDescription() + QStringLiteral("\n\nStop it with Ctrl-C."));
    parser.addHelpOption();
    const QCommandLineOption addressOption(QStringLiteral("address"),
                                           QStringLiteral("Address to listen on (default 127.0.0.1)."),
                                           QStringLiteral("A"), QStringLiteral("127.0.0.1"));
    const QCommandLineOption portOption(QStringLiteral("port"),
                                        QStringLiteral("Port to listen on (default 6001)."),
                                        QStringLiteral("P"), QStringLiteral("6001"));
    const QCommandLineOption heartbeatOption(
        QStringLiteral("heartbeat"),
        QStringLiteral("Send the controller heartbeat 0x7266 {\"time\":N} every MS milliseconds "
                       "(default 0: off)."),
        QStringLiteral("MS"), QStringLiteral("0"));
    const QCommandLineOption verboseOption(QStringLiteral("verbose"),
                                           QStringLiteral("Print one line per frame received or sent."));
    const QCommandLineOption positionReportsOption(
        QStringLiteral("position-reports"),
        QStringLiteral("Send N unasked position reports 0x2F08 a second to every host (default 0: off)."),
        QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption countOption(
        QStringLiteral("count"),
        QStringLiteral("Simulate N independent controllers, on N consecutive addresses from --address (default 1)."),
        QStringLiteral("N"), QStringLiteral("1"));
    parser.addOptions({addressOption, portOption, heartbeatOption, verboseOption, positionReportsOption, countOption});
    qrxsim::addFileOptions(parser);
    parser.process(app);

    QTextStream err(stderr);
    const QHostAddress address(parser.value(addressOption));
    bool portOk = false;
    const uint port = parser.value(portOption).toUInt(&portOk);
    bool heartbeatOk = false;
    const int heartbeat = parser.value(heartbeatOption).toInt(&heartbeatOk);
    bool countOk = false;
    const int count = parser.value(countOption).toInt(&countOk);
    if (address.isNull() || !portOk || port > 0xFFFF || !heartbeatOk || heartbeat < 0 || !countOk || count < 1 ||
        (count > 1 && address.protocol() != QAbstractSocket::IPv4Protocol)) {
        err << "qrx-sim: bad --address, --port, --heartbeat or --count value; see --help\n";
        return 2;
    }

    qSetMessagePattern(QStringLiteral("%{message}"));
    QTextStream out(stdout);
    qrxsim::FleetOptions options;
    options.verbose = parser.isSet(verboseOption);
    options.heartbeatMs = heartbeat;
    options.positionReports = qMax(0, parser.value(positionReportsOption).toInt());
    qrxsim::Fleet fleet;
    if (!fleet.start(address, quint16(port), count, options, parser, out))
        return 1;
    quitOnSignals(app);

    const int code = app.exec();
    fleet.shutdown();
    return code;
}
