// The qrx_ extensions of the host API against qrx-sim: a bounded wait ends
// when the controller stays silent and says so, matched replies keep a
// getter waiting for its own answer, the last message reaches a C buffer,
// move completion, and a host that sets none of it sends the same frames.

#include "FamilyFixture.h"
#include "HostThread.h"

#include <QElapsedTimer>

#include <array>
#include <cmath>
#include <memory>
#include <vector>

using namespace familytest;

namespace {

// A getter run by a host thread; value is what it returned (or the first
// element it copied), timedOut what qrx_last_call_timed_out() said after it.
using Getter = std::function<double()>;

struct Waiter
{
    double value = -1.0;
    int timedOut = -1;
    qint64 elapsedMs = -1;
    HostThread thread; // last: joined before the results go

    void start(Getter getter)
    {
        thread.start([this, getter] {
            QElapsedTimer clock;
            clock.start();
            value = getter();
            timedOut = qrx_last_call_timed_out();
            elapsedMs = clock.elapsed();
        });
    }
    bool done() const { return thread.done(); }
};

double firstOf(void (*read)(double *))
{
    std::array<double, 16> out{};
    out.fill(-1.0);
    read(out.data());
    return out[0];
}

double positionFirst()
{
    std::array<double, 6> out{};
    get_current_position(out.data(), 0);
    return out[0];
}

QByteArray positionPayload(double first)
{
    return qrx::api::payloadOf(positionReport(first));
}

} // namespace

Q_DECLARE_METATYPE(Getter)

class TestExtensions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void boundedWaitReturnsCache_data();
    void boundedWaitReturnsCache();
    void answeredCallIsNotTimedOut();
    void timedOutIsPerThread();
    void matchedReplies_data();
    void matchedReplies();
    void noExtensionsSameFrames_data();
    void noExtensionsSameFrames();
    void lastMessageIntoBuffer_data();
    void lastMessageIntoBuffer();
    void moveDone();
    void moveNotDoneInTime();
    void cleanupTestCase();

private:
    Waiter &newWaiter();
    void releaseWaiters();

    Controller m_controller;
    std::vector<std::unique_ptr<Waiter>> m_waiters;
};

void TestExtensions::initTestCase()
{
    QVERIFY(m_controller.start());
    setErrorHandle(hosterrors::collect);
}

void TestExtensions::init()
{
    qrx_set_wait_timeout(0);
    qrx_set_matched_replies(0);
    m_controller.sim->setSilent(false);
    QVERIFY(m_controller.settle());
}

void TestExtensions::cleanup()
{
    releaseWaiters();
    qrx_set_wait_timeout(0);
    qrx_set_matched_replies(0);
    m_controller.sim->setSilent(false);
}

Waiter &TestExtensions::newWaiter()
{
    m_waiters.push_back(std::make_unique<Waiter>());
    return *m_waiters.back();
}

void TestExtensions::releaseWaiters()
{
    // A failed case must not leave a thread blocked: every answer of the
    // reply table goes out until each waiter has returned.
    const quint16 answers[] = {0x2003, 0x2103, 0x2203, 0x2303, 0x2603, 0x2F08, 0x3603, 0x3606, 0x3D03, 0x560C};
    for (const auto &waiter : m_waiters) {
        while (waiter->thread.started() && !waiter->done()) {
            for (const quint16 code : answers)
                m_controller.sim->sendJson(code, Json::Value(Json::objectValue));
            waiter->thread.waitDone(200);
        }
    }
    m_waiters.clear();
}

