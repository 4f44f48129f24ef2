// Jobs run by qrx-sim from its job folder, through the exported functions: a
// job file uploaded with upload_job is what run_job runs, its running line
// follows the job's instructions (a move takes the time its axes need, a
// TIMER its time, what the simulator cannot execute is stepped over), a
// pause holds the move, step_job runs one line, a file that does not read
// is refused with its reason, delete_job removes the file.

#include "FamilyFixture.h"
#include "sim/files/FileService.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

// A job file in the job language: the header, position P0001 at `axis1`
// on the first axis, and the instruction lines between NOP and END.
QByteArray jobText(const char *name, double axis1, const QStringList &lines)
{
    QByteArray text = "//DIR\n//JOB\n//NAME " + QByteArray(name) + "\n//POS\n///NPOS "
        + QByteArray::number(lines.size()) + ",0,0,0,0,0\n///POSTYPE PULSE\n///PULSE\nP0001 = "
        + QByteArray::number(axis1);
    for (int i = 1; i < 21; ++i)
        text += ",0";
    text += "\n//INSTRUCTION\n///DATE 2026.11.22 10:00:00\nROBOTTYPE = [R6]\nDOUBLEROBOT = [NoCooperative]\n"
            "PROVERSION = [1.0.5]\nNOP\n";
    for (const QString &line : lines)
        text += line.toLatin1() + '\n';
    return text + "END\n";
}

int errorCount()
{
    std::lock_guard<std::mutex> lock(hosterrors::mutex());
    return hosterrors::texts().size();
}

bool writeFile(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

} // namespace

class TestSimJobRun : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void uploadedJobRunsItsInstructions();
    void pauseHoldsTheMove();
    void stepRunsOneLine();
    void unreadableFileRefused();
    void deleteRemovesTheFile();
    void cleanupTestCase();

private:
    QString controllerJob(const char *name) const { return m_controller.path() + "/job/R1/" + name + ".JBR"; }
    double axis1();
    double dout(int port);
    int modelLine();
    int modelRunStatus();

    familytest::Controller m_ctl;
    std::unique_ptr<qrxsim::FileServiceHandle> m_files;
    QTemporaryDir m_host, m_controller;
};

void TestSimJobRun::initTestCase()
{
    QVERIFY(m_host.isValid() && m_controller.isValid());
    QVERIFY(m_ctl.start());
    m_files = std::make_unique<qrxsim::FileServiceHandle>(*m_ctl.sim);
    QVERIFY(m_files->isListening());
    const QString jobDir = m_controller.path() + QStringLiteral("/job");
    m_files->with([&](qrxsim::FileService &service) { service.jobDir = jobDir; });
    m_ctl.model([&](qrxsim::ControllerModel &m) { m.job.folder = jobDir.toStdString(); });
    qrx_set_job_root(m_host.path().toUtf8().constData());
    setErrorHandle(hosterrors::collect);
}

void TestSimJobRun::init()
{
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.runStatus = 0;
        m.job.running.clear();
        m.job.line = 0;
        m.job.runsWanted = 1;
        std::fill(std::begin(m.positionDeg), std::end(m.positionDeg), 0.0);
        m.io.dout.fill(0.0);
    });
    QVERIFY(m_ctl.servoRunning());
    QVERIFY(m_ctl.holdRunningState(0));
}

double TestSimJobRun::axis1()
{
    double value = 0;
    m_ctl.model([&](qrxsim::ControllerModel &m) { value = m.positionDeg[0]; });
    return value;
}

double TestSimJobRun::dout(int port)
{
    double value = 0;
    m_ctl.model([&](qrxsim::ControllerModel &m) { value = m.io.dout[std::size_t(port - 1)]; });
    return value;
}

int TestSimJobRun::modelLine()
{
    int line = 0;
    m_ctl.model([&](qrxsim::ControllerModel &m) { line = m.job.line; });
    return line;
}

int TestSimJobRun::modelRunStatus()
{
    int status = 0;
    m_ctl.model([&](qrxsim::ControllerModel &m) { status = m.runStatus; });
    return status;
}

