// Continuous motion through the exported functions: the mode, start,
// suspend and stop frames, the queue records turned into instruction objects
// under "data" (0x50B4), the variable classes, the range report, and what
// the simulated controller makes of it all.

#include "QueueRecords.h"
#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "sim/SimHandle.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QtTest>
#include <json/reader.h>

#include <cstring>
#include <functional>
#include <memory>

using Records = QVector<qrx_motion_record>;
using Call = std::function<void()>;
using Frames = QVector<QPair<int, QByteArray>>;
Q_DECLARE_METATYPE(Records)
Q_DECLARE_METATYPE(Call)
Q_DECLARE_METATYPE(Frames)

namespace {

const QString kOutOfRange = QStringLiteral("参数值超限");

using queuerecords::constant;
using queuerecords::put;
using queuerecords::record;
using queuerecords::variable;

// MOVJ/MOVL to a named position (10, 20, ... 60) given with the record,
// speed in percent, smoothing level 1.
qrx_motion_record move(int type, double speed, const char *target)
{
    qrx_motion_record r = queuerecords::move(type, {10.0, 20.0, 30.0, 40.0, 50.0, 60.0}, speed);
    r.u.move.pl = constant(1);
    put(r.u.move.positionId, target);
    put(r.u.move.pos.name, target);
    return r;
}

qrx_motion_record dout(int port, int value)
{
    qrx_motion_record r = record(16);
    r.u.io.portId = port;
    r.u.io.portValue = value;
    return r;
}

qrx_motion_record timer(qrx_param duration)
{
    qrx_motion_record r = record(7);
    r.u.timer.duration = duration;
    return r;
}

qrx_condition condition(int group, int logic, const char *key, int logicType, const char *value)
{
    qrx_condition c;
    std::memset(&c, 0, sizeof c);
    c.group = group;
    c.logic = logic;
    put(c.key, key);
    c.logicType = logicType;
    put(c.desValue, value);
    return c;
}

Json::Value parsed(const QByteArray &payload)
{
    Json::Value root;
    Json::Reader().parse(payload.constData(), payload.constData() + payload.size(), root);
    return root;
}

const QSet<int> kFamily = {0x50B1, 0x50B4, 0x50B7, 0x50B8, 0x50B9, 0x2101};

} // namespace

class TestContinuous : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void noLinkSendsNothing_data();
    void noLinkSendsNothing();
    void connect();
    void controlFrames_data();
    void controlFrames();
    void modeReportReachesRobot();
    void queuePayloadBytes_data();
    void queuePayloadBytes();
    void moveRecord();
    void variableClasses_data();
    void variableClasses();
    void conditionGroups();
    void queueOrderAndSkippedTypes();
    void outOfRangeRefusesQueue_data();
    void outOfRangeRefusesQueue();
    void controllerWorksOffQueue();
    void cleanupTestCase();

private:
    // The payload of the next queue frame that `records` produce.
    QByteArray sendQueue(const Records &records);
    // Frames of the continuous-motion family received since the last clear.
    Frames familyFrames() const;

    std::unique_ptr<qrxsim::SimHandle> m_sim;
    QString m_address;
};

void TestContinuous::initTestCase()
{
    Robot::setLinkTimeBase(30000);
    m_address = testsupport::loopbackAddress();
    m_sim = std::make_unique<qrxsim::SimHandle>(m_address);
    QVERIFY2(m_sim->start(), qPrintable(m_address));
}

void TestContinuous::noLinkSendsNothing_data()
{
    QTest::addColumn<Call>("call");
    static const qrx_motion_record one = move(1, 50, "P0001");
    QTest::newRow("mode") << Call([] { continuous_motion_mode(1); });
    QTest::newRow("start") << Call([] { continuous_motion_start(); });
    QTest::newRow("suspend") << Call([] { continuous_motion_suspend(); });
    QTest::newRow("stop") << Call([] { continuous_motion_stop(); });
    QTest::newRow("queue") << Call([] { send_continuous_motion_queue(&one, 1); });
}

void TestContinuous::noLinkSendsNothing()
{
    QFETCH(Call, call);
    call();
    QCOMPARE(qrx::api::apiRobot(), nullptr);
    QCOMPARE(m_sim->clientCount(), 0);
}

