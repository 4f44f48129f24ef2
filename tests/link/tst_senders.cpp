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

void TestSenders::connectModule(TcpConnectModule &module)
{
    module.start();
    QTRY_VERIFY_WITH_TIMEOUT(module.connectStatus(), kWaitMs);
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

QTEST_GUILESS_MAIN(TestSenders)
#include "tst_senders.moc"
