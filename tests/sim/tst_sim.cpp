// The simulated controller on the wire: a plain socket client and the
// library's decoder check what qrx-sim answers, records and misbehaves.

#include "WireClient.h"
#include "common/CompactJson.h"
#include "common/Payload.h"
#include "sim/Session.h"
#include "sim/SimHandle.h"
#include "sim/Simulator.h"
#include "sim/commands/CommandTable.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QDateTime>
#include <QtTest>
#include <atomic>
#include <memory>

using qrxsim::ReceivedFrame;
using qrxsim::Session;
using qrxsim::SimHandle;
using qrxsim::Simulator;

namespace {

constexpr quint16 kHeartbeat = 0x7266;
constexpr quint16 kHeartbeatAnswer = 0x7267;

QByteArray heartbeat(qint64 time)
{
    Json::Value v(Json::objectValue);
    v["time"] = Json::Int64(time);
    return qrx::jsonPayload(v);
}

} // namespace

class TestSim : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void heartbeatAnswered_data();
    void heartbeatAnswered();
    void framesRecordedInOrder();
    void secondSimulatorCannotBind();
    void splitDelivery();
    void controllerHeartbeat_data();
    void controllerHeartbeat();
    void handlerRepliesAndBroadcasts();
    void ticksAndConnectHooks();
    void ticksStopWhenIdleAndAFrameWakesThem();
    void throwingBehaviourKeepsServing_data();
    void throwingBehaviourKeepsServing();
    void commandCodesAreUnique();
    void hostilePayloadsToEveryCommand_data();
    void hostilePayloadsToEveryCommand();

private:
    void connectClient(WireClient &client, int expectedClients = 1);
    std::unique_ptr<SimHandle> m_sim;
};

void TestSim::init()
{
    m_sim = std::make_unique<SimHandle>(testsupport::loopbackAddress());
    QVERIFY(m_sim->start());
    // Only what a test scripts: no start-up reports, nothing on ticks.
    m_sim->withSimulator([](Simulator &sim) { sim.clearTicksAndConnectHooks(); });
}

void TestSim::cleanup()
{
    m_sim.reset();
}

void TestSim::connectClient(WireClient &client, int expectedClients)
{
    QVERIFY(client.connectTo(m_sim->address(), m_sim->port()));
    QTRY_COMPARE_WITH_TIMEOUT(m_sim->clientCount(), expectedClients, 5000);
}

void TestSim::heartbeatAnswered_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("host heartbeat") << heartbeat(1700000000);
    QTest::newRow("time zero") << heartbeat(0);
    QTest::newRow("empty payload") << QByteArray();
    QTest::newRow("not JSON") << QByteArray("ping");
    QTest::newRow("binary with NUL") << QByteArray::fromHex("00ff4e66000a");
}

void TestSim::heartbeatAnswered()
{
    QFETCH(QByteArray, payload);
    WireClient client;
    connectClient(client);
    client.sendFrame(kHeartbeat, payload);
    QVERIFY(client.waitForFrame(kHeartbeatAnswer));
    QCOMPARE(client.frames().size(), 1);
    QCOMPARE(client.frames().first().payload, payload);
    QCOMPARE(client.bytes(), qrx::encodeFrame(kHeartbeatAnswer, payload));
}

