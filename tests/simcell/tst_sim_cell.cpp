// The simulated controller's IO, variables, motion, jobs and tool selection
// seen by a bare client: which report answers each query (and with which
// keys), outputs looped back to inputs, moves and jogs over time, the drives
// coming up, the job runner's states, and the refusals.

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
    void queryAnsweredByItsReport_data();
    void queryAnsweredByItsReport();
    void outputsLoopBackToInputs();
    void variablesAndPositionsStored();
    void moveTravelsAtItsSpeed();
    void jogMovesWhileStepsCome();
    void drivesComeUpWithTheDeadman();
    void jobRunsLineByLine();
    void refusals_data();
    void refusals();
    void toolSelectionReported();

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

void TestSimCell::queryAnsweredByItsReport_data()
{
    QTest::addColumn<int>("query");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("reply");
    // member:length of each array the reply must carry, or member:0 for a number
    QTest::addColumn<QStringList>("members");

    QTest::newRow("digital outputs") << 0x3602 << QByteArray() << 0x3603 << QStringList{"status:16"};
    QTest::newRow("digital inputs") << 0x3605 << QByteArray() << 0x3606 << QStringList{"status:16"};
    QTest::newRow("analog outputs") << 0x3608 << QByteArray() << 0x3609 << QStringList{"status:16"};
    QTest::newRow("analog inputs") << 0x360A << QByteArray() << 0x360B << QStringList{"status:16"};
    QTest::newRow("position") << 0x2F07 << QByteArray(R"({"coord":1,"robot":1})") << 0x2F08
                              << QStringList{"robot:0", "coord:0", "pos:7", "posDeg:7"};
    QTest::newRow("external axes") << 0x7012 << QByteArray(R"({"coord":0,"robot":1})") << 0x7013
                                   << QStringList{"robot:0", "coord:0", "pos:5"};
    QTest::newRow("global position") << 0x5605 << QByteArray(R"({"posName":"P1","robot":1})") << 0x5606
                                     << QStringList{"robot:0", "posValue:14"};
    QTest::newRow("global variable") << 0x560B << QByteArray(R"({"varName":"GI001","varType":2})") << 0x560C
                                     << QStringList{"varType:0", "varValue:0"};
    QTest::newRow("motor speeds") << 0x2A04 << QByteArray(R"({"robot":1})") << 0x2A05
                                  << QStringList{"vel:7", "maxVel:7", "velSync:5", "maxVelSync:5"};
    QTest::newRow("motor torques") << 0x2A06 << QByteArray(R"({"robot":1})") << 0x2A07
                                   << QStringList{"torq:7", "theoTorq:7", "maxTorq:7", "maxTheoTorq:7", "torqSync:5",
                                                  "maxTorqSync:5"};
    QTest::newRow("motor load") << 0x2A0A << QByteArray(R"({"robot":1})") << 0x2A0B
                                << QStringList{"motorOverload:7", "motorOverloadSync:5"};
    QTest::newRow("running line") << 0x3503 << QByteArray(R"({"robot":1})") << 0x3504 << QStringList{"num:0"};
    QTest::newRow("cycle figures") << 0x3309 << QByteArray(R"({"robot":1})") << 0x330A << QStringList{"value:7"};
}

void TestSimCell::queryAnsweredByItsReport()
{
    QFETCH(int, query);
    QFETCH(QByteArray, payload);
    QFETCH(int, reply);
    QFETCH(QStringList, members);
    const Json::Value v = answer(quint16(query), payload.isEmpty() ? nullptr : payload.constData(), quint16(reply));
    QVERIFY2(v.isObject(), "no reply");
    for (const QString &member : members) {
        const QStringList parts = member.split(':');
        const Json::Value m = v.get(parts[0].toStdString(), Json::Value());
        const int length = parts[1].toInt();
        if (length == 0)
            QVERIFY2(m.isNumeric(), qPrintable(member));
        else
            QVERIFY2(m.isArray() && int(m.size()) == length, qPrintable(member));
    }
}