// The job written on the host, uploaded, run: the running line the host
// polls goes through the job's lines in order, and each line did its work.
void TestSimJobRun::uploadedJobRunsItsInstructions()
{
    const QStringList lines = {
        "DOUT 3 1",                                      // 1: at once
        "MOVJ P0001 VJ = 20 % PL = 0 ACC = 0 DEC = 0 0", // 2: 30 degrees at 20 deg/s
        "LABEL L1",                                      // 3: stepped over
        "TIMER T = 1",                                   // 4: one second
        "DOUT 4 1",                                      // 5
    };
    QVERIFY(writeFile(m_host.path() + "/robotJob/R1/SIMRUN.JBR", jobText("SIMRUN", 30, lines)));
    upload_job();
    QCOMPARE(qrx_last_transfer_failed(), 0);
    QVERIFY(QFile::exists(controllerJob("SIMRUN")));
    const int errors = errorCount();

    run_job("SIMRUN");
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 2, 10000);
    QList<int> seen;
    QElapsedTimer clock;
    clock.start();
    while (m_ctl.robot->runningStatus != 0 && clock.elapsed() < 30000) {
        const int line = get_job_running_lines();
        if (seen.isEmpty() || seen.last() != line)
            seen << line;
        QTest::qWait(20); // the host's polling pace
    }
    QCOMPARE(m_ctl.robot->runningStatus, 0);
    QVERIFY(m_ctl.settle());
    seen << get_job_running_lines();
    QTRY_COMPARE_WITH_TIMEOUT(get_job_running_lines(), 5, 10000); // the last line stays
    // The lines only go forward, and the long ones (the move, the timer)
    // cannot be missed by a host that polls.
    QVERIFY2(std::is_sorted(seen.begin(), seen.end()), qPrintable(QString::number(seen.size())));
    QVERIFY(seen.contains(2));
    QVERIFY(seen.contains(4));
    QCOMPARE(axis1(), 30.0);
    QCOMPARE(dout(3), 1.0);
    QCOMPARE(dout(4), 1.0);
    QCOMPARE(errorCount(), errors);
}

// A pause holds the robot where it is; continued, the move ends at its
// target and the job at its end.
void TestSimJobRun::pauseHoldsTheMove()
{
    QVERIFY(writeFile(controllerJob("LONGMOVE"),
                      jobText("LONGMOVE", 40, {"MOVJ P0001 VJ = 10 % PL = 0 ACC = 0 DEC = 0 0", "DOUT 5 1"})));
    run_job("LONGMOVE");
    QTRY_VERIFY_WITH_TIMEOUT(axis1() > 1.0, 10000);
    pause_job();
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 1, 10000);
    const double held = axis1();
    QVERIFY(held < 40.0);
    // Several ticks of the simulator pass: the axis stays.
    const qint64 pausedAt = m_ctl.sim->nowMs();
    QTRY_VERIFY_WITH_TIMEOUT(m_ctl.sim->nowMs() > pausedAt + 300, 10000);
    QCOMPARE(axis1(), held);
    QCOMPARE(modelLine(), 1);

    continue_run();
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 2, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(m_ctl.robot->runningStatus, 0, 20000);
    QCOMPARE(axis1(), 40.0);
    QCOMPARE(dout(5), 1.0);
}

void TestSimJobRun::stepRunsOneLine()
{
    QVERIFY(writeFile(controllerJob("SIMSTEP"),
                      jobText("SIMSTEP", 0, {"DOUT 6 1", "TIMER T = 0.2", "DOUT 7 1", "DOUT 8 1"})));
    step_job("SIMSTEP", 3);
    QTRY_COMPARE_WITH_TIMEOUT(dout(7), 1.0, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(modelRunStatus(), 0, 10000);
    QCOMPARE(modelLine(), 3);
    QCOMPARE(dout(6), 0.0);
    QCOMPARE(dout(8), 0.0);
}

void TestSimJobRun::unreadableFileRefused()
{
    QVERIFY(writeFile(controllerJob("BROKEN"), jobText("BROKEN", 0, {"MOVJ P0001 nonsense"})));
    run_job("BROKEN");
    const auto refusals = [] {
        std::lock_guard<std::mutex> lock(hosterrors::mutex());
        return hosterrors::texts().filter(QStringLiteral("BROKEN"));
    };
    QTRY_VERIFY_WITH_TIMEOUT(!refusals().isEmpty(), 10000);
    QCOMPARE(refusals(), QStringList{QStringLiteral("错误： BROKEN: job file does not read: syntax error at line 15")}); // the MOVJ line, from 1
    QVERIFY(m_ctl.settle());
    QCOMPARE(m_ctl.robot->runningStatus, 0);
    QCOMPARE(modelLine(), 0);
}

void TestSimJobRun::deleteRemovesTheFile()
{
    QVERIFY(writeFile(controllerJob("GONE"), jobText("GONE", 0, {"DOUT 9 1"})));
    open_job("GONE");
    QVERIFY(m_ctl.settle());
    QVERIFY(!hosterrors::seen(QStringLiteral("错误： job not found: GONE")));
    delete_job("GONE");
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(controllerJob("GONE")), 10000);
    run_job("GONE");
    QTRY_VERIFY_WITH_TIMEOUT(hosterrors::seen(QStringLiteral("错误： job not found: GONE")), 10000);
    QCOMPARE(dout(9), 0.0);
}

void TestSimJobRun::cleanupTestCase()
{
    m_files.reset();
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_GUILESS_MAIN(TestSimJobRun)
#include "tst_simjobrun.moc"