void TestContinuous::connect()
{
    QCOMPARE(connect_robot(m_address.toLatin1().constData()), 1);
}

Frames TestContinuous::familyFrames() const
{
    Frames frames;
    for (const auto &frame : m_sim->received()) {
        if (kFamily.contains(frame.command))
            frames.append({frame.command, frame.payload});
    }
    return frames;
}

void TestContinuous::controlFrames_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<Frames>("expected");

    QTest::newRow("open") << Call([] { continuous_motion_mode(1); })
                          << Frames{{0x50B1, "{\"open\":true}\n"}};
    QTest::newRow("open with any non-zero") << Call([] { continuous_motion_mode(-7); })
                                            << Frames{{0x50B1, "{\"open\":true}\n"}};
    QTest::newRow("close, then teach mode") << Call([] { continuous_motion_mode(0); })
                                            << Frames{{0x50B1, "{\"open\":false}\n"}, {0x2101, "{\"mode\":0}\n"}};
    QTest::newRow("start") << Call([] { continuous_motion_start(); }) << Frames{{0x50B8, QByteArray()}};
    QTest::newRow("suspend") << Call([] { continuous_motion_suspend(); }) << Frames{{0x50B7, QByteArray()}};
    QTest::newRow("stop") << Call([] { continuous_motion_stop(); }) << Frames{{0x50B9, QByteArray()}};
}

void TestContinuous::controlFrames()
{
    QFETCH(Call, call);
    QFETCH(Frames, expected);
    m_sim->clearReceived();
    call();
    QVERIFY(m_sim->waitForFrame(quint16(expected.last().first)));
    QCOMPARE(familyFrames(), expected);
    QCOMPARE(m_sim->lastFrame(quint16(expected.last().first)).raw.size(), expected.last().second.size() + 10);
}

void TestContinuous::modeReportReachesRobot()
{
    Robot *robot = qrx::api::apiRobot();
    continuous_motion_mode(1);
    QTRY_COMPARE_WITH_TIMEOUT(int(robot->continuousMotionMode.load()), 1, 10000);
    bool open = false;
    m_sim->withModel([&](qrxsim::ControllerModel &model) { open = model.continuous.open; });
    QVERIFY(open);
}

QByteArray TestContinuous::sendQueue(const Records &records)
{
    m_sim->clearReceived();
    send_continuous_motion_queue(records.constData(), records.size());
    if (!m_sim->waitForFrame(0x50B4))
        return QByteArray();
    return m_sim->lastFrame(0x50B4).payload;
}