void TestSimCell::outputsLoopBackToInputs()
{
    m_client.sendFrame(0x3601, json(R"({"port":5,"status":1})"));
    m_client.sendFrame(0x3601, json(R"({"port":0,"status":1})")); // no such port
    m_client.sendFrame(0x3607, json(R"({"port":16,"value":2.5})"));
    const Json::Value din = answer(0x3605, nullptr, 0x3606);
    for (int i = 0; i < 16; ++i)
        QCOMPARE(din["status"][i].asDouble(), i == 4 ? 1.0 : 0.0);
    const Json::Value ain = answer(0x360A, nullptr, 0x360B);
    QCOMPARE(ain["status"][15].asDouble(), 2.5);
    QCOMPARE(ain["status"][0].asDouble(), 0.0);
}

void TestSimCell::variablesAndPositionsStored()
{
    m_client.sendFrame(0x5607, json(R"({"varName":"GI002","varType":2,"varValue":7.9})"));
    m_client.sendFrame(0x5607, json(R"({"varName":"GD003","varType":3,"varValue":-1.25})"));
    m_client.sendFrame(0x5604, json(R"({"coord":1,"pos":[1,2,3,4,5,6,7,8,9,10,11,12,13,14],"posName":"P9","robot":1})"));
    Json::Value v = answer(0x560B, R"({"varName":"GI002","varType":2})", 0x560C);
    QVERIFY(v["varValue"].isIntegral());
    QCOMPARE(v["varValue"].asInt(), 7);
    v = answer(0x560B, R"({"varName":"GD003","varType":3})", 0x560C);
    QCOMPARE(v["varValue"].asDouble(), -1.25);
    QCOMPARE(v["varName"].asString(), std::string("GD003"));
    v = answer(0x5605, R"({"posName":"P9","robot":1})", 0x5606);
    QCOMPARE(v["posValue"][13].asDouble(), 14.0);
    QCOMPARE(v["posName"].asString(), std::string("P9"));
}

