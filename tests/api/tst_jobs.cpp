// Job control functions of the host API against qrx-sim: the run requests
// and their member types on the wire, the preconditions that send nothing,
// continue_job's answers, the running line read without waiting, the cycle
// figures, and a job run by the simulated controller from start to end.

#include "FamilyFixture.h"
#include "support/LogCapture.h"

#include <limits>

using familytest::Call;
using familytest::frame;

class TestJobs : public QObject
{
    Q_OBJECT

private slots:
    void noLinkResults();
    void init();
    void framesOnTheWire_data();
    void framesOnTheWire();
    void preconditions_data();
    void preconditions();
    void continueJob_data();
    void continueJob();
    void continueJobWhileDrivesComeUp();
    void robotNumbers();
    void runningLineWithoutWaiting();
    void singleCycleFigures();
    void jobRunsToItsEnd();
    void unknownJobReported();
    void cleanupTestCase();

private:
    familytest::Controller m_ctl;
};

void TestJobs::noLinkResults()
{
    qrxsim::SimHandle sim(testsupport::loopbackAddress(), 6001);
    QVERIFY(sim.start());
    open_job("DEMO");
    run_job("DEMO");
    step_job("DEMO", 2);
    pause_job();
    stop_job();
    continue_job(); // no defined result; it must return
    continue_run();
    delete_job("DEMO");
    set_runs(2);
    QCOMPARE(get_job_running_lines(), 0);
    double out[7] = {-1, -1, -1, -1, -1, -1, -1};
    get_single_cycle(out);
    QCOMPARE(out[0], -1.0);
    QCOMPARE(sim.clientCount(), 0);
}

void TestJobs::init()
{
    if (familytest::runsWithoutLink())
        return;
    QVERIFY(m_ctl.startOnce());
    setErrorHandle(hosterrors::collect);
    // The controller refuses runs (servo off) unless a case says otherwise;
    // the Robot holds: servo running, no job running.
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.job = qrxsim::SimJobRunner();
        m.runStatus = 0;
        m.servoStatus = 0;
        m.deadman = 0;
        m.operationMode = 0;
    });
    QVERIFY(m_ctl.holdServo(3));
    QVERIFY(m_ctl.holdRunningState(0));
    QVERIFY(m_ctl.settle());
}

void TestJobs::framesOnTheWire_data()
{
    familytest::frameColumns();

    QTest::newRow("open_job") << Call([] { open_job("DEMO"); })
                              << QStringList{frame(0x3114, R"({"jobName":"DEMO","robot":1,"suffixname":".JBR"})")};
    QTest::newRow("open_job null name") << Call([] { open_job(nullptr); })
                                        << QStringList{frame(0x3114, R"({"jobName":"","robot":1,"suffixname":".JBR"})")};
    QTest::newRow("run_job integer continueRun")
        << Call([] { run_job("DEMO"); })
        << QStringList{frame(0x2501, R"({"continueRun":0,"jobname":"DEMO","line":1,"robot":1,"startOver":true})")};
    QTest::newRow("step_job") << Call([] { step_job("PICK", 4); })
                              << QStringList{frame(0x2501, R"({"jobname":"PICK","line":4,"robot":1})")};
    QTest::newRow("continue_run boolean continueRun")
        << Call([] { continue_run(); })
        << QStringList{frame(0x2501, R"({"callerName":"moveToPos","continueRun":true,"index":1,"onFileRun":true,"robot":1,"startOver":false})")};
    QTest::newRow("pause_job") << Call([] { pause_job(); }) << QStringList{frame(0x2401, R"({"robot":1,"type":1})")};
    QTest::newRow("stop_job") << Call([] { stop_job(); }) << QStringList{frame(0x2503, R"({"robot":1})")};
    QTest::newRow("delete_job") << Call([] { delete_job("OLD"); })
                                << QStringList{frame(0x3111, R"({"jobfilename":"OLD","robot":1,"suffixname":".JBR"})")};
    QTest::newRow("set_runs") << Call([] { set_runs(3); }) << QStringList{frame(0x5011, R"({"index":3,"robot":1})")};
    QTest::newRow("get_job_running_lines") << Call([] { get_job_running_lines(); })
                                           << QStringList{frame(0x3503, R"({"robot":1})")};
    QTest::newRow("get_single_cycle") << Call([] { get_single_cycle(nullptr); })
                                      << QStringList{frame(0x3309, R"({"robot":1})")};
}