void TestContinuous::queuePayloadBytes_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<QByteArray>("payload");

    qrx_motion_record call = record(15);
    call.u.call.lineNoToCall = 3;
    put(call.u.call.jobName, "SUB1");
    QTest::newRow("CALL") << Records{call}
                          << QByteArray("{\"data\":[{\"jobName\":\"SUB1\",\"lineNoToCall\":3,\"logout\":false,"
                                        "\"type\":15,\"userParamInt\":0,\"userParamString\":\"\"}],\"robot\":1}\n");

    QTest::newRow("TIMER constant")
        << Records{timer(constant(2.5))}
        << QByteArray("{\"data\":[{\"desType\":0,\"desValue\":\"\",\"duration\":2.50,\"logout\":false,"
                      "\"paraTime\":{\"data\":2.50,\"value\":0,\"varname\":\"\"},\"type\":7,"
                      "\"userParamInt\":0,\"userParamString\":\"\"}],\"robot\":1}\n");

    QTest::newRow("TIMER global real")
        << Records{timer(variable("AUTO", "GD005"))}
        << QByteArray("{\"data\":[{\"desType\":3,\"desValue\":\"GD005\",\"duration\":0.0,\"logout\":false,"
                      "\"paraTime\":{\"data\":0.0,\"value\":3,\"varname\":\"GD005\"},\"type\":7,"
                      "\"userParamInt\":0,\"userParamString\":\"\"}],\"robot\":1}\n");

    QTest::newRow("DOUT")
        << Records{dout(3, 1)}
        << QByteArray("{\"data\":[{\"ParaGroup\":null,\"errorHanding\":0,\"group\":0,\"groupType\":0,"
                      "\"groupValue\":0,\"logout\":false,\"portId\":3,\"portValue\":1,\"rate\":0.0,\"sum\":0,"
                      "\"time\":0.0,\"type\":16,\"userParamInt\":0,\"userParamString\":\"\","
                      "\"valueIsVariant\":false,\"varName\":\"\",\"varType\":0}],\"robot\":1}\n");

    qrx_motion_record din = record(17);
    din.u.io.portId = 4;
    din.u.io.valueVar = variable("BOOL", "B007");
    din.logout = 1;
    din.userParamInt = 9;
    put(din.userParamString, "note");
    QTest::newRow("DIN into a local boolean, disabled")
        << Records{din}
        << QByteArray("{\"data\":[{\"ParaGroup\":null,\"errorHanding\":0,\"group\":0,\"groupType\":0,"
                      "\"groupValue\":0,\"logout\":true,\"portId\":4,\"portValue\":0,\"rate\":0.0,\"sum\":0,"
                      "\"time\":0.0,\"type\":17,\"userParamInt\":9,\"userParamString\":\"note\","
                      "\"valueIsVariant\":true,\"varName\":\"B007\",\"varType\":6}],\"robot\":1}\n");

    qrx_motion_record aito = record(18);
    aito.u.aito.ain = 1;
    aito.u.aito.aout = 2;
    aito.u.aito.para1 = 0.5;
    aito.u.aito.para2 = -1;
    aito.u.aito.para3 = 10;
    QTest::newRow("AITOON")
        << Records{aito}
        << QByteArray("{\"data\":[{\"ain\":1,\"aout\":2,\"logout\":false,\"para1\":0.50,\"para2\":-1.0,"
                      "\"para3\":10.0,\"type\":18,\"userParamInt\":0,\"userParamString\":\"\"}],\"robot\":1}\n");
}

void TestContinuous::queuePayloadBytes()
{
    QFETCH(Records, records);
    QFETCH(QByteArray, payload);
    QCOMPARE(sendQueue(records), payload);
}

void TestContinuous::moveRecord()
{
    qrx_motion_record movj = move(1, 50, "P0001");
    movj.u.move.acc = variable("AUTO", "GI010");
    movj.u.move.time = constant(200);
    movj.u.move.pos.ctype = 1;
    const QByteArray payload = sendQueue(Records{movj});
    QVERIFY(!payload.isEmpty());
    const Json::Value root = parsed(payload);
    QCOMPARE(root["robot"].asInt(), 1);
    QCOMPARE(root["data"].size(), 1u);
    const Json::Value &m = root["data"][0];
    QCOMPARE(m["type"].asInt(), 1);
    QCOMPARE(m["positionId"].asString(), std::string("P0001"));
    QCOMPARE(m["posidtype"].asInt(), 0);
    // Speed: both forms.
    QCOMPARE(m["velocity"].asDouble(), 50.0);
    QCOMPARE(m["vUnit"].asInt(), 2);
    QCOMPARE(m["ParaV"]["data"].asDouble(), 50.0);
    QCOMPARE(m["ParaV"]["value"].asInt(), 0);
    QCOMPARE(m["ParaV"]["m_vUnit"].asInt(), 2);
    // Acceleration from a global integer.
    QCOMPARE(m["ParaACC"]["value"].asInt(), 2);
    QCOMPARE(m["ParaACC"]["varname"].asString(), std::string("GI010"));
    QCOMPARE(m["ParaDEC"]["data"].asDouble(), 50.0);
    QCOMPARE(m["ParaPL"]["data"].asDouble(), 1.0);
    QCOMPARE(m["time"].asInt(), 200);
    QCOMPARE(m["ParaTIME"]["data"].asDouble(), 200.0);
    // The target travels with the instruction, not from a job file.
    const Json::Value &pos = m["RobotPos"];
    QCOMPARE(pos["key"].asString(), std::string("P0001"));
    QCOMPARE(pos["ctype"].asInt(), 1);
    QCOMPARE(pos["noFile"].asBool(), true);
    QCOMPARE(pos["data"].size(), 21u);
    QCOMPARE(pos["data"][0].asDouble(), 10.0);
    QCOMPARE(pos["data"][5].asDouble(), 60.0);
    QCOMPARE(pos["data"][20].asDouble(), 0.0);
}

