// qrx, the command-line tool, driven as a user drives it: the program
// against a simulated controller, checked by its output, its exit status
// and the frames that reached the controller.

#include "QrxRun.h"
#include "sim/SimHandle.h"
#include "support/Loopback.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>
#include <csignal>

using qrxsim::ControllerModel;

class TestQrxCli : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void status_data();
    void status();
    void statusAsJson();
    void setters_data();
    void setters();
    void failures_data();
    void failures();
    void moveArrives();
    void refusedJogNamesTheControllerReason();
    void jogMovesTheAxis();
    void silentControllerTimesOut();
    void watchRefreshesUntilInterrupted();
    void help_data();
    void help();

private:
    QrxRun qrx(const QStringList &args) { return runQrx(m_sim->address(), args); }
    void servoRunning();

    QScopedPointer<qrxsim::SimHandle> m_sim;
};

void TestQrxCli::initTestCase()
{
    m_sim.reset(new qrxsim::SimHandle(testsupport::loopbackAddress()));
    QVERIFY(m_sim->start());
}

void TestQrxCli::cleanupTestCase()
{
    m_sim.reset();
}

// Every case starts from a controller at rest in teach mode.
void TestQrxCli::init()
{
    m_sim->setSilent(false);
    m_sim->withModel([](ControllerModel &m) {
        m.servoStatus = 0;
        m.deadman = 0;
        m.operationMode = 0;
        m.coordinate = 0;
        m.speed = 10;
        m.currentTool = 0;
        m.robotTypeWire = 1;
        m.motion.waypoints.clear();
        std::fill(std::begin(m.positionDeg), std::end(m.positionDeg), 0.0);
    });
    m_sim->clearReceived();
}

void TestQrxCli::servoRunning()
{
    m_sim->withModel([](ControllerModel &m) {
        m.servoStatus = 3;
        m.deadman = 1;
    });
}

void TestQrxCli::status_data()
{
    QTest::addColumn<int>("servo");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("coord");
    QTest::addColumn<int>("speed");
    QTest::addColumn<int>("tool");
    QTest::addColumn<double>("axis2");
    QTest::addColumn<int>("typeWire"); // the model the controller reports
    QTest::addColumn<QStringList>("expected"); // key, value, key, value ...

    QTest::newRow("at rest") << 0 << 0 << 0 << 10 << 0 << 0.0 << 1
                             << QStringList{"link", "yes", "type", "R_GENERAL_6S (1)", "servo", "stopped (0)", "mode", "teach (0)",
                                            "coord", "joint (0)", "speed", "10", "tool", "0",
                                            "joints", "0 0 0 0 0 0", "running", "stopped (0)"};
    QTest::newRow("running, remote, user frame") << 3 << 1 << 3 << 55 << 4 << -12.5 << 2
                                                 << QStringList{"type", "R_SCARA (6)", "servo", "running (3)", "mode", "remote (1)",
                                                                "coord", "user (3)", "speed", "55", "tool", "4",
                                                                "joints", "0 -12.5 0 0 0 0"};
    QTest::newRow("run mode, tool frame, jog steps") << 1 << 2 << 2 << 102 << 31 << 90.25 << 99
                                                     << QStringList{"type", "R_NULL (0)", "servo", "ready (1)", "mode", "run (2)",
                                                                    "coord", "tool (2)", "speed", "102",
                                                                    "tool", "31", "joints", "0 90.25 0 0 0 0"};
}

void TestQrxCli::status()
{
    QFETCH(int, servo);
    QFETCH(int, mode);
    QFETCH(int, coord);
    QFETCH(int, speed);
    QFETCH(int, tool);
    QFETCH(double, axis2);
    QFETCH(int, typeWire);
    QFETCH(QStringList, expected);
    m_sim->withModel([=](ControllerModel &m) {
        m.robotTypeWire = typeWire;
        m.servoStatus = servo;
        m.deadman = servo == 3 ? 1 : 0;
        m.operationMode = mode;
        m.coordinate = coord;
        m.speed = speed;
        m.currentTool = tool;
        m.positionDeg[1] = axis2;
    });

    const QrxRun run = qrx({"status"});
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.err.isEmpty(), qPrintable(run.err));
    for (int i = 0; i + 1 < expected.size(); i += 2)
        QCOMPARE(fieldOf(run.out, expected[i]), expected[i + 1]);
    // The status asks the controller, it does not command it.
    QVERIFY(m_sim->received(0x2101).isEmpty());
    QVERIFY(m_sim->received(0x2001).isEmpty());
}

