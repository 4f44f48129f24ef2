// The link's own send slots: the exact frame each one puts on the wire (as
// qrx-sim receives it), the log line each one writes, and what happens
// while the link is down.

#include "link/TcpConnectModule.h"
#include "sim/SimHandle.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QLoggingCategory>
#include <QtTest>
#include <zlib.h>

#include <functional>

using SenderCall = std::function<bool(TcpConnectModule &)>;
Q_DECLARE_METATYPE(SenderCall)

namespace {

constexpr int kWaitMs = 10000;
constexpr int kTimeBase = 18000; // check every 100 ms

// The frame as the controller expects it, built here from the frame layout
// with zlib's CRC-32, independently of the library's encoder.
QByteArray expectedFrame(quint16 code, const QByteArray &payload)
{
    QByteArray covered;
    covered.append(char(payload.size() >> 8)).append(char(payload.size() & 0xFF));
    covered.append(char(code >> 8)).append(char(code & 0xFF));
    covered.append(payload);
    const uLong crc = crc32(0L, reinterpret_cast<const Bytef *>(covered.constData()), uInt(covered.size()));
    QByteArray frame("Nf");
    frame.append(covered);
    for (int shift = 24; shift >= 0; shift -= 8)
        frame.append(char((crc >> shift) & 0xFF));
    return frame;
}

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

} // namespace

// Takes the answer notifications, queued into the test thread, as text.
class AnswerListener : public QObject
{
    Q_OBJECT
public:
    QStringList events;

public Q_SLOTS:
    void onPayload(const QByteArray &data) { events << QString::fromUtf8(data); }
    void onTestMode(signed char mode) { events << QString::number(int(mode)); }
    void onData(quint16 command, const QByteArray &data)
    {
        events << QStringLiteral("0x%1 %2").arg(command, 4, 16, QLatin1Char('0')).arg(QString::fromUtf8(data));
    }
    void onPosition(const QVector<double> &position, int coord, int robot, int configuration)
    {
        QStringList values;
        for (double v : position)
            values << QString::number(v);
        events << QStringLiteral("[%1] coord=%2 robot=%3 configuration=%4")
                      .arg(values.join(QLatin1Char(',')))
                      .arg(coord)
                      .arg(robot)
                      .arg(configuration);
    }
};

class TestSenders : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void wire_data();
    void wire();
    void logLines_data();
    void logLines();
    void downReturnsFalseAndWritesNothing_data();
    void downReturnsFalseAndWritesNothing();
    void invokedByNameQueued();
    void answeredBySimulator_data();
    void answeredBySimulator();

private:
    void addSenderRows();
    void connectModule(TcpConnectModule &module);

    QScopedPointer<qrxsim::SimHandle> m_sim;
};

void TestSenders::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("qrx.*.debug=true"));
    m_sim.reset(new qrxsim::SimHandle(testsupport::loopbackAddress()));
    QVERIFY(m_sim->start());
}

void TestSenders::cleanupTestCase()
{
    m_sim.reset();
}

// Connected on both ends: the link says so, and the simulator counts this
// link as its one client (the last row's link has gone), so what the
// simulator sends next reaches it.
void TestSenders::connectModule(TcpConnectModule &module)
{
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->clientCount(), 0, kWaitMs);
    module.start();
    QTRY_VERIFY_WITH_TIMEOUT(module.connectStatus(), kWaitMs);
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->clientCount(), 1, kWaitMs);
}