void TestContinuous::variableClasses_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("value");

    QTest::newRow("constant") << QString() << QString() << 0;
    QTest::newRow("CONST ignores the name") << "CONST" << "GI001" << 0;
    QTest::newRow("AUTO GI") << "AUTO" << "GI001" << 2;
    QTest::newRow("AUTO GD") << "AUTO" << "GD002" << 3;
    QTest::newRow("AUTO GB") << "AUTO" << "GB003" << 1;
    QTest::newRow("AUTO I") << "AUTO" << "I004" << 4;
    QTest::newRow("AUTO D") << "AUTO" << "D005" << 5;
    QTest::newRow("empty word is AUTO") << QString() << "GD006" << 3;
    QTest::newRow("INT") << "INT" << "I007" << 4;
    QTest::newRow("GINT") << "GINT" << "GI008" << 2;
    QTest::newRow("BOOL") << "BOOL" << "B009" << 6;
    QTest::newRow("GBOOL") << "GBOOL" << "GB010" << 1;
}

void TestContinuous::variableClasses()
{
    QFETCH(QString, word);
    QFETCH(QString, name);
    QFETCH(int, value);
    qrx_motion_record r = move(2, 20, "P0002");
    r.u.move.dec = variable(word.toLatin1().constData(), name.toLatin1().constData());
    r.u.move.dec.value = 30; // the constant, when it is one
    const QByteArray payload = sendQueue(Records{r});
    QVERIFY(!payload.isEmpty());
    const Json::Value root = parsed(payload);
    const Json::Value &dec = root["data"][0]["ParaDEC"];
    QCOMPARE(dec["value"].asInt(), value);
    QCOMPARE(QString::fromStdString(dec["varname"].asString()), value ? name : QString());
    QCOMPARE(dec["data"].asDouble(), value ? 0.0 : 30.0);
}

void TestContinuous::conditionGroups()
{
    // WHILE {(I001 == 1) OR (I002 <> 0)} AND {(GD003 > 2.5)}
    qrx_motion_record r = record(13);
    qrx_condition_list &list = r.u.block.condition;
    list.count = 3;
    list.conditions[0] = condition(0, 0, "I001", 0, "1");
    list.conditions[1] = condition(0, 1, "I002", 1, "0");
    list.conditions[2] = condition(1, 0, "GD003", 2, "2.5");
    list.groupLogic[0] = 0;
    const QByteArray payload = sendQueue(Records{r});
    QVERIFY(!payload.isEmpty());
    const Json::Value tree = parsed(payload)["data"][0]["whileconditionArrayFINAL"];
    QCOMPARE(tree["conditionGroup"].size(), 2u);
    QCOMPARE(tree["conditionGroup"][0].size(), 2u);
    QCOMPARE(tree["conditionGroup"][0][1]["key"].asString(), std::string("I002"));
    QCOMPARE(tree["conditionGroup"][0][1]["logicType"].asInt(), 1);
    QCOMPARE(tree["conditionGroup"][1][0]["desValue"].asString(), std::string("2.5"));
    QCOMPARE(tree["logicGroup"][0].size(), 1u);
    QCOMPARE(tree["logicGroup"][0][0].asInt(), 1);
    QCOMPARE(tree["logic"].size(), 1u);
    QCOMPARE(tree["logic"][0].asInt(), 0);
}

void TestContinuous::queueOrderAndSkippedTypes()
{
    const Records records{move(1, 30, "P0001"), record(29), timer(constant(1)), record(30), record(0),
                          dout(2, 0), move(2, 40, "P0002")};
    const QByteArray payload = sendQueue(records);
    QVERIFY(!payload.isEmpty());
    const Json::Value root = parsed(payload);
    QCOMPARE(root["data"].size(), 4u);
    const int types[] = {1, 7, 16, 2};
    for (Json::ArrayIndex i = 0; i < 4; ++i)
        QCOMPARE(root["data"][i]["type"].asInt(), types[i]);
}