void TestSim::framesRecordedInOrder()
{
    WireClient client;
    connectClient(client);
    const QVector<QPair<quint16, QByteArray>> sent = {
        {0x2002, QByteArray("{\"robot\":1}\n")},
        {kHeartbeat, heartbeat(5)},
        {0x2F07, QByteArray("{\"coord\":0,\"robot\":2}\n")},
        {0x2002, QByteArray()},
    };
    QByteArray wire;
    for (const auto &f : sent)
        wire += qrx::encodeFrame(f.first, f.second);
    // All in one write but the last frame, which trickles in two halves.
    const QByteArray last = qrx::encodeFrame(0x5052, QByteArray("{}\n"));
    client.sendBytes(wire + last.left(7));
    QVERIFY(m_sim->waitForFrame(0x2F07));
    QVERIFY(m_sim->received(0x5052).isEmpty());
    client.sendBytes(last.mid(7));
    QVERIFY(m_sim->waitForFrame(0x5052));

    const QVector<ReceivedFrame> got = m_sim->received();
    QCOMPARE(got.size(), sent.size() + 1);
    QByteArray rawTogether;
    for (int i = 0; i < got.size(); ++i) {
        if (i < sent.size()) {
            QCOMPARE(got[i].command, sent[i].first);
            QCOMPARE(got[i].payload, sent[i].second);
        }
        if (i > 0)
            QVERIFY(got[i].atMs >= got[i - 1].atMs);
        QVERIFY(got[i].atMs >= 0 && got[i].atMs <= m_sim->nowMs());
        rawTogether += got[i].raw;
    }
    QCOMPARE(rawTogether, wire + last);
    QCOMPARE(m_sim->received(0x2002).size(), 2);
    QCOMPARE(m_sim->lastFrame(0x2002).payload, QByteArray());
    QCOMPARE(m_sim->lastFrame(0x2F07).raw, qrx::encodeFrame(0x2F07, sent[2].second));
    QCOMPARE(m_sim->lastFrame(0x1234).atMs, qint64(-1));
}

void TestSim::secondSimulatorCannotBind()
{
    SimHandle second(m_sim->address(), m_sim->port());
    QVERIFY(!second.start());
    SimHandle elsewhere(QStringLiteral("192.0.2.1"));
    QVERIFY(!elsewhere.start());
}

void TestSim::splitDelivery()
{
    WireClient client;
    connectClient(client);
    m_sim->setSplitDelivery(true);
    const QByteArray payload = QByteArray("{\"text\":\"") + QByteArray(300, 'x') + "\"}\n";
    client.sendFrame(kHeartbeat, payload);
    QVERIFY(m_sim->waitForFrame(kHeartbeat)); // answered by now, in the queue
    m_sim->send(0x2003, QByteArray("{\"servo\":1}\n"));
    QVERIFY(client.waitForFrame(0x2003, 20000));
    // Both frames, in order, byte for byte, decoded as if sent whole.
    QCOMPARE(client.bytes(), qrx::encodeFrame(kHeartbeatAnswer, payload)
                                 + qrx::encodeFrame(0x2003, QByteArray("{\"servo\":1}\n")));
    QCOMPARE(client.frames().size(), 2);
    QCOMPARE(client.frames().first().payload, payload);
    // One byte per write, a millisecond apart: the reader sees many pieces.
    QVERIFY2(client.chunks().size() > 1, qPrintable(QString::number(client.chunks().size())));

    m_sim->setSplitDelivery(false);
    client.clear();
    client.sendFrame(kHeartbeat, heartbeat(9));
    QVERIFY(client.waitForFrame(kHeartbeatAnswer));
    QCOMPARE(client.bytes(), qrx::encodeFrame(kHeartbeatAnswer, heartbeat(9)));
}

void TestSim::controllerHeartbeat_data()
{
    QTest::addColumn<int>("intervalMs");
    QTest::newRow("20 ms") << 20;
    QTest::newRow("150 ms") << 150;
}

void TestSim::controllerHeartbeat()
{
    QFETCH(int, intervalMs);
    WireClient client;
    connectClient(client);
    QElapsedTimer clock;
    clock.start();
    m_sim->setControllerHeartbeat(intervalMs);
    QVERIFY(client.waitFor([&] { return client.frames(kHeartbeat).size() >= 4; }, 20000));
    // Four beats need at least four intervals (timers may fire 5 % early).
    QVERIFY(clock.elapsed() >= 4 * intervalMs * 95 / 100);
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    for (const qrx::Frame &f : client.frames(kHeartbeat)) {
        Json::Value v;
        QVERIFY(qrx::parsePayload(f.payload, v));
        QVERIFY(v.isObject() && v.size() == 1 && v["time"].isIntegral());
        QVERIFY(qAbs(v["time"].asInt64() - now) <= 2);
        QCOMPARE(f.payload, heartbeat(v["time"].asInt64()));
    }

    m_sim->setControllerHeartbeat(0);
    // Anything sent before the stop arrives before this answer.
    client.sendFrame(kHeartbeat, heartbeat(1));
    QVERIFY(client.waitForFrame(kHeartbeatAnswer));
    client.clear();
    QVERIFY(!client.waitForFrame(kHeartbeat, 3 * intervalMs));
}