// Every send slot: what it is called with, the robot the state model
// addresses, the code and payload on the wire and the log line.
void TestSenders::addSenderRows()
{
    QTest::addColumn<SenderCall>("call");
    QTest::addColumn<int>("robot");
    QTest::addColumn<quint16>("code");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("log");

    auto row = [](const char *name, SenderCall call, int robot, quint16 code, const QByteArray &payload,
                  const QStringList &log = {}) {
        QTest::newRow(name) << call << robot << code << payload << log;
    };

    row("setServoStatus running", [](TcpConnectModule &m) { return m.setServoStatus(SERVO_RUNNING); }, 1, 0x2001,
        "{\"robot\":1,\"status\":3}\n", {text("发送伺服状态 status=3")});
    row("setServoStatus ready, robot 3", [](TcpConnectModule &m) { return m.setServoStatus(SERVO_READY); }, 3,
        0x2001, "{\"robot\":3,\"status\":1}\n", {text("发送伺服状态 status=1")});
    row("setServoStatus -1 as signed byte", [](TcpConnectModule &m) { return m.setServoStatus(ServoStatus(-1)); },
        1, 0x2001, "{\"robot\":1,\"status\":-1}\n", {text("发送伺服状态 status=-1")});
    row("getServoStatus", [](TcpConnectModule &m) { return m.getServoStatus(); }, 2, 0x2002, "{\"robot\":2}\n");
    row("setOperationMode run", [](TcpConnectModule &m) { return m.setOperationMode(OPERATION_RUN); }, 1, 0x2101,
        "{\"mode\":2}\n", {text("发送当前操作模式 mode=2")});
    row("setOperationMode teach", [](TcpConnectModule &m) { return m.setOperationMode(OPERATION_TEACH); }, 4,
        0x2101, "{\"mode\":0}\n", {text("发送当前操作模式 mode=0")});
    row("setOperationMode 1000", [](TcpConnectModule &m) { return m.setOperationMode(OperationMode(1000)); }, 1,
        0x2101, "{\"mode\":1000}\n", {text("发送当前操作模式 mode=1000")});
    row("getOperationMode", [](TcpConnectModule &m) { return m.getOperationMode(); }, 1, 0x2102, QByteArray());
    row("setCoordinationMode joint", [](TcpConnectModule &m) { return m.setCoordinationMode(COORD_JOINT); }, 1,
        0x2201, "{\"coord\":0,\"robot\":1}\n", {text("发送设置当前坐标系为关节坐标系")});
    row("setCoordinationMode Cartesian", [](TcpConnectModule &m) { return m.setCoordinationMode(COORD_CARTESIAN); },
        2, 0x2201, "{\"coord\":1,\"robot\":2}\n", {text("发送设置当前坐标系为直角坐标系")});
    row("setCoordinationMode tool", [](TcpConnectModule &m) { return m.setCoordinationMode(COORD_TOOL); }, 1,
        0x2201, "{\"coord\":2,\"robot\":1}\n", {text("发送设置当前坐标系为工具坐标系")});
    row("setCoordinationMode user", [](TcpConnectModule &m) { return m.setCoordinationMode(COORD_USER); }, 1,
        0x2201, "{\"coord\":3,\"robot\":1}\n", {text("发送设置当前坐标系为用户坐标系")});
    row("setCoordinationMode 7, no line", [](TcpConnectModule &m) { return m.setCoordinationMode(CoordinationMode(7)); },
        1, 0x2201, "{\"coord\":7,\"robot\":1}\n");
    row("setCoordinationMode -1, no line",
        [](TcpConnectModule &m) { return m.setCoordinationMode(CoordinationMode(-1)); }, 1, 0x2201,
        "{\"coord\":-1,\"robot\":1}\n");
    row("getCoordinationMode", [](TcpConnectModule &m) { return m.getCoordinationMode(); }, 3, 0x2202,
        "{\"robot\":3}\n");
    row("sendDeadmanCommand on", [](TcpConnectModule &m) { return m.sendDeadmanCommand(1); }, 1, 0x2301,
        "{\"deadman\":1}\n", {text("向控制器发送上电命令")});
    row("sendDeadmanCommand 200", [](TcpConnectModule &m) { return m.sendDeadmanCommand(200); }, 1, 0x2301,
        "{\"deadman\":200}\n", {text("向控制器发送上电命令")});
    row("sendDeadmanCommand off", [](TcpConnectModule &m) { return m.sendDeadmanCommand(0); }, 1, 0x2301,
        "{\"deadman\":0}\n", {text("向控制器发送下电命令")});
    row("setSpeed 50", [](TcpConnectModule &m) { return m.setSpeed(50); }, 1, 0x2601,
        "{\"robot\":1,\"speed\":50}\n");
    row("setSpeed -3", [](TcpConnectModule &m) { return m.setSpeed(-3); }, 2, 0x2601,
        "{\"robot\":2,\"speed\":-3}\n");
    row("getSpeed", [](TcpConnectModule &m) { return m.getSpeed(); }, 1, 0x2602, "{\"robot\":1}\n");
    row("setTestMode 5", [](TcpConnectModule &m) { return m.setTestMode(5); }, 1, 0x2701, QByteArray::fromHex("05"));
    row("setTestMode -1", [](TcpConnectModule &m) { return m.setTestMode(-1); }, 1, 0x2701,
        QByteArray::fromHex("ff"));
    row("setTestMode 0", [](TcpConnectModule &m) { return m.setTestMode(0); }, 1, 0x2701, QByteArray::fromHex("00"));
    row("getTestMode", [](TcpConnectModule &m) { return m.getTestMode(); }, 1, 0x2702, QByteArray());
    row("sendStopMoveCommand 3", [](TcpConnectModule &m) { return m.sendStopMoveCommand(3); }, 2, 0x2902,
        "{\"axis\":3}\n");
    row("sendStopMoveCommand -12", [](TcpConnectModule &m) { return m.sendStopMoveCommand(-12); }, 1, 0x2902,
        "{\"axis\":-12}\n");
    row("getPosition", [](TcpConnectModule &m) { return m.getPosition(); }, 4, 0x2A02, "{\"robot\":4}\n");
    row("clearError 0x01020304", [](TcpConnectModule &m) { return m.clearError(ErrorList(0x01020304)); }, 1, 0x2B01,
        QByteArray::fromHex("01020304"));
    row("clearError servo", [](TcpConnectModule &m) { return m.clearError(ERROR_SERVO); }, 1, 0x2B01,
        QByteArray::fromHex("00006010"));
    row("clearError 0xFFFFFFFE", [](TcpConnectModule &m) { return m.clearError(ErrorList(0xFFFFFFFEu)); }, 1,
        0x2B01, QByteArray::fromHex("fffffffe"));
    row("clearAllError", [](TcpConnectModule &m) { return m.clearAllError(); }, 2, 0x3201, "{\"robot\":2}\n",
        {text("发送清除错误")});
    row("getSelectTool", [](TcpConnectModule &m) { return m.getSelectTool(); }, 1, 0x380B, "{\"robot\":1}\n");
    row("getRobotRunStatus", [](TcpConnectModule &m) { return m.getRobotRunStatus(); }, 3, 0x3D02,
        "{\"robot\":3}\n");
}