void TestContinuous::outOfRangeRefusesQueue_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<int>("reports");

    QTest::newRow("speed above 100 %") << Records{move(1, 150, "P0001")} << 1;
    QTest::newRow("speed 0 %") << Records{move(1, 0, "P0001")} << 1;
    qrx_motion_record acc = move(1, 50, "P0001");
    acc.u.move.acc = constant(0);
    acc.u.move.dec = constant(101);
    QTest::newRow("acceleration and deceleration") << Records{acc} << 2;
    qrx_motion_record blend = move(2, 50, "P0001");
    blend.u.move.pl = constant(6);
    QTest::newRow("blending 6") << Records{blend} << 1;
    qrx_motion_record unit = move(2, 50, "P0001");
    unit.u.move.vUnit = 3;
    QTest::newRow("unknown speed unit") << Records{unit} << 1;
    QTest::newRow("port 17 in the middle of a path")
        << Records{move(1, 50, "P0001"), dout(17, 1), move(2, 50, "P0002")} << 1;
    QTest::newRow("DOUT value 2") << Records{dout(1, 2)} << 1;
    QTest::newRow("negative wait") << Records{timer(constant(-1))} << 1;
    qrx_motion_record prefix = move(1, 50, "P0001");
    prefix.u.move.velocity = variable("AUTO", "GX001");
    QTest::newRow("unknown prefix") << Records{prefix} << 1;
    qrx_motion_record index = move(1, 50, "P0001");
    index.u.move.velocity = variable("GINT", "GI01");
    QTest::newRow("no three-digit index") << Records{index} << 1;
    qrx_motion_record word = move(1, 50, "P0001");
    word.u.move.velocity = variable("REAL", "D001");
    QTest::newRow("unknown type word") << Records{word} << 1;
    qrx_motion_record gap = record(9);
    gap.u.block.condition.count = 2;
    gap.u.block.condition.conditions[0] = condition(0, 0, "I001", 0, "1");
    gap.u.block.condition.conditions[1] = condition(2, 0, "I002", 0, "1");
    QTest::newRow("condition groups with a gap") << Records{gap} << 1;
    qrx_motion_record many = record(13);
    many.u.block.condition.count = QRX_MAX_CONDITIONS + 1;
    QTest::newRow("more conditions than the record holds") << Records{many} << 1;
}

void TestContinuous::outOfRangeRefusesQueue()
{
    QFETCH(Records, records);
    QFETCH(int, reports);

    LogCapture log;
    m_sim->clearReceived();
    send_continuous_motion_queue(records.constData(), records.size());
    // Anything the queue had sent would arrive before this.
    continuous_motion_stop();
    QVERIFY(m_sim->waitForFrame(0x50B9));
    QCOMPARE(m_sim->received(0x50B4).size(), 0);
    QCOMPARE(log.count(kOutOfRange), reports);
}

void TestContinuous::controllerWorksOffQueue()
{
    continuous_motion_mode(1);
    m_sim->clearReceived();
    const Records records{move(1, 30, "P0001"), move(2, 40, "P0002"), timer(constant(0.5))};
    QVERIFY(!sendQueue(records).isEmpty());
    int queued = 0;
    QTRY_VERIFY_WITH_TIMEOUT((m_sim->withModel([&](qrxsim::ControllerModel &m) {
                                 queued = int(m.continuous.queue.size());
                             }),
                              queued == 3),
                             10000);

    // The controller runs a queue only with the drives running.
    m_sim->withModel([](qrxsim::ControllerModel &m) {
        m.servoStatus = 3;
        m.deadman = 1;
    });
    continuous_motion_start();
    int executed = 0;
    QTRY_VERIFY_WITH_TIMEOUT((m_sim->withModel([&](qrxsim::ControllerModel &m) {
                                 executed = m.continuous.executed;
                             }),
                              executed == 3),
                             10000);

    // Closing the mode empties the controller's queue and leaves teach mode.
    continuous_motion_mode(0);
    QVERIFY(m_sim->waitForFrame(0x2101));
    bool open = true;
    m_sim->withModel([&](qrxsim::ControllerModel &m) { open = m.continuous.open; });
    QVERIFY(!open);
}

void TestContinuous::cleanupTestCase()
{
    disconnect_robot();
}

QTEST_MAIN(TestContinuous)
#include "tst_continuous.moc"