void TestJobs::framesOnTheWire()
{
    m_ctl.compareRowFrames();
}

void TestJobs::preconditions_data()
{
    QTest::addColumn<int>("servo");
    QTest::addColumn<int>("running");
    QTest::addColumn<Call>("call");
    QTest::addColumn<bool>("sends");

    const Call run([] { run_job("DEMO"); });
    const Call step([] { step_job("DEMO", 2); });
    const Call open([] { open_job("DEMO"); });
    QTest::newRow("run_job while running") << 3 << 2 << run << false;
    QTest::newRow("step_job while running") << 3 << 2 << step << false;
    QTest::newRow("open_job while running") << 3 << 2 << open << false;
    QTest::newRow("run_job servo off") << 0 << 0 << run << false;
    QTest::newRow("step_job servo off") << 0 << 0 << step << false;
    QTest::newRow("open_job servo off") << 0 << 0 << open << true;
    QTest::newRow("run_job while paused") << 1 << 1 << run << true;
    QTest::newRow("step_job servo ready") << 1 << 0 << step << true;
}

void TestJobs::preconditions()
{
    QFETCH(int, servo);
    QFETCH(int, running);
    QFETCH(Call, call);
    QFETCH(bool, sends);
    QVERIFY(m_ctl.holdServo(servo));
    QVERIFY(m_ctl.holdRunningState(running));
    QCOMPARE(m_ctl.framesOf(call).size(), sends ? 1 : 0);
}

void TestJobs::continueJob_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("servo");
    QTest::addColumn<int>("result");

    QTest::newRow("teach mode") << 0 << 1 << 1;
    QTest::newRow("remote mode") << 1 << 1 << 1;
    QTest::newRow("run mode, drives running") << 2 << 3 << 2;
    QTest::newRow("run mode, servo off") << 2 << 0 << 2;
    QTest::newRow("run mode, servo ready") << 2 << 1 << 0;
}

// continue_job asks for the mode (and waits), then decides.
void TestJobs::continueJob()
{
    QFETCH(int, mode);
    QFETCH(int, servo);
    QFETCH(int, result);
    m_ctl.model([mode](qrxsim::ControllerModel &m) { m.operationMode = mode; });
    QVERIFY(m_ctl.holdServo(servo));
    int got = -1;
    const QStringList frames = m_ctl.framesOf([&got] { got = continue_job(); });
    QCOMPARE(got, result);
    QCOMPARE(frames.count(frame(0x2102, nullptr)), 1);
    const QString resume = frame(0x2501, R"({"continueRun":1,"line":1,"robot":1,"startOver":false})");
    QCOMPARE(frames.contains(resume), result == 0);
    QCOMPARE(frames.filter(QStringLiteral("0x2501")).size(), result == 0 ? 1 : 0);
}

// continue_job resumes only with the servo ready (1): the controller takes
// it while the drives are still coming up and runs on once they are.
void TestJobs::continueJobWhileDrivesComeUp()
{
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.operationMode = 2;
        m.job.running = "WELD01";
        m.job.line = 4;
        m.runStatus = 1;
        m.servoStatus = 1;
        m.deadman = 1;
        m.motion.driveEngageAtMs = std::numeric_limits<qint64>::max() / 2; // not up yet
    });
    QVERIFY(m_ctl.holdServo(1));
    QVERIFY(m_ctl.holdRunningState(1));
    const QString refusal = QStringLiteral("错误： job refused: the servo is not running");
    const int refusals = hosterrors::count(refusal);

    QCOMPARE(continue_job(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 2, 10000);
    QVERIFY(m_ctl.settle());
    QCOMPARE(hosterrors::count(refusal), refusals);
    int line = 0;
    m_ctl.model([&line](qrxsim::ControllerModel &m) { line = m.job.line; });
    QCOMPARE(line, 4); // no line runs before the drives are up

    // The drives come up: the job goes on from where it stood.
    m_ctl.model([](qrxsim::ControllerModel &m) { m.motion.driveEngageAtMs = 0; });
    QTRY_VERIFY_WITH_TIMEOUT(get_job_running_lines() > 4, 10000);
    QCOMPARE(m_ctl.robot->runningStatus, 2);
    stop_job();
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 0, 10000);
}