void TestExtensions::boundedWaitReturnsCache_data()
{
    QTest::addColumn<Getter>("getter");
    QTest::addColumn<int>("query");
    QTest::addColumn<int>("reportCode");
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<double>("cached");
    QTest::addColumn<int>("matched");

    const QByteArray position = positionPayload(41.5);
    for (int matched : {0, 1}) {
        const char *how = matched ? "matched" : "any reply";
        QTest::addRow("position, %s", how) << Getter(positionFirst) << 0x2F07 << 0x2F08 << position << 41.5 << matched;
        QTest::addRow("mode, %s", how) << Getter([] { return double(get_current_mode()); }) << 0x2102 << 0x2103
                                      << json("{\"mode\":1}") << 1.0 << matched;
        QTest::addRow("digital outputs, %s", how)
            << Getter([] { return firstOf(get_dout); }) << 0x3602 << 0x3603
            << json("{\"status\":[1,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]}") << 1.0 << matched;
        QTest::addRow("global variable, %s", how)
            << Getter([] { return get_global_variant("GI004"); }) << 0x560B << 0x560C
            << json("{\"varName\":\"GI004\",\"varType\":2,\"varValue\":17}") << 17.0 << matched;
        QTest::addRow("running state, %s", how) << Getter([] { return double(get_robot_running_state()); }) << 0x3D02
                                                << 0x3D03 << json("{\"robot\":1,\"status\":2}") << 2.0 << matched;
    }
}

void TestExtensions::boundedWaitReturnsCache()
{
    QFETCH(Getter, getter);
    QFETCH(int, query);
    QFETCH(int, reportCode);
    QFETCH(QByteArray, report);
    QFETCH(double, cached);
    QFETCH(int, matched);

    // The cache holds the value of an earlier report; then the controller
    // falls silent.
    m_controller.sim->send(quint16(reportCode), report);
    QVERIFY(m_controller.settle());
    m_controller.sim->setSilent(true);
    m_controller.sim->clearReceived();
    constexpr int kBoundMs = 300;
    qrx_set_wait_timeout(kBoundMs);
    qrx_set_matched_replies(matched);
    QCOMPARE(qrx_wait_timeout(), kBoundMs);

    Waiter &waiter = newWaiter();
    waiter.start(getter);
    QVERIFY(m_controller.sim->waitForFrame(quint16(query)));
    QTRY_VERIFY_WITH_TIMEOUT(waiter.done(), 10000);
    QCOMPARE(waiter.timedOut, 1);
    QVERIFY2(waiter.elapsedMs >= kBoundMs - 5, qPrintable(QString::number(waiter.elapsedMs)));
    QCOMPARE(waiter.value, cached);
}

void TestExtensions::answeredCallIsNotTimedOut()
{
    qrx_set_wait_timeout(5000);
    m_controller.model([](qrxsim::ControllerModel &m) { m.operationMode = 2; });
    // The controller answers: the call ends on the reply, the flag says so.
    QCOMPARE(get_current_mode(), 2);
    QCOMPARE(qrx_last_call_timed_out(), 0);

    // The same thread runs out once, then is answered again.
    m_controller.sim->setSilent(true);
    qrx_set_wait_timeout(150);
    get_current_mode();
    QCOMPARE(qrx_last_call_timed_out(), 1);
    m_controller.sim->setSilent(false);
    qrx_set_wait_timeout(5000);
    QCOMPARE(get_current_mode(), 2);
    QCOMPARE(qrx_last_call_timed_out(), 0);
}

void TestExtensions::timedOutIsPerThread()
{
    qrx_set_wait_timeout(5000);
    get_current_mode();
    QCOMPARE(qrx_last_call_timed_out(), 0);

    m_controller.sim->setSilent(true);
    qrx_set_wait_timeout(150);
    Waiter &waiter = newWaiter();
    waiter.start([] { return double(get_current_coord()); });
    QTRY_VERIFY_WITH_TIMEOUT(waiter.done(), 10000);
    QCOMPARE(waiter.timedOut, 1);
    QCOMPARE(qrx_last_call_timed_out(), 0); // this thread's last call was answered
}