void TestSim::handlerRepliesAndBroadcasts()
{
    // The handler answers the asking client with the model's value and tells
    // every client that it was asked.
    m_sim->withModel([](qrxsim::ControllerModel &m) { m.currentRobot = 3; });
    m_sim->setHandler(0x2002, [](Session &s, const ReceivedFrame &f) {
        Json::Value request;
        qrx::parsePayload(f.payload, request);
        Json::Value answer(Json::objectValue);
        answer["robot"] = s.model().currentRobot;
        answer["asked"] = request["robot"];
        s.replyJson(0x2003, answer);
        Json::Value note(Json::objectValue);
        note["from"] = s.peer().toStdString();
        s.broadcastJson(0x2004, note);
        s.model().currentRobot = request["robot"].asInt();
    });
    WireClient asking;
    WireClient other;
    connectClient(asking, 1);
    connectClient(other, 2);
    asking.sendFrame(0x2002, QByteArray("{\"robot\":2}\n"));
    QVERIFY(asking.waitForFrame(0x2004));
    QVERIFY(other.waitForFrame(0x2004));
    QCOMPARE(asking.frames().size(), 2);
    QCOMPARE(asking.frames().first().command, quint16(0x2003));
    QCOMPARE(asking.frames().first().payload, QByteArray("{\"asked\":2,\"robot\":3}\n"));
    QVERIFY(other.frames(0x2003).isEmpty());
    int robot = 0;
    m_sim->withModel([&robot](qrxsim::ControllerModel &m) { robot = m.currentRobot; });
    QCOMPARE(robot, 2);
}

void TestSim::ticksAndConnectHooks()
{
    auto ticked = std::make_shared<std::atomic<qint64>>(0);
    m_sim->withSimulator([ticked](Simulator &sim) {
        sim.addConnectHook({"hello", [](Session &s) { s.reply(0x2103, QByteArray("{\"mode\":0}\n")); }});
        sim.addTick({"count", [ticked](Simulator &sim, qint64 elapsedMs) {
                         if (sim.clientCount() == 0)
                             return;
                         const qint64 before = ticked->fetch_add(elapsedMs);
                         if (before < 200 && before + elapsedMs >= 200)
                             sim.broadcast(0x2F08, QByteArray("{\"moved\":true}\n"));
                     }});
    });
    QElapsedTimer clock;
    clock.start();
    WireClient client;
    connectClient(client);
    QVERIFY(client.waitForFrame(0x2F08, 10000));
    // The connect hook spoke first, then the tick once 200 ms had passed.
    QCOMPARE(client.frames().size(), 2);
    QCOMPARE(client.frames().first().command, quint16(0x2103));
    QVERIFY(ticked->load() >= 200);
    QVERIFY(clock.elapsed() >= 150);
}

// The ticks run only while an entry has work; a frame starts them again.
void TestSim::ticksStopWhenIdleAndAFrameWakesThem()
{
    auto work = std::make_shared<std::atomic<int>>(0);
    auto ticks = std::make_shared<std::atomic<int>>(0);
    WireClient client;
    connectClient(client);
    m_sim->withSimulator([work, ticks](Simulator &sim) {
        work->store(3);
        sim.addTick({"count", [work, ticks](Simulator &, qint64) {
                         ++*ticks;
                         if (work->load() > 0)
                             --*work;
                     },
                     [work](const qrxsim::ControllerModel &) { return work->load() > 0; }});
    });
    QTRY_COMPARE_WITH_TIMEOUT(ticks->load(), 3, 10000);
    const qint64 idleFrom = m_sim->nowMs();
    QTRY_VERIFY_WITH_TIMEOUT(m_sim->nowMs() >= idleFrom + 200, 10000);
    QCOMPARE(ticks->load(), 3);

    work->store(2); // nobody wakes the simulator for this
    const qint64 quietFrom = m_sim->nowMs();
    QTRY_VERIFY_WITH_TIMEOUT(m_sim->nowMs() >= quietFrom + 200, 10000);
    QCOMPARE(ticks->load(), 3);
    client.sendFrame(0x7266, QByteArray("{\"time\":1}\n"));
    QTRY_COMPARE_WITH_TIMEOUT(ticks->load(), 5, 10000);
}