void TestSenders::wire_data()
{
    addSenderRows();
}

// The frame arrives byte for byte, once.
void TestSenders::wire()
{
    QFETCH(SenderCall, call);
    QFETCH(int, robot);
    QFETCH(quint16, code);
    QFETCH(QByteArray, payload);

    TcpConnectModule module(m_sim->address(), m_sim->port(), kTimeBase);
    module.setCurrentRobotSource([robot] { return robot; });
    connectModule(module);
    if (QTest::currentTestFailed())
        return;
    m_sim->clearReceived();

    QVERIFY(call(module));
    QVERIFY(m_sim->waitForFrame(code, kWaitMs));
    const QVector<qrxsim::ReceivedFrame> frames = m_sim->received(code);
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames.first().payload, payload);
    QCOMPARE(frames.first().raw.toHex(), expectedFrame(code, payload).toHex());
}

void TestSenders::logLines_data()
{
    addSenderRows();
}

// The log line is written whether or not the link is up; here it is down
// (never started), so no connection line can come between.
void TestSenders::logLines()
{
    QFETCH(SenderCall, call);
    QFETCH(int, robot);
    QFETCH(QStringList, log);

    TcpConnectModule module(m_sim->address(), m_sim->port(), kTimeBase);
    module.setCurrentRobotSource([robot] { return robot; });
    LogCapture capture;
    QVERIFY(!call(module));
    QCOMPARE(capture.lines(), log);
}

void TestSenders::downReturnsFalseAndWritesNothing_data()
{
    addSenderRows();
}

