// The simulated controller seen by a bare client, where no host call shows
// it: an external axis that jogs while steps come and stops without them,
// and the refusals no other suite provokes. (What a host sees of the
// simulated cell, its reports, loop-backs, moves, drives, jobs and tools, is
// checked through the exported functions in tests/api.)

#include "../sim/WireClient.h"
#include "common/Payload.h"
#include "sim/SimHandle.h"
#include "support/Loopback.h"

#include <QtTest>

namespace {

QByteArray json(const char *text) { return QByteArray(text) + '\n'; }

Json::Value parsed(const QByteArray &payload)
{
    Json::Value v;
    qrx::parsePayload(payload, v);
    return v;
}

} // namespace

class TestSimCell : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void jogMovesWhileStepsCome();
    void refusals_data();
    void refusals();

private:
    // A reply to the client's frame, the first with that code since clear().
    Json::Value answer(quint16 command, const char *payload, quint16 reply);

    std::unique_ptr<qrxsim::SimHandle> m_sim;
    WireClient m_client;
};

void TestSimCell::initTestCase()
{
    m_sim = std::make_unique<qrxsim::SimHandle>(testsupport::loopbackAddress());
    QVERIFY(m_sim->start());
    QVERIFY(m_client.connectTo(m_sim->address(), 6001));
    QVERIFY(m_sim->waitForClient());
}

void TestSimCell::init()
{
    m_sim->withModel([](qrxsim::ControllerModel &m) {
        m.io = qrxsim::SimIo();
        m.globals = qrxsim::SimGlobals();
        m.motion = qrxsim::SimMotion();
        m.job = qrxsim::SimJobRunner();
        std::fill(m.positionDeg, m.positionDeg + 7, 0.0);
        m.servoStatus = 3;
        m.deadman = 1;
        m.operationMode = 0;
        m.runStatus = 0;
        m.speed = 50;
    });
    m_client.clear();
}

Json::Value TestSimCell::answer(quint16 command, const char *payload, quint16 reply)
{
    m_client.clear();
    m_client.sendFrame(command, payload ? json(payload) : QByteArray());
    if (!m_client.waitForFrame(reply, 5000))
        return Json::Value();
    return parsed(m_client.frames(reply).first().payload);
}

void TestSimCell::jogMovesWhileStepsCome()
{
    double axis = 0;
    auto read = [this, &axis] { m_sim->withModel([&axis](qrxsim::ControllerModel &m) { axis = m.motion.sync[1]; }); };
    m_client.sendFrame(0x2901, json(R"({"axis":9,"direction":-1})"));
    QTRY_VERIFY_WITH_TIMEOUT((read(), axis < 0.0), 10000);
    // Without further steps the axis stops on its own within the hold time.
    double last = 0;
    QTRY_VERIFY_WITH_TIMEOUT((read(), last == axis ? true : (last = axis, false)), 10000);
    m_client.sendFrame(0x2901, json(R"({"axis":9,"direction":1})"));
    m_client.sendFrame(0x2902, json(R"({"axis":9})"));
    answer(0x3503, R"({"robot":1})", 0x3504); // both frames taken, in order
    int jogAxis = -1;
    m_sim->withModel([&jogAxis](qrxsim::ControllerModel &m) { jogAxis = m.motion.jogAxis; });
    QCOMPARE(jogAxis, 0);
}

void TestSimCell::refusals_data()
{
    QTest::addColumn<int>("servo");
    QTest::addColumn<int>("command");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("text");

    QTest::newRow("move, too few values") << 3 << 0x4501 << QByteArray(R"({"pos":[1,2],"vel":10})")
                                          << "move refused: bad target points";
    QTest::newRow("jog, servo off") << 1 << 0x2901 << QByteArray(R"({"axis":1,"direction":1})")
                                    << "jog refused: the servo is not running";
    QTest::newRow("continue, nothing paused") << 3 << 0x2501 << QByteArray(R"({"continueRun":true})")
                                              << "continue refused: no paused job";
}

void TestSimCell::refusals()
{
    QFETCH(int, servo);
    QFETCH(int, command);
    QFETCH(QByteArray, payload);
    QFETCH(QString, text);
    m_sim->withModel([servo](qrxsim::ControllerModel &m) {
        m.servoStatus = servo;
        m.deadman = servo == 3 ? 1 : 0;
    });
    const Json::Value error = answer(quint16(command), payload.constData(), 0x2B03);
    QCOMPARE(QString::fromStdString(error["data"].asString()), text);
    bool still = false;
    m_sim->withModel([&still](qrxsim::ControllerModel &m) {
        still = m.motion.waypoints.empty() && m.motion.jogAxis == 0 && m.runStatus == 0;
    });
    QVERIFY(still);
}

QTEST_GUILESS_MAIN(TestSimCell)
#include "tst_sim_cell.moc"