void TestSim::throwingBehaviourKeepsServing_data()
{
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("logged");
    QTest::newRow("handler") << "handler" << "handler of 0x2002 failed: ";
    QTest::newRow("tick") << "tick" << "tick choking failed: ";
    QTest::newRow("connect hook") << "hook" << "connect hook choking failed: ";
}

void TestSim::throwingBehaviourKeepsServing()
{
    QFETCH(QString, where);
    QFETCH(QString, logged);
    // jsoncpp throws when a string is read as an integer.
    const auto choke = [] { (void)Json::Value("one").asInt(); };
    m_sim->withSimulator([&](Simulator &sim) {
        if (where == QLatin1String("handler"))
            sim.setHandler({0x2002, [choke](Session &, const ReceivedFrame &) { choke(); }});
        else if (where == QLatin1String("tick"))
            sim.addTick({"choking", [choke](Simulator &, qint64) { choke(); }});
        else
            sim.addConnectHook({"choking", [choke](Session &) { choke(); }});
    });
    LogCapture log("sim");
    WireClient client;
    connectClient(client);
    client.sendFrame(0x2002, QByteArray("{}\n"));
    client.sendFrame(kHeartbeat, heartbeat(8));
    QVERIFY(client.waitForFrame(kHeartbeatAnswer));
    QTRY_VERIFY_WITH_TIMEOUT(!log.lines().filter(logged).isEmpty(), 5000);
    QCOMPARE(m_sim->clientCount(), 1);
    // No more sim lines once the capture is gone.
    m_sim->withSimulator([](Simulator &sim) { sim.clearTicksAndConnectHooks(); });
}

void TestSim::commandCodesAreUnique()
{
    // Two families answering one code would leave one of them dead.
    QSet<quint16> seen;
    for (const qrxsim::CommandEntry &entry : qrxsim::commandTable()) {
        QVERIFY2(!seen.contains(entry.code), qPrintable(QString::number(entry.code, 16)));
        QVERIFY(entry.handle);
        seen.insert(entry.code);
    }
    QVERIFY(seen.contains(kHeartbeat));
}

void TestSim::hostilePayloadsToEveryCommand_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("not JSON") << QByteArray("\xff\xfe{{{");
    QTest::newRow("array") << QByteArray("[1,2,3]\n");
    QTest::newRow("empty object") << QByteArray("{}\n");
    QTest::newRow("robot out of range") << QByteArray("{\"robot\":99,\"num\":-1,\"index\":100000}\n");
    QTest::newRow("negative robot") << QByteArray("{\"robot\":-1,\"axis\":-7,\"data\":[]}\n");
    QTest::newRow("wrong types") << QByteArray("{\"robot\":\"one\",\"data\":\"x\",\"pos\":{}}\n");
}

void TestSim::hostilePayloadsToEveryCommand()
{
    // Every handler of the full controller (with its start-up reports and
    // ticks) takes malformed requests without dying and keeps serving.
    QFETCH(QByteArray, payload);
    m_sim.reset();
    m_sim = std::make_unique<SimHandle>(testsupport::loopbackAddress());
    QVERIFY(m_sim->start());
    WireClient client;
    connectClient(client);
    QByteArray burst;
    int count = 0;
    for (const qrxsim::CommandEntry &entry : qrxsim::commandTable()) {
        if (entry.code == kHeartbeat)
            continue;
        burst += qrx::encodeFrame(entry.code, payload);
        ++count;
    }
    client.sendBytes(burst);
    client.sendFrame(kHeartbeat, heartbeat(123));
    QVERIFY(client.waitFor([&] {
        const auto answers = client.frames(kHeartbeatAnswer);
        return !answers.isEmpty() && answers.last().payload == heartbeat(123);
    }, 20000));
    QCOMPARE(m_sim->received().size() - m_sim->received(kHeartbeat).size(), count);
    QCOMPARE(m_sim->clientCount(), 1);
}

QTEST_GUILESS_MAIN(TestSim)
#include "tst_sim.moc"