// While the controller refuses the connection every slot fails, and once the
// link comes up none of those commands turns up late.
void TestSenders::downReturnsFalseAndWritesNothing()
{
    QFETCH(SenderCall, call);
    QFETCH(quint16, code);

    m_sim->setRefuseConnections(true);
    TcpConnectModule module(m_sim->address(), m_sim->port(), kTimeBase);
    module.start();
    QVERIFY(!call(module));
    QVERIFY(!call(module));
    QCOMPARE(m_sim->clientCount(), 0);

    m_sim->clearReceived();
    m_sim->setRefuseConnections(false);
    QTRY_VERIFY_WITH_TIMEOUT(module.connectStatus(), kWaitMs);
    // The first heartbeat follows the connection; anything queued would be ahead of it.
    QVERIFY(m_sim->waitForFrame(0x7266, kWaitMs));
    QCOMPARE(m_sim->received(code).size(), 0);
}

// The enumerated and byte arguments are registered, so the slots can be
// queued by name (as the state model does from other threads).
void TestSenders::invokedByNameQueued()
{
    TcpConnectModule module(m_sim->address(), m_sim->port(), kTimeBase);
    connectModule(module);
    if (QTest::currentTestFailed())
        return;
    m_sim->clearReceived();

    const auto queued = Qt::QueuedConnection;
    QVERIFY(QMetaObject::invokeMethod(&module, "setServoStatus", queued, Q_ARG(ServoStatus, SERVO_STOP)));
    QVERIFY(QMetaObject::invokeMethod(&module, "setOperationMode", queued, Q_ARG(OperationMode, OPERATION_REMOTE)));
    QVERIFY(QMetaObject::invokeMethod(&module, "setCoordinationMode", queued, Q_ARG(CoordinationMode, COORD_USER)));
    QVERIFY(QMetaObject::invokeMethod(&module, "clearError", queued, Q_ARG(ErrorList, ErrorList(0x0A0B0C0D))));
    QVERIFY(QMetaObject::invokeMethod(&module, "setTestMode", queued, Q_ARG(signed char, 7)));
    QVERIFY(QMetaObject::invokeMethod(&module, "sendDeadmanCommand", queued, Q_ARG(uchar, 1)));

    // Queued calls run in this thread's event loop, which the wait turns.
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->received(0x2301).size(), 1, kWaitMs);
    QVector<QByteArray> commands;
    for (const qrxsim::ReceivedFrame &frame : m_sim->received()) {
        if (frame.command != 0x7266)
            commands << frame.raw;
    }
    const QVector<QByteArray> expected{
        expectedFrame(0x2001, "{\"robot\":1,\"status\":0}\n"),
        expectedFrame(0x2101, "{\"mode\":1}\n"),
        expectedFrame(0x2201, "{\"coord\":3,\"robot\":1}\n"),
        expectedFrame(0x2B01, QByteArray::fromHex("0a0b0c0d")),
        expectedFrame(0x2701, QByteArray::fromHex("07")),
        expectedFrame(0x2301, "{\"deadman\":1}\n"),
    };
    QCOMPARE(commands, expected);
}