// 20 units at 50 % of 100 units/s: 0.4 s, every axis arriving together.
void TestSimCell::moveTravelsAtItsSpeed()
{
    m_client.sendFrame(0x4501, json(R"({"acc":1,"coord":0,"dec":1,"pos":[20,-10,0,0,0,0],"robot":1,"vel":50})"));
    const qint64 start = m_sim->nowMs();
    double halfway[2] = {};
    QTRY_VERIFY_WITH_TIMEOUT((m_sim->withModel([&halfway](qrxsim::ControllerModel &m) {
                                  halfway[0] = m.positionDeg[0];
                                  halfway[1] = m.positionDeg[1];
                              }),
                              halfway[0] > 5.0),
                             10000);
    QVERIFY2(qAbs(halfway[1] + halfway[0] / 2) < 1e-6, "axes not moving together");
    double at = 0;
    QTRY_COMPARE_WITH_TIMEOUT((m_sim->withModel([&at](qrxsim::ControllerModel &m) { at = m.positionDeg[0]; }), at),
                              20.0, 10000);
    QVERIFY2(m_sim->nowMs() - start >= 350, qPrintable(QString::number(m_sim->nowMs() - start)));
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

void TestSimCell::drivesComeUpWithTheDeadman()
{
    m_sim->withModel([](qrxsim::ControllerModel &m) {
        m.servoStatus = 1;
        m.deadman = 1;
    });
    QVERIFY(m_client.waitForFrame(0x2003, 10000));
    QCOMPARE(parsed(m_client.frames(0x2003).first().payload)["status"].asInt(), 3);
    m_client.clear();
    m_sim->withModel([](qrxsim::ControllerModel &m) { m.deadman = 0; });
    QVERIFY(m_client.waitForFrame(0x2003, 10000));
    QCOMPARE(parsed(m_client.frames(0x2003).first().payload)["status"].asInt(), 1);
}

void TestSimCell::jobRunsLineByLine()
{
    m_client.sendFrame(0x5011, json(R"({"index":1,"robot":1})"));
    m_client.sendFrame(0x2501, json(R"({"continueRun":0,"jobname":"PICK","line":1,"robot":1,"startOver":true})"));
    QVERIFY(m_client.waitForFrame(0x3D03));
    QCOMPARE(parsed(m_client.frames(0x3D03).first().payload)["status"].asInt(), 2);
    QTRY_VERIFY_WITH_TIMEOUT(answer(0x3503, R"({"robot":1})", 0x3504)["num"].asInt() >= 3, 10000);
    m_client.sendFrame(0x2401, json(R"({"robot":1,"type":1})"));
    QVERIFY(m_client.waitFor([this] { return m_client.frames(0x3D03).size() >= 1 && parsed(m_client.frames(0x3D03).last().payload)["status"].asInt() == 1; }));
    m_client.clear();
    m_client.sendFrame(0x2501, json(R"({"continueRun":1,"line":1,"robot":1,"startOver":false})"));
    QVERIFY(m_client.waitForFrame(0x3D03));
    QCOMPARE(parsed(m_client.frames(0x3D03).first().payload)["status"].asInt(), 2);
    m_client.clear();
    QVERIFY(m_client.waitForFrame(0x3D03, 10000)); // the end of the job
    QCOMPARE(parsed(m_client.frames(0x3D03).first().payload)["status"].asInt(), 0);
    const Json::Value cycle = answer(0x3309, R"({"robot":1})", 0x330A);
    QCOMPARE(cycle["value"][2].asInt(), 1);  // one cycle done
    QCOMPARE(cycle["value"][6].asInt(), 12); // lines of PICK
}

void TestSimCell::refusals_data()
{
    QTest::addColumn<int>("servo");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("command");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("text");

    QTest::newRow("move, servo off") << 0 << 0 << 0x4502 << QByteArray(R"({"pos":[1,2,3,4,5,6],"vel":10})")
                                     << "move refused: the servo is not running";
    QTest::newRow("move, too few values") << 3 << 0 << 0x4501 << QByteArray(R"({"pos":[1,2],"vel":10})")
                                          << "move refused: bad target points";
    QTest::newRow("jog, servo off") << 1 << 0 << 0x2901 << QByteArray(R"({"axis":1,"direction":1})")
                                    << "jog refused: the servo is not running";
    QTest::newRow("jog, remote mode") << 3 << 1 << 0x2901 << QByteArray(R"({"axis":1,"direction":1})")
                                      << "jog refused: not in teach mode";
    QTest::newRow("unknown job") << 3 << 0 << 0x2501 << QByteArray(R"({"continueRun":0,"jobname":"X","line":1})")
                                 << "job not found: X";
    QTest::newRow("job, servo off") << 0 << 0 << 0x2501 << QByteArray(R"({"jobname":"DEMO","line":2})")
                                    << "job refused: the servo is not running";
    QTest::newRow("continue, nothing paused") << 3 << 0 << 0x2501 << QByteArray(R"({"continueRun":true})")
                                              << "continue refused: no paused job";
    QTest::newRow("open unknown job") << 3 << 0 << 0x3114 << QByteArray(R"({"jobName":"Y"})") << "job not found: Y";
}

void TestSimCell::refusals()
{
    QFETCH(int, servo);
    QFETCH(int, mode);
    QFETCH(int, command);
    QFETCH(QByteArray, payload);
    QFETCH(QString, text);
    m_sim->withModel([servo, mode](qrxsim::ControllerModel &m) {
        m.servoStatus = servo;
        m.deadman = servo == 3 ? 1 : 0;
        m.operationMode = mode;
    });
    const Json::Value error = answer(quint16(command), payload.constData(), 0x2B03);
    QCOMPARE(QString::fromStdString(error["data"].asString()), text);
    bool still = false;
    m_sim->withModel([&still](qrxsim::ControllerModel &m) {
        still = m.motion.waypoints.empty() && m.motion.jogAxis == 0 && m.runStatus == 0;
    });
    QVERIFY(still);
}

void TestSimCell::toolSelectionReported()
{
    const Json::Value v = answer(0x380A, R"({"curToolNum":6,"robot":1})", 0x380C);
    QCOMPARE(v["curToolNum"].asInt(), 6);
    QCOMPARE(answer(0x380B, R"({"robot":1})", 0x380C)["curToolNum"].asInt(), 6);
}

QTEST_GUILESS_MAIN(TestSimCell)
#include "tst_sim_cell.moc"