void TestQrxCli::statusAsJson()
{
    m_sim->withModel([](ControllerModel &m) {
        m.operationMode = 2;
        m.positionDeg[0] = 1.5;
        m.positionDeg[5] = -7.0;
    });
    const QrxRun run = qrx({"--json", "status"});
    QCOMPARE(run.exitCode, 0);
    QJsonParseError error;
    const QJsonObject o = QJsonDocument::fromJson(run.out.toUtf8(), &error).object();
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(o.value("link").toBool(), true);
    QCOMPARE(o.value("mode").toInt(-1), 2);
    QCOMPARE(o.value("mode_name").toString(), QString("run"));
    QCOMPARE(o.value("type").toInt(-1), 1);
    QCOMPARE(o.value("type_name").toString(), QString("R_GENERAL_6S"));
    const QJsonArray joints = o.value("joints").toArray();
    QCOMPARE(joints.size(), 6);
    QCOMPARE(joints.at(0).toDouble(), 1.5);
    QCOMPARE(joints.at(5).toDouble(), -7.0);
    QVERIFY(o.contains("line"));
    QVERIFY(o.contains("cartesian"));
}

void TestQrxCli::setters_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("code");           // the command that must reach the controller
    QTest::addColumn<QByteArray>("payload"); // as it went on the wire
    QTest::addColumn<QString>("key");        // qrx's output line
    QTest::addColumn<QString>("value");

    QTest::newRow("mode by name") << QStringList{"mode", "remote"} << 0x2101 << QByteArray("{\"mode\":1}\n")
                                  << "mode" << "remote (1)";
    QTest::newRow("mode by number") << QStringList{"mode", "2"} << 0x2101 << QByteArray("{\"mode\":2}\n") << "mode"
                                    << "run (2)";
    QTest::newRow("coord") << QStringList{"coord", "cartesian"} << 0x2201
                           << QByteArray("{\"coord\":1,\"robot\":1}\n") << "coord" << "cartesian (1)";
    QTest::newRow("speed") << QStringList{"speed", "40"} << 0x2601 << QByteArray("{\"robot\":1,\"speed\":40}\n")
                           << "speed" << "40";
    QTest::newRow("tool") << QStringList{"tool", "3"} << 0x380A << QByteArray("{\"curToolNum\":3,\"robot\":1}\n")
                          << "tool" << "3";
    QTest::newRow("digital output") << QStringList{"io", "set", "dout", "5", "1"} << 0x3601
                                    << QByteArray("{\"port\":5,\"status\":1}\n") << "dout"
                                    << "0 0 0 0 1 0 0 0 0 0 0 0 0 0 0 0";
    QTest::newRow("analog output") << QStringList{"io", "set", "aout", "2", "4.5"} << 0x3607
                                   << QByteArray("{\"port\":2,\"value\":4.50}\n") << "aout"
                                   << "0 4.5 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
    QTest::newRow("real variable") << QStringList{"var", "set", "GD002", "3.25"} << 0x5607
                                   << QByteArray("{\"varName\":\"GD002\",\"varType\":3,\"varValue\":3.250}\n")
                                   << "value" << "3.25";
    QTest::newRow("job opened") << QStringList{"job", "open", "DEMO"} << 0x3114
                                << QByteArray("{\"jobName\":\"DEMO\",\"robot\":1,\"suffixname\":\".JBR\"}\n")
                                << "running" << "stopped (0)";
}

