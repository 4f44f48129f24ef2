// IO, position and variable functions of the host API against qrx-sim: the
// frames on the wire, what the readers copy out after the controller's reply
// (and not one value more), the global variable name rules, and the
// results without a link.

#include "HostThread.h"
#include "FamilyFixture.h"

#include <array>

using familytest::Call;
using familytest::frame;

using Reader = std::function<void(double *)>;
using Values = QVector<double>;
Q_DECLARE_METATYPE(Reader)

namespace {

constexpr double kUntouched = -777.0;

double g_robotAxes[7] = {1, 2, 3, 4, 5, 6, 7};
double g_syncAxes[7] = {0.5, -0.5, 8, 9, 10, 11, 12};

// Runs the reader on a buffer of 32 marked values; returns the first n and
// checks that the rest is left as it was.
Values readInto(const Reader &reader, int n, bool *restUntouched)
{
    std::array<double, 32> buffer;
    buffer.fill(kUntouched);
    reader(buffer.data());
    *restUntouched = std::all_of(buffer.begin() + n, buffer.end(), [](double v) { return v == kUntouched; });
    return Values(buffer.begin(), buffer.begin() + n);
}

Values filled(int n, double value) { return Values(n, value); }

} // namespace

class TestIoVars : public QObject
{
    Q_OBJECT

private slots:
    void noLinkResults();
    void init();
    void framesOnTheWire_data();
    void framesOnTheWire();
    void readersCopyTheReply_data();
    void readersCopyTheReply();
    void globalVariables_data();
    void globalVariables();
    void variableIndexOutsideTheCache();
    void staleReplyIsReturned();

private:
    familytest::Controller m_ctl;
};

void TestIoVars::noLinkResults()
{
    qrxsim::SimHandle sim(testsupport::loopbackAddress(), 6001);
    QVERIFY(sim.start());
    bool untouched = false;
    const QVector<Reader> readers = {
        get_dout, get_din, get_aout, get_ain,
        [](double *out) { get_current_position(out, 0); },
        get_current_sync_position,
        [](double *out) { get_GPosition("P001", out); },
        [](double *out) { get_motor_vel(out, out, out, out); },
        [](double *out) { get_motor_torque(out, out, out, out); },
        [](double *out) { get_motor_overload(out, out); },
    };
    for (const Reader &reader : readers) {
        readInto(reader, 0, &untouched);
        QVERIFY(untouched);
    }
    set_dout(1, 1);
    set_aout(1, 2.0);
    set_GPosition("P001", 0, g_robotAxes, g_syncAxes);
    set_global_variant("GI001", 3);
    QCOMPARE(get_global_variant("GI001"), 0.0);
    QCOMPARE(get_global_var("GI001"), 0.0);
    QCOMPARE(sim.clientCount(), 0);
}

void TestIoVars::init()
{
    if (familytest::runsWithoutLink())
        return;
    QVERIFY(m_ctl.startOnce());
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.io = qrxsim::SimIo();
        m.globals = qrxsim::SimGlobals();
        m.motion.waypoints.clear();
        m.motion.sync.fill(0.0);
        std::fill(m.positionDeg, m.positionDeg + 7, 0.0);
    });
    QVERIFY(m_ctl.settle());
}

