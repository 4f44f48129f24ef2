// The stand-alone qrx-sim program: options, its listening line, a served
// client, controller heartbeats, and a clean stop on SIGTERM.

#include "WireClient.h"
#include "common/CompactJson.h"
#include "common/Payload.h"
#include "support/Loopback.h"

#include <QProcess>
#include <QtTest>
#include <csignal>

class TestSimProgram : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void help();
    void helpSaysWhatItHolds_data();
    void helpSaysWhatItHolds();
    void badOptions_data();
    void badOptions();
    void servesAndStopsOnSignal_data();
    void servesAndStopsOnSignal();
};

void TestSimProgram::help()
{
    QProcess sim;
    sim.start(QStringLiteral(QRX_SIM_PROGRAM), {QStringLiteral("--help")});
    QVERIFY(sim.waitForFinished(10000));
    QCOMPARE(sim.exitCode(), 0);
    const QString text = QString::fromUtf8(sim.readAllStandardOutput());
    for (const char *option : {"--address", "--port", "--heartbeat", "--verbose"})
        QVERIFY2(text.contains(QLatin1String(option)), option);
    QVERIFY(text.contains(QStringLiteral("0x7266")));
}

void TestSimProgram::helpSaysWhatItHolds_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("job DEMO") << "DEMO (8 lines)";
    QTest::newRow("job WELD01") << "WELD01 (20 lines)";
    QTest::newRow("axis 1 limits") << "1: -170..170";
    QTest::newRow("axis 2 limits") << "2: -135..135";
    QTest::newRow("IO ports") << "ports 1..16";
    QTest::newRow("analog range") << "(-10..10 V)";
    QTest::newRow("variables") << "GB### (0 or 1)";
    QTest::newRow("queued MOVL") << "MOVL (2)";
    QTest::newRow("queued PULSEOUT") << "PULSEOUT (22)";
    QTest::newRow("refusal: servo off") << "0x1101 moves, jog steps";
    QTest::newRow("refusal: unknown job") << "0x1103 opening, running";
    QTest::newRow("refusal: not executable") << "0x1107 queued instructions";
}

// --help lists the jobs, limits and ranges the controller holds and what it
// refuses; every line fits a terminal.
void TestSimProgram::helpSaysWhatItHolds()
{
    QFETCH(QString, line);
    QProcess sim;
    sim.start(QStringLiteral(QRX_SIM_PROGRAM), {QStringLiteral("--help")});
    QVERIFY(sim.waitForFinished(10000));
    const QString text = QString::fromUtf8(sim.readAllStandardOutput());
    QVERIFY2(text.contains(line), qPrintable(text));
    for (const QString &each : text.split(QLatin1Char('\n')))
        QVERIFY2(each.size() <= 80, qPrintable(each));
}

void TestSimProgram::badOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("address") << QStringList{"--address", "not-an-address"};
    QTest::newRow("port too big") << QStringList{"--port", "70000"};
    QTest::newRow("port not a number") << QStringList{"--port", "six"};
    QTest::newRow("negative heartbeat") << QStringList{"--heartbeat", "-5"};
}

void TestSimProgram::badOptions()
{
    QFETCH(QStringList, arguments);
    QProcess sim;
    sim.start(QStringLiteral(QRX_SIM_PROGRAM), arguments);
    QVERIFY(sim.waitForFinished(10000));
    QCOMPARE(sim.exitStatus(), QProcess::NormalExit);
    QCOMPARE(sim.exitCode(), 2);
}

void TestSimProgram::servesAndStopsOnSignal_data()
{
    QTest::addColumn<bool>("verbose");
    QTest::addColumn<int>("heartbeatMs");
    QTest::newRow("quiet, no heartbeat") << false << 0;
    QTest::newRow("verbose, heartbeat 30 ms") << true << 30;
}

void TestSimProgram::servesAndStopsOnSignal()
{
    QFETCH(bool, verbose);
    QFETCH(int, heartbeatMs);
    const QString address = testsupport::loopbackAddress();
    QStringList arguments{"--address", address, "--port", "6001", "--heartbeat", QString::number(heartbeatMs)};
    if (verbose)
        arguments << QStringLiteral("--verbose");
    QProcess sim;
    sim.start(QStringLiteral(QRX_SIM_PROGRAM), arguments);
    QVERIFY(sim.waitForStarted(10000));
    const QByteArray listening = QStringLiteral("qrx-sim listening on %1:6001").arg(address).toUtf8();
    QTRY_VERIFY_WITH_TIMEOUT((sim.waitForReadyRead(50), sim.peek(4096).contains(listening)), 10000);

    WireClient client;
    QVERIFY(client.connectTo(address, 6001));
    Json::Value time(Json::objectValue);
    time["time"] = 42;
    client.sendFrame(0x7266, qrx::jsonPayload(time));
    QVERIFY(client.waitForFrame(0x7267));
    QCOMPARE(client.frames(0x7267).first().payload, qrx::jsonPayload(time));
    if (heartbeatMs > 0)
        QVERIFY(client.waitForFrame(0x7266));

    ::kill(pid_t(sim.processId()), SIGTERM);
    QVERIFY(sim.waitForFinished(10000));
    QCOMPARE(sim.exitStatus(), QProcess::NormalExit);
    QCOMPARE(sim.exitCode(), 0);
    QVERIFY(client.waitForDisconnected());
    const QByteArray log = sim.readAllStandardError();
    QCOMPARE(log.contains("<- 0x7266 {\"time\":42}"), verbose);
    QCOMPARE(log.contains("-> 0x7267 {\"time\":42}"), verbose);
}

QTEST_GUILESS_MAIN(TestSimProgram)
#include "tst_simprogram.moc"