void TestQrxCli::setters()
{
    QFETCH(QStringList, args);
    QFETCH(int, code);
    QFETCH(QByteArray, payload);
    QFETCH(QString, key);
    QFETCH(QString, value);

    const QrxRun run = qrx(args);
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    QCOMPARE(fieldOf(run.out, key), value);
    const QVector<qrxsim::ReceivedFrame> frames = m_sim->received(quint16(code));
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames.first().payload, payload);
}

void TestQrxCli::failures_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<bool>("servoOn");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message"); // part of the line on standard error

    QTest::newRow("unknown command") << QStringList{"bogus"} << false << 2 << "unknown command \"bogus\"";
    QTest::newRow("axis out of range") << QStringList{"jog", "9", "+"} << false << 2 << "AXIS must be 1..7";
    QTest::newRow("no direction") << QStringList{"jog", "1", "up"} << false << 2 << "direction must be + or -";
    QTest::newRow("unknown option") << QStringList{"status", "--fast"} << false << 2 << "unknown option --fast";
    QTest::newRow("mode name") << QStringList{"mode", "auto"} << false << 2 << "mode must be one of teach";
    QTest::newRow("not a number") << QStringList{"move", "joint", "1", "2", "x", "4", "5", "6"} << false << 2
                                  << "not a number: \"x\"";
    QTest::newRow("variable name") << QStringList{"var", "get", "X1"} << false << 2 << "GI, GD or GB";
    QTest::newRow("variable kind") << QStringList{"var", "get", "GX001"} << false << 2 << "GI, GD or GB";
    QTest::newRow("variable number") << QStringList{"var", "set", "GI0A1", "3"} << false << 2 << "three digits";
    QTest::newRow("jog with the servo off") << QStringList{"jog", "1", "+", "--for", "0.2"} << false << 4
                                            << "the servo is not running";
    QTest::newRow("move with the servo off") << QStringList{"move", "joint", "1", "2", "3", "4", "5", "6"} << false
                                             << 4 << "move refused: the servo is not running";
    QTest::newRow("run with the servo off") << QStringList{"job", "run", "DEMO"} << false << 4
                                            << "the servo is off";
    QTest::newRow("unknown job") << QStringList{"job", "run", "NOPE"} << true << 4 << "job not found: NOPE";
    QTest::newRow("continue outside run mode") << QStringList{"job", "continue"} << true << 4
                                               << "not in run mode";
}

void TestQrxCli::failures()
{
    QFETCH(QStringList, args);
    QFETCH(bool, servoOn);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    if (servoOn)
        servoRunning();

    const QrxRun run = qrx(args);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.err.startsWith("qrx: ") && run.err.contains(message), qPrintable(run.err));
    QVERIFY(run.out.isEmpty());
    // A refusal on the host's side sends no command.
    if (exitCode == 2 || message.contains("servo is"))
        QVERIFY(m_sim->received(0x2501).isEmpty() && m_sim->received(0x2901).isEmpty());
    // A refused move ends when the controller refuses: no wait for arrival.
    if (args.first() == "move")
        QVERIFY(m_sim->received(0x2F07).isEmpty());
    // The same status in English: it never depends on the texts.
    QCOMPARE(runQrx(m_sim->address(), args, "en").exitCode, exitCode);
    // A bad command line is seen before connecting: no controller needed
    // (".invalid" names no host).
    if (exitCode == 2)
        QCOMPARE(runQrx("qrx-test.invalid", args).exitCode, 2);
}

void TestQrxCli::moveArrives()
{
    servoRunning();
    const QrxRun run = qrx({"move", "joint", "10", "-20.5", "30", "0", "5", "0", "--speed", "100"});
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    QCOMPARE(fieldOf(run.out, "joints"), QString("10 -20.5 30 0 5 0"));
    const QVector<qrxsim::ReceivedFrame> moves = m_sim->received(0x4501);
    QCOMPARE(moves.size(), 1);
    QVERIFY(moves.first().payload.contains("\"vel\":100"));
    double axis2 = 0;
    m_sim->withModel([&](ControllerModel &m) { axis2 = m.positionDeg[1]; });
    QCOMPARE(axis2, -20.5);
}