void TestIoVars::framesOnTheWire_data()
{
    familytest::frameColumns();

    double *none = nullptr;
    QTest::newRow("set_dout no robot") << Call([] { set_dout(3, 1); })
                                       << QStringList{frame(0x3601, R"({"port":3,"status":1})")};
    QTest::newRow("set_aout real") << Call([] { set_aout(2, 1.5); })
                                   << QStringList{frame(0x3607, R"({"port":2,"value":1.50})")};
    QTest::newRow("get_dout") << Call([none] { get_dout(none); }) << QStringList{frame(0x3602, nullptr)};
    QTest::newRow("get_din") << Call([none] { get_din(none); }) << QStringList{frame(0x3605, nullptr)};
    QTest::newRow("get_aout") << Call([none] { get_aout(none); }) << QStringList{frame(0x3608, nullptr)};
    QTest::newRow("get_ain") << Call([none] { get_ain(none); }) << QStringList{frame(0x360a, nullptr)};
    QTest::newRow("get_current_position") << Call([none] { get_current_position(none, 1); })
                                          << QStringList{frame(0x2f07, R"({"coord":1,"robot":1})")};
    QTest::newRow("get_current_sync_position coord 0") << Call([none] { get_current_sync_position(none); })
                                                       << QStringList{frame(0x7012, R"({"coord":0,"robot":1})")};
    QTest::newRow("get_GPosition") << Call([none] { get_GPosition("P001", none); })
                                   << QStringList{frame(0x5605, R"({"posName":"P001","robot":1})")};
    QTest::newRow("set_GPosition") << Call([] { set_GPosition("P002", 1, g_robotAxes, g_syncAxes); })
                                   << QStringList{frame(0x5604, R"({"coord":1,"pos":[1.0,2.0,3.0,4.0,5.0,6.0,7.0,0.50,-0.50,8.0,9.0,10.0,11.0,12.0],"posName":"P002","robot":1})")};
    QTest::newRow("set GD002") << Call([] { set_global_variant("GD002", 2.5); })
                               << QStringList{frame(0x5607, R"({"varName":"GD002","varType":3,"varValue":2.50})")};
    QTest::newRow("set gd002 case-sensitive") << Call([] { set_global_variant("gd002", 2.5); })
                                              << QStringList{frame(0x5607, R"({"varName":"gd002","varType":0,"varValue":2.50})")};
    QTest::newRow("set GI010") << Call([] { set_global_variant("GI010", 7); })
                               << QStringList{frame(0x5607, R"({"varName":"GI010","varType":2,"varValue":7.0})")};
    QTest::newRow("set GB001") << Call([] { set_global_variant("GB001", 1); })
                               << QStringList{frame(0x5607, R"({"varName":"GB001","varType":1,"varValue":1.0})")};
    QTest::newRow("set null name") << Call([] { set_global_variant(nullptr, 1); })
                                   << QStringList{frame(0x5607, R"({"varName":"","varType":0,"varValue":1.0})")};
    QTest::newRow("get_global_variant") << Call([] { get_global_variant("GI005"); })
                                        << QStringList{frame(0x560b, R"({"varName":"GI005","varType":2})")};
    QTest::newRow("get_global_var") << Call([] { get_global_var("GD001"); })
                                    << QStringList{frame(0x560b, R"({"varName":"GD001","varType":3})")};
    QTest::newRow("get_global_variant null") << Call([] { get_global_variant(nullptr); })
                                             << QStringList{frame(0x560b, R"({"varName":"","varType":0})")};
    QTest::newRow("get_motor_vel") << Call([none] { get_motor_vel(none, none, none, none); })
                                   << QStringList{frame(0x2a04, R"({"robot":1})")};
    QTest::newRow("get_motor_torque") << Call([none] { get_motor_torque(none, none, none, none); })
                                      << QStringList{frame(0x2a06, R"({"robot":1})")};
    QTest::newRow("get_motor_overload") << Call([none] { get_motor_overload(none, none); })
                                        << QStringList{frame(0x2a0a, R"({"robot":1})")};
}

void TestIoVars::framesOnTheWire()
{
    m_ctl.compareRowFrames();
}

// Each reader after the controller's reply: the values it copies, and the
// caller's buffer untouched past the stated length.
void TestIoVars::readersCopyTheReply_data()
{
    QTest::addColumn<Call>("setup");
    QTest::addColumn<Reader>("reader");
    QTest::addColumn<Values>("expected");

    Values dout = filled(16, 0.0);
    dout[2] = 1.0;
    dout[15] = 1.0;
    const Call outputs([] {
        set_dout(3, 1);
        set_dout(16, 1);
        set_dout(17, 1); // no such port: ignored by the controller
        set_aout(2, 4.75);
        set_aout(16, -1.5);
    });
    Values aout = filled(16, 0.0);
    aout[1] = 4.75;
    aout[15] = -1.5;
    QTest::newRow("digital outputs") << outputs << Reader(get_dout) << dout;
    QTest::newRow("digital inputs looped back") << outputs << Reader(get_din) << dout;
    QTest::newRow("analog outputs") << outputs << Reader(get_aout) << aout;
    QTest::newRow("analog inputs looped back") << outputs << Reader(get_ain) << aout;

    QTest::newRow("position, six of seven axes")
        << Call([this] {
               m_ctl.model([](qrxsim::ControllerModel &m) {
                   const double p[7] = {1.5, -2.25, 3, 4, 5, 6, 99};
                   std::copy(p, p + 7, m.positionDeg);
               });
           })
        << Reader([](double *out) { get_current_position(out, 1); }) << Values{1.5, -2.25, 3, 4, 5, 6};
    QTest::newRow("external axes, five")
        << Call([this] { m_ctl.model([](qrxsim::ControllerModel &m) { m.motion.sync = {7, 8, 9, 10, 11}; }); })
        << Reader(get_current_sync_position) << Values{7, 8, 9, 10, 11};
    QTest::newRow("global position written then read")
        << Call([] { set_GPosition("P007", 1, g_robotAxes, g_syncAxes); })
        << Reader([](double *out) { get_GPosition("P007", out); })
        << Values{1, 2, 3, 4, 5, 6, 7, 0.5, -0.5, 8, 9, 10, 11, 12};
    QTest::newRow("unknown global position") << Call([] {}) << Reader([](double *out) { get_GPosition("P404", out); })
                                             << filled(14, 0.0);
    // At rest, all axes at 0: no speed, the rated rows; axis 2 holds 42 Nm
    // against gravity, which is 26.25 % of its rated 160 Nm.
    QTest::newRow("motor speeds")
        << Call([] {}) << Reader([](double *o) { get_motor_vel(o, o + 7, o + 14, o + 19); })
        << (Values(7, 0.0) + Values{180, 180, 200, 300, 300, 400, 400} + Values(5, 0.0)
            + Values{120, 120, 90, 90, 60});
    QTest::newRow("motor torques")
        << Call([] {}) << Reader([](double *o) { get_motor_torque(o, o + 7, o + 14, o + 19); })
        << (Values{0, 42, 18, 2.5, 1.5, 0.5, 0} + Values{120, 160, 90, 30, 25, 15, 15} + Values(5, 0.0)
            + Values{80, 80, 60, 60, 40});
    QTest::newRow("motor overload")
        << Call([] {}) << Reader([](double *o) { get_motor_overload(o, o + 7); })
        << (Values{0, 26.25, 20, 2.5 / 30 * 100, 6, 0.5 / 15 * 100, 0} + Values(5, 0.0));
}