void TestExtensions::matchedReplies_data()
{
    QTest::addColumn<Getter>("getter");
    QTest::addColumn<int>("query");
    QTest::addColumn<int>("answerCode");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<double>("answered");
    QTest::addColumn<int>("otherCode");
    QTest::addColumn<QByteArray>("other");

    QTest::newRow("position, servo report first")
        << Getter(positionFirst) << 0x2F07 << 0x2F08 << positionPayload(77.0) << 77.0 << 0x2003
        << json("{\"mode\":0,\"robot\":1,\"status\":1}");
    QTest::newRow("position, variable report first")
        << Getter(positionFirst) << 0x2F07 << 0x2F08 << positionPayload(-12.0) << -12.0 << 0x560C
        << json("{\"varName\":\"GI001\",\"varType\":2,\"varValue\":3}");
    QTest::newRow("mode, coordinate report first")
        << Getter([] { return double(get_current_mode()); }) << 0x2102 << 0x2103 << json("{\"mode\":2}") << 2.0
        << 0x2203 << json("{\"coord\":3,\"robot\":1}");
    QTest::newRow("digital inputs, digital outputs first")
        << Getter([] { return firstOf(get_din); }) << 0x3605 << 0x3606
        << json("{\"status\":[1,1,0,0,0,0,0,0,0,0,0,0,0,0,0,0]}") << 1.0 << 0x3603
        << json("{\"status\":[0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]}");
    QTest::newRow("running state, position first")
        << Getter([] { return double(get_robot_running_state()); }) << 0x3D02 << 0x3D03
        << json("{\"robot\":1,\"status\":2}") << 2.0 << 0x2F08 << positionPayload(5.0);
}

void TestExtensions::matchedReplies()
{
    QFETCH(Getter, getter);
    QFETCH(int, query);
    QFETCH(int, answerCode);
    QFETCH(QByteArray, answer);
    QFETCH(double, answered);
    QFETCH(int, otherCode);
    QFETCH(QByteArray, other);

    // (Without them the first waking reply ends the wait: tst_requestwait.)
    QVERIFY(m_controller.settle());
    // Cache: the values of all-zero reports, so "answered" is new.
    m_controller.sim->send(0x2F08, positionPayload(0.0));
    m_controller.sim->send(0x2103, json("{\"mode\":0}"));
    m_controller.sim->send(0x3606, json("{\"status\":[0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]}"));
    m_controller.sim->send(0x3D03, json("{\"robot\":1,\"status\":0}"));
    QVERIFY(m_controller.settle());
    m_controller.sim->setSilent(true);
    m_controller.sim->clearReceived();
    qrx_set_matched_replies(1);

    Waiter &waiter = newWaiter();
    waiter.start(getter);
    QVERIFY(m_controller.sim->waitForFrame(quint16(query)));
    m_controller.sim->send(quint16(otherCode), other);
    // The other report and the settle marker (itself a waking reply) have
    // been handled, and the getter still waits.
    QVERIFY(m_controller.settle());
    QVERIFY(!waiter.done());
    m_controller.sim->send(quint16(answerCode), answer);
    QTRY_VERIFY_WITH_TIMEOUT(waiter.done(), 10000);
    QCOMPARE(waiter.value, answered);
    QCOMPARE(waiter.timedOut, 0);
}

void TestExtensions::noExtensionsSameFrames_data()
{
    frameColumns();
    const auto row = [](const char *name, Call call) {
        QTest::newRow(name) << call << QStringList();
    };
    row("get_current_position", [] { positionFirst(); });
    row("get_dout", [] { firstOf(get_dout); });
    row("get_current_mode", [] { get_current_mode(); });
    row("get_global_variant", [] { get_global_variant("GD003"); });
    row("servo_power_on", [] { servo_power_on(); });
    row("servo_power_off", [] { servo_power_off(); });
    row("continue_job", [] { continue_job(); });
}

void TestExtensions::noExtensionsSameFrames()
{
    QFETCH(Call, call);
    // Each wait ends on the controller's answer either way; what goes on the
    // wire must not depend on the extensions.
    const QStringList plain = m_controller.framesOf(call);
    QVERIFY(m_controller.settle());
    qrx_set_wait_timeout(5000);
    qrx_set_matched_replies(1);
    const QStringList extended = m_controller.framesOf(call);
    QCOMPARE(qrx_last_call_timed_out(), 0);
    QVERIFY(!plain.isEmpty());
    QCOMPARE(extended, plain);
}