void TestQrxCli::refusedJogNamesTheControllerReason()
{
    servoRunning();
    m_sim->withModel([](ControllerModel &m) { m.operationMode = 1; });
    const QrxRun run = qrx({"jog", "2", "-", "--for", "0.3"});
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.contains("refused by the controller: jog refused: not in teach mode"), qPrintable(run.err));
    QVERIFY(!m_sim->received(0x2901).isEmpty());
    QVERIFY(!m_sim->received(0x2902).isEmpty()); // the jog is stopped all the same
}

void TestQrxCli::jogMovesTheAxis()
{
    servoRunning();
    const QrxRun run = qrx({"jog", "3", "-", "--for", "0.5"});
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    const QStringList joints = fieldOf(run.out, "joints").split(' ');
    QCOMPARE(joints.size(), 6);
    QVERIFY2(joints[2].toDouble() < 0.0, qPrintable(run.out));
    QCOMPARE(joints[0], QString("0"));
    const QVector<qrxsim::ReceivedFrame> stops = m_sim->received(0x2902);
    QCOMPARE(stops.size(), 1);
    QCOMPARE(stops.first().payload, QByteArray("{\"axis\":3}\n"));
}

void TestQrxCli::silentControllerTimesOut()
{
    m_sim->setSilent(true);
    QElapsedTimer clock;
    clock.start();
    const QrxRun run = qrx({"--timeout", "1", "mode"});
    QCOMPARE(run.exitCode, 5);
    QVERIFY2(run.err.contains("timed out waiting for the operation mode"), qPrintable(run.err));
    // The query went out, the answer never came, and qrx did not hang.
    QVERIFY(!m_sim->received(0x2102).isEmpty());
    QVERIFY2(clock.elapsed() < 30000, qPrintable(QString::number(clock.elapsed())));
}

void TestQrxCli::watchRefreshesUntilInterrupted()
{
    QProcess process;
    startQrx(process, m_sim->address(), {"--json", "watch", "--interval", "0.1"});
    QVERIFY(process.waitForStarted());
    QByteArray out;
    QTRY_VERIFY_WITH_TIMEOUT((out += process.readAllStandardOutput()).count('\n') >= 2, 30000);
    // The robot moves between refreshes; the screen follows.
    m_sim->withModel([](ControllerModel &m) { m.positionDeg[0] = 42.0; });
    QTRY_VERIFY_WITH_TIMEOUT((out += process.readAllStandardOutput()).contains("\"joints\":[42,"), 30000);
    ::kill(pid_t(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished(30000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    out += process.readAllStandardOutput();
    for (const QByteArray &line : out.trimmed().split('\n')) {
        const QJsonObject o = QJsonDocument::fromJson(line).object();
        QCOMPARE(o.value("link").toBool(), true);
    }
}

void TestQrxCli::help_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QStringList>("mentions");

    QTest::newRow("overview") << QStringList{"--help"}
                              << QStringList{"status", "watch", "servo", "jog", "move", "io", "var", "pos", "job",
                                             "tool", "upload", "download", "export", "import", "--host", "--timeout",
                                             "--json", "QRX_HOST"};
    QTest::newRow("jog") << QStringList{"jog", "--help"} << QStringList{"usage: qrx jog AXIS +|- [--for SECONDS]"};
    QTest::newRow("help word") << QStringList{"help"} << QStringList{"Commands:"};
    QTest::newRow("move, help last") << QStringList{"move", "--help"} << QStringList{"--tolerance", "--no-wait"};
}

void TestQrxCli::help()
{
    QFETCH(QStringList, args);
    QFETCH(QStringList, mentions);
    const QrxRun run = runQrx(QString(), args); // help needs no controller
    QCOMPARE(run.exitCode, 0);
    for (const QString &word : mentions)
        QVERIFY2(run.out.contains(word), qPrintable(word));
}

QTEST_GUILESS_MAIN(TestQrxCli)
#include "tst_qrx_cli.moc"