void TestIoVars::readersCopyTheReply()
{
    QFETCH(Call, setup);
    QFETCH(Reader, reader);
    QFETCH(Values, expected);
    setup();
    bool untouched = false;
    const Values got = readInto(reader, expected.size(), &untouched);
    QCOMPARE(got.size(), expected.size());
    for (int i = 0; i < got.size(); ++i)
        QVERIFY2(qFuzzyCompare(1.0 + got[i], 1.0 + expected[i]),
                 qPrintable(QStringLiteral("[%1] %2 != %3").arg(i).arg(got[i]).arg(expected[i])));
    QVERIFY(untouched);
}

void TestIoVars::globalVariables_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<double>("written");
    QTest::addColumn<double>("variant");
    QTest::addColumn<double>("var");

    QTest::newRow("integer") << QByteArray("GI005") << 42.0 << 42.0 << 42.0;
    QTest::newRow("integer cut by the controller") << QByteArray("GI006") << 3.75 << 3.0 << 3.0;
    QTest::newRow("real") << QByteArray("GD002") << 2.5 << 2.5 << 2.5;
    QTest::newRow("real, last index") << QByteArray("GD998") << -0.125 << -0.125 << -0.125;
    QTest::newRow("boolean") << QByteArray("GB003") << 1.0 << 1.0 << 1.0;
    QTest::newRow("boolean from any non-zero") << QByteArray("GB004") << 5.0 << 1.0 << 1.0;
    // A name of no global type: the cache has nothing, the last reply has it.
    QTest::newRow("other prefix GX001") << QByteArray("GX001") << 5.0 << 0.0 << 5.0;
    QTest::newRow("lower case gi001") << QByteArray("gi001") << 6.0 << 0.0 << 6.0;
}

void TestIoVars::globalVariables()
{
    QFETCH(QByteArray, name);
    QFETCH(double, written);
    QFETCH(double, variant);
    QFETCH(double, var);
    set_global_variant(name.constData(), written);
    QCOMPARE(get_global_variant(name.constData()), variant);
    QCOMPARE(get_global_var(name.constData()), var);
}

// An index outside the caches reads 0.0 and never reads past them; a
// short name reads index 0 or whatever its last characters give.
void TestIoVars::variableIndexOutsideTheCache()
{
    set_global_variant("GD000", 9.5);
    QCOMPARE(get_global_variant("GD000"), 9.5);
    QCOMPARE(get_global_variant("GD-12"), 0.0);
    QCOMPARE(get_global_variant("GD"), 9.5);  // index 0
    QCOMPARE(get_global_variant(""), 0.0);    // no type
    QCOMPARE(get_global_variant(nullptr), 0.0);
}

// The wait ends on any waking reply: a reader returns what is cached when
// another reply comes first.
void TestIoVars::staleReplyIsReturned()
{
    double pos[6] = {};
    m_ctl.model([](qrxsim::ControllerModel &m) { m.positionDeg[0] = 12.0; });
    get_current_position(pos, 0);
    QCOMPARE(pos[0], 12.0);

    m_ctl.sim->setSilent(true);
    m_ctl.sim->clearReceived();
    m_ctl.model([](qrxsim::ControllerModel &m) { m.positionDeg[0] = 13.0; });
    HostThread reader;
    reader.start([&pos] { get_current_position(pos, 0); });
    // The query leaves while the reader holds the reply lock, so no wake
    // can come between the query and the wait.
    QVERIFY(m_ctl.sim->waitForFrame(0x2f07, 10000));
    m_ctl.sim->sendJson(0x3603, Json::Value(Json::objectValue)); // not the position
    const bool woken = reader.waitDone(10000);
    m_ctl.sim->setSilent(false);
    while (!reader.waitDone(100)) // never leave a blocked thread behind
        m_ctl.sim->sendJson(0x3603, Json::Value(Json::objectValue));
    QVERIFY(woken);
    QCOMPARE(pos[0], 12.0);
}

QTEST_GUILESS_MAIN(TestIoVars)
#include "tst_io_vars.moc"