// The simulated controller answers each query, and reports the effect of
// each set command, with the report that the state model reads.
void TestSenders::answeredBySimulator_data()
{
    QTest::addColumn<SenderCall>("call");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QString>("answer");

    const QByteArray payload = SLOT(onPayload(QByteArray));
    auto row = [](const char *name, SenderCall call, const char *signal, const QByteArray &slot, const char *answer) {
        QTest::newRow(name) << call << QByteArray(signal) << slot << QString::fromLatin1(answer);
    };
    row("getServoStatus", [](TcpConnectModule &m) { return m.getServoStatus(); },
        SIGNAL(receivedServoStatus(QByteArray)), payload, "{\"mode\":1,\"robot\":2,\"status\":3}\n");
    row("getOperationMode", [](TcpConnectModule &m) { return m.getOperationMode(); },
        SIGNAL(receivedOperationMode(QByteArray)), payload, "{\"mode\":1}\n");
    row("getCoordinationMode", [](TcpConnectModule &m) { return m.getCoordinationMode(); },
        SIGNAL(receivedCoordinationMode(QByteArray)), payload, "{\"coord\":2,\"robot\":2}\n");
    row("getSpeed", [](TcpConnectModule &m) { return m.getSpeed(); }, SIGNAL(receivedSpeedInfo(QByteArray)),
        payload, "{\"robot\":2,\"speed\":40}\n");
    row("getTestMode", [](TcpConnectModule &m) { return m.getTestMode(); },
        SIGNAL(receivedTestMode(signed char)), SLOT(onTestMode(signed char)), "1");
    row("getPosition", [](TcpConnectModule &m) { return m.getPosition(); },
        SIGNAL(receivedPosition(QVector<double>,int,int,int)), SLOT(onPosition(QVector<double>,int,int,int)),
        "[10.5,-20,30.25,0,90,-45,0] coord=2 robot=2 configuration=3");
    row("getSelectTool", [](TcpConnectModule &m) { return m.getSelectTool(); },
        SIGNAL(receivedToolInfo(QByteArray)), payload, "{\"curToolNum\":5,\"robot\":2}\n");
    row("getRobotRunStatus", [](TcpConnectModule &m) { return m.getRobotRunStatus(); },
        SIGNAL(receivedProRunStatus(QByteArray)), payload, "{\"robot\":2,\"status\":1}\n");
    row("setServoStatus ready", [](TcpConnectModule &m) { return m.setServoStatus(SERVO_READY); },
        SIGNAL(receivedServoStatus(QByteArray)), payload, "{\"mode\":1,\"robot\":2,\"status\":1}\n");
    row("setOperationMode run", [](TcpConnectModule &m) { return m.setOperationMode(OPERATION_RUN); },
        SIGNAL(receivedOperationMode(QByteArray)), payload, "{\"mode\":2}\n");
    row("setCoordinationMode user", [](TcpConnectModule &m) { return m.setCoordinationMode(COORD_USER); },
        SIGNAL(receivedCoordinationMode(QByteArray)), payload, "{\"coord\":3,\"robot\":2}\n");
    row("sendDeadmanCommand off", [](TcpConnectModule &m) { return m.sendDeadmanCommand(0); },
        SIGNAL(receivedDeadmanStatus(QByteArray)), payload, "{\"deadman\":0}\n");
    row("setSpeed 77", [](TcpConnectModule &m) { return m.setSpeed(77); }, SIGNAL(receivedSpeedInfo(QByteArray)),
        payload, "{\"robot\":2,\"speed\":77}\n");
    row("setTestMode -2", [](TcpConnectModule &m) { return m.setTestMode(-2); },
        SIGNAL(receivedTestMode(signed char)), SLOT(onTestMode(signed char)), "-2");
}

void TestSenders::answeredBySimulator()
{
    QFETCH(SenderCall, call);
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, slot);
    QFETCH(QString, answer);

    m_sim->withModel([](qrxsim::ControllerModel &model) {
        model.servoStatus = 3;
        model.operationMode = 1;
        model.coordinate = 2;
        model.deadman = 1; // drives running with the deadman held: a steady state
        model.speed = 40;
        model.testMode = 1;
        model.currentTool = 5;
        model.runStatus = 1; // paused: steady without a job
        const double position[7] = {10.5, -20.0, 30.25, 0.0, 90.0, -45.0, 0.0};
        std::copy(std::begin(position), std::end(position), std::begin(model.positionDeg));
        model.configuration = 3;
    });
    TcpConnectModule module(m_sim->address(), m_sim->port(), kTimeBase);
    module.setCurrentRobotSource([] { return 2; });
    AnswerListener listener;
    QVERIFY(QObject::connect(&module, signal.constData(), &listener, slot.constData(), Qt::QueuedConnection));
    QVERIFY(QObject::connect(&module, SIGNAL(receivedData(quint16,QByteArray)), &listener,
                             SLOT(onData(quint16,QByteArray)), Qt::QueuedConnection));
    connectModule(module);
    if (QTest::currentTestFailed())
        return;
    // What the controller says on connect comes before this marker; drop it.
    m_sim->send(0x0001, "settled");
    QTRY_VERIFY_WITH_TIMEOUT(listener.events.contains(QStringLiteral("0x0001 settled")), kWaitMs);
    listener.events.clear();

    QVERIFY(call(module));
    QTRY_VERIFY_WITH_TIMEOUT(listener.events.contains(answer), kWaitMs);
}

QTEST_GUILESS_MAIN(TestSenders)
#include "tst_senders.moc"