void TestExtensions::lastMessageIntoBuffer_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("copied");

    const QString chinese = QStringLiteral("伺服报警"); // 4 characters of 3 bytes
    QTest::newRow("fits") << QStringLiteral("axis 3 overload") << 64 << QByteArray("axis 3 overload");
    QTest::newRow("exactly") << QStringLiteral("abcd") << 5 << QByteArray("abcd");
    QTest::newRow("shortened") << QStringLiteral("abcdef") << 4 << QByteArray("abc");
    QTest::newRow("one byte: only the NUL") << QStringLiteral("abc") << 1 << QByteArray("");
    QTest::newRow("whole characters") << chinese << 13 << chinese.toUtf8();
    QTest::newRow("cut inside the third character") << chinese << 9 << chinese.left(2).toUtf8();
    QTest::newRow("cut after the second character") << chinese << 7 << chinese.left(2).toUtf8();
}

void TestExtensions::lastMessageIntoBuffer()
{
    QFETCH(QString, text);
    QFETCH(int, size);
    QFETCH(QByteArray, copied);

    Json::Value message(Json::objectValue);
    message["data"] = text.toStdString();
    m_controller.sim->sendJson(0x2B03, message);
    QTRY_VERIFY_WITH_TIMEOUT(hosterrors::seen(QStringLiteral("错误： ") + text), 10000);

    std::array<char, 80> buffer;
    buffer.fill('#');
    const int length = qrx_last_message(buffer.data(), size);
    QCOMPARE(length, int(text.toUtf8().size()));
    QCOMPARE(QByteArray(buffer.data()), copied);
    QCOMPARE(buffer[std::size_t(size)], '#'); // nothing written past size

    // A null buffer or no room: only the length.
    QCOMPARE(qrx_last_message(nullptr, 10), length);
    buffer.fill('#');
    QCOMPARE(qrx_last_message(buffer.data(), 0), length);
    QCOMPARE(buffer[0], '#');
}

void TestExtensions::moveDone()
{
    QVERIFY(m_controller.servoRunning());
    double start[6] = {};
    get_current_position(start, 0);
    double target[6] = {start[0] + 5.0, start[1] - 4.0, start[2] + 3.0, start[3], start[4] + 2.0, start[5] - 1.0};
    robot_movj(target, 100, 0, 100, 100);
    QCOMPARE(qrx_wait_move_done(target, 0, 1e-3, 30000), 1);
    QCOMPARE(qrx_last_call_timed_out(), 0);
    double reached[6] = {};
    get_current_position(reached, 0);
    for (int i = 0; i < 6; ++i)
        QVERIFY2(std::fabs(reached[i] - target[i]) <= 1e-3, qPrintable(QString::number(i)));
    // Nothing running: the running-state form ends at once.
    QCOMPARE(qrx_wait_move_done(nullptr, 0, 0.0, 5000), 1);
}

void TestExtensions::moveNotDoneInTime()
{
    double here[6] = {};
    get_current_position(here, 0);
    double elsewhere[6] = {here[0] + 90.0, here[1], here[2], here[3], here[4], here[5]};
    QElapsedTimer clock;
    clock.start();
    // No move toward it: the bound ends the wait.
    QCOMPARE(qrx_wait_move_done(elsewhere, 0, 0.01, 300), 0);
    QVERIFY(clock.elapsed() >= 295);
    QCOMPARE(qrx_last_call_timed_out(), 1);

    // A silent controller cannot hold it past its bound either.
    m_controller.sim->setSilent(true);
    clock.restart();
    QCOMPARE(qrx_wait_move_done(elsewhere, 0, 0.01, 300), 0);
    QVERIFY(clock.elapsed() < 10000);
    m_controller.sim->setSilent(false);

    // The running state last reported says a job runs, and no newer one
    // comes: not done.
    QVERIFY(m_controller.holdRunningState(2));
    m_controller.sim->setSilent(true);
    QCOMPARE(qrx_wait_move_done(nullptr, 0, 0.0, 300), 0);
    m_controller.sim->setSilent(false);
    QCOMPARE(qrx_wait_move_done(nullptr, 0, 0.0, 5000), 1);
}

void TestExtensions::cleanupTestCase()
{
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_MAIN(TestExtensions)
#include "tst_extensions.moc"