// open_job always names robot 1; the others name the robot addressed, the
// override number where they use it.
void TestJobs::robotNumbers()
{
    QVERIFY(m_ctl.report(0x5003, R"({"mode":1,"robot":2})", [this] { return m_ctl.robot->currentRobot() == 2; }));
    const QStringList frames = m_ctl.framesOf([] {
        open_job("DEMO");
        run_job("DEMO");
        pause_job();
        set_runs(1);
    });
    QCOMPARE(frames, (QStringList{
                         frame(0x3114, R"({"jobName":"DEMO","robot":1,"suffixname":".JBR"})"),
                         frame(0x2501, R"({"continueRun":0,"jobname":"DEMO","line":1,"robot":2,"startOver":true})"),
                         frame(0x2401, R"({"robot":2,"type":1})"),
                         frame(0x5011, R"({"index":1,"robot":2})"),
                     }));
    QVERIFY(m_ctl.report(0x5003, R"({"mode":1,"robot":1})", [this] { return m_ctl.robot->currentRobot() == 1; }));
}

// The line returned is the one held before this call's reply: a host polls.
void TestJobs::runningLineWithoutWaiting()
{
    QVERIFY(m_ctl.report(0x3504, R"({"num":2})", [this] { return m_ctl.robot->currentRunLine == 2; }));
    m_ctl.model([](qrxsim::ControllerModel &m) { m.job.line = 5; });
    QCOMPARE(get_job_running_lines(), 2);
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->currentRunLine, 5, 10000);
    m_ctl.model([](qrxsim::ControllerModel &m) { m.job.line = 7; });
    QCOMPARE(get_job_running_lines(), 5);
    QTRY_COMPARE_WITH_TIMEOUT(get_job_running_lines(), 7, 10000);
}

void TestJobs::singleCycleFigures()
{
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.job.running = "DEMO";
        m.job.lastCycleSeconds = 1.25;
        m.job.cyclesDone = 4;
        m.job.runsDone = 2;
        m.job.runsWanted = 3;
        m.job.line = 6;
    });
    LogCapture log;
    double out[8];
    std::fill(out, out + 8, -1.0);
    get_single_cycle(out);
    const double expected[8] = {1.25, 0, 4, 2, 3, 6, 8, -1.0};
    for (int i = 0; i < 8; ++i)
        QCOMPARE(out[i], expected[i]);
    QCOMPARE(log.count(QStringLiteral("1.25")), 1); // each value written as it is copied
    QCOMPARE(log.count(QStringLiteral("8")), 1);
}

void TestJobs::jobRunsToItsEnd()
{
    QVERIFY(m_ctl.servoRunning());
    set_runs(2);
    open_job("WELD01");
    run_job("WELD01");
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 2, 10000);
    QTRY_VERIFY_WITH_TIMEOUT(get_job_running_lines() >= 3, 10000);

    pause_job();
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 1, 10000);
    continue_run();
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 2, 10000);
    // Two runs of twenty lines, a line every 100 ms.
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 0, 20000);
    double cycle[7] = {};
    get_single_cycle(cycle);
    QCOMPARE(cycle[3], 2.0); // runs done
    QVERIFY(cycle[0] > 0.0); // last cycle time
    QCOMPARE(get_robot_running_state(), 0);
}

void TestJobs::unknownJobReported()
{
    QVERIFY(m_ctl.servoRunning());
    run_job("NOPE");
    QTRY_VERIFY_WITH_TIMEOUT(hosterrors::seen(QStringLiteral("错误： job not found: NOPE")), 10000);
    delete_job("PICK");
    open_job("PICK");
    QTRY_VERIFY_WITH_TIMEOUT(hosterrors::seen(QStringLiteral("错误： job not found: PICK")), 10000);
    QCOMPARE(m_ctl.robot->runningStatus, 0);
}

// The handler and the link end before the process does: a message that
// arrives during exit must not reach a handler whose texts are gone.
void TestJobs::cleanupTestCase()
{
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_GUILESS_MAIN(TestJobs)
#include "tst_jobs.moc"
