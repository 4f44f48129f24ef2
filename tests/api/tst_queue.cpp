// The continuous-motion queue as qrx-sim runs it, through the exported
// functions only: the robot passes through every queued target in order and
// ends at the last; suspend holds it, start resumes it, stop ends the queue;
// IO and timer instructions take effect; a queue sent while one runs is
// worked off after it; an instruction that cannot run when its turn comes
// ends the run with a controller error.

#include "FamilyFixture.h"
#include "QueueRecords.h"

#include <cmath>

using namespace queuerecords;

namespace {

using Path = QVector<Point>;

Point position()
{
    double pos[6] = {};
    get_current_position(pos, 0);
    return {pos[0], pos[1], pos[2], pos[3], pos[4], pos[5]};
}

QString text(const Point &p)
{
    QStringList values;
    for (double v : p)
        values << QString::number(v, 'f', 4);
    return values.join(QLatin1Char(' '));
}

// Polls `condition` until it holds, for at most `bound` ms.
bool eventually(const std::function<bool()> &condition, int bound = 30000)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > bound)
            return false;
        QThread::msleep(5);
    }
    return true;
}

bool runningStateBecomes(int state)
{
    return eventually([state] { return get_robot_running_state() == state; });
}

// Whether p lies on the straight line (in axis space) from a to b.
bool onSegment(const Point &p, const Point &a, const Point &b)
{
    double lengthSquared = 0.0, along = 0.0;
    for (int i = 0; i < 6; ++i) {
        lengthSquared += (b[i] - a[i]) * (b[i] - a[i]);
        along += (p[i] - a[i]) * (b[i] - a[i]);
    }
    const double s = lengthSquared > 0.0 ? std::clamp(along / lengthSquared, 0.0, 1.0) : 0.0;
    for (int i = 0; i < 6; ++i) {
        if (std::fabs(a[i] + s * (b[i] - a[i]) - p[i]) > 1e-6)
            return false;
    }
    return true;
}

// The first segment of path (from `from` on) that p lies on; -1 for none.
int segmentOf(const Point &p, const Path &path, int from)
{
    for (int i = std::max(from, 0); i + 1 < path.size(); ++i) {
        if (onSegment(p, path[i], path[i + 1]))
            return i;
    }
    return -1;
}

void compare(const Point &actual, const Point &expected, const char *what)
{
    for (int i = 0; i < 6; ++i)
        QVERIFY2(std::fabs(actual[i] - expected[i]) < 1e-9,
                 qPrintable(QStringLiteral("%1: %2, expected %3").arg(what, text(actual), text(expected))));
}

} // namespace

class TestQueue : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void tenMovesPassThroughEachTargetInOrder();
    void suspendHoldsAndStartResumes();
    void stopEndsTheQueue();
    void ioAndTimerInstructionsTakeEffect();
    void queueSentWhileRunningFollows();
    void instructionThatCannotRunEndsTheRun();
    void cleanupTestCase();

private:
    void send(const Records &records);
    // What the controller recorded as the ends of its queued moves.
    QVector<Point> arrivals();
    // The position does not change while the simulator's clock runs on.
    void holdsFor(qint64 ms, const Point &at);

    familytest::Controller m_ctl;
};

void TestQueue::initTestCase()
{
    setErrorHandle(hosterrors::collect);
    QVERIFY(m_ctl.start());
}

// Drives running, the robot at zero, continuous motion open and idle.
void TestQueue::init()
{
    continuous_motion_stop();
    m_ctl.model([](qrxsim::ControllerModel &m) {
        std::fill(m.positionDeg, m.positionDeg + 7, 0.0);
        m.motion.waypoints.clear();
        m.continuous.line = 0;
        m.lastRunner = qrxsim::ControllerModel::QueueRunner;
    });
    QVERIFY(eventually([] { return get_job_running_lines() == 0; }));
    QVERIFY(m_ctl.servoRunning());
    continuous_motion_mode(1);
    QVERIFY(eventually([this] { return m_ctl.robot->continuousMotionMode.load() == 1; }));
    QVERIFY(m_ctl.settle());
}

void TestQueue::send(const Records &records)
{
    // Frames arrive in order: once the fence is in, the queue is too.
    QVERIFY(m_ctl.quietly([&records] { send_continuous_motion_queue(records.constData(), records.size()); }));
}

QVector<Point> TestQueue::arrivals()
{
    QVector<Point> points;
    m_ctl.model([&points](qrxsim::ControllerModel &m) {
        for (const auto &a : m.continuous.arrivals)
            points.append({a[0], a[1], a[2], a[3], a[4], a[5]});
    });
    return points;
}

void TestQueue::holdsFor(qint64 ms, const Point &at)
{
    const qint64 from = m_ctl.sim->nowMs();
    QVERIFY(eventually([&] { return m_ctl.sim->nowMs() >= from + ms; }));
    QVERIFY(m_ctl.settle());
    compare(position(), at, "moved while held");
}

void TestQueue::tenMovesPassThroughEachTargetInOrder()
{
    Path path{Point{}};
    Records records;
    for (int k = 1; k <= 10; ++k) {
        const Point target{5.0 * k, k % 2 ? 3.0 : -3.0, 2.0 * k, 0.5 * k, -1.5 * k, k % 3 ? 1.0 : -1.0};
        path.append(target);
        records.append(move(2, target, 25));
    }
    const int before = arrivals().size();
    send(records);
    continuous_motion_start();

    // Every position the host sees lies on the path, never behind one seen
    // before; the running line never goes back.
    int segment = 0, line = 0;
    QElapsedTimer clock;
    clock.start();
    while (arrivals().size() < before + 10) {
        QVERIFY2(clock.elapsed() < 60000, "the queue never ended");
        const Point p = position();
        const int on = segmentOf(p, path, segment);
        QVERIFY2(on >= 0, qPrintable(QStringLiteral("%1 is off the path after segment %2").arg(text(p)).arg(segment)));
        segment = on;
        const int seen = get_job_running_lines();
        QVERIFY2(seen >= line && seen <= 10, qPrintable(QStringLiteral("line %1 after %2").arg(seen).arg(line)));
        line = seen;
    }
    QVERIFY(runningStateBecomes(0));

    const QVector<Point> reached = arrivals().mid(before);
    QCOMPARE(reached.size(), 10);
    for (int k = 0; k < 10; ++k)
        compare(reached[k], path[k + 1], "arrival");
    QVERIFY(m_ctl.settle());
    compare(position(), path.last(), "end");
    QVERIFY(eventually([] { return get_job_running_lines() == 10; }));
}

void TestQueue::suspendHoldsAndStartResumes()
{
    const Point first{40, 0, 0, 0, 0, 0}, last{40, 20, 0, 0, 0, 0};
    send({move(1, first, 10), move(1, last, 10)});
    continuous_motion_start();
    QVERIFY(eventually([] { return position()[0] > 2.0; }));

    continuous_motion_suspend();
    QVERIFY(runningStateBecomes(1));
    QVERIFY(m_ctl.settle());
    const Point held = position();
    QVERIFY2(held[0] < 40.0, qPrintable(text(held)));
    holdsFor(300, held);
    double speeds[24] = {};
    get_motor_vel(speeds, speeds + 7, speeds + 14, speeds + 19);
    for (int i = 0; i < 6; ++i)
        QCOMPARE(speeds[i], 0.0);

    continuous_motion_start();
    QVERIFY(eventually([&held] { return position()[0] > held[0]; }));
    QVERIFY(runningStateBecomes(0));
    QVERIFY(m_ctl.settle());
    compare(position(), last, "end after resuming");
}

void TestQueue::stopEndsTheQueue()
{
    send({move(1, {40, 0, 0, 0, 0, 0}, 10), move(1, {40, 20, 0, 0, 0, 0}, 10)});
    continuous_motion_start();
    QVERIFY(eventually([] { return position()[0] > 2.0; }));

    continuous_motion_stop();
    QVERIFY(runningStateBecomes(0));
    QVERIFY(m_ctl.settle());
    const Point stopped = position();
    QVERIFY2(stopped[0] < 40.0 && stopped[1] == 0.0, qPrintable(text(stopped)));
    holdsFor(300, stopped);
    std::size_t queued = 1;
    m_ctl.model([&queued](qrxsim::ControllerModel &m) { queued = m.continuous.queue.size(); });
    QCOMPARE(queued, std::size_t(0));

    // Nothing is left to start.
    const QString refused = QStringLiteral("错误： start refused: the queue is empty");
    const int before = hosterrors::count(refused);
    continuous_motion_start();
    QVERIFY(eventually([&] { return hosterrors::count(refused) == before + 1; }));
}

void TestQueue::ioAndTimerInstructionsTakeEffect()
{
    m_ctl.model([](qrxsim::ControllerModel &m) {
        m.io.dout.fill(0.0);
        m.io.aout.fill(0.0);
    });
    const Point target{5, 5, 5, 5, 5, 5};
    send({output(16, 3, 1), output(21, 2, 5), input(17, 3, "GB007"), input(20, 2, "GD008"), timer(0.3),
          move(2, target, 100)});
    QElapsedTimer clock;
    clock.start();
    continuous_motion_start();
    QVERIFY(runningStateBecomes(0));
    QVERIFY2(clock.elapsed() >= 300, "the timer did not hold the queue");

    QVERIFY(m_ctl.settle());
    double io[16] = {};
    get_dout(io);
    QCOMPARE(io[2], 1.0);
    QCOMPARE(io[0], 0.0);
    QVERIFY(m_ctl.settle());
    get_aout(io);
    QCOMPARE(io[1], 5.0);
    QVERIFY(m_ctl.settle());
    QCOMPARE(get_global_variant("GB007"), 1.0); // digital input 3, looped back
    QVERIFY(m_ctl.settle());
    QCOMPARE(get_global_variant("GD008"), 5.0); // analog input 2
    QVERIFY(m_ctl.settle());
    compare(position(), target, "end");
}

void TestQueue::queueSentWhileRunningFollows()
{
    const Path first{{10, 0, 0, 0, 0, 0}, {10, 10, 0, 0, 0, 0}};
    const Path second{{0, 10, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0}};
    const int before = arrivals().size();
    send({move(1, first[0], 20), move(1, first[1], 20)});
    continuous_motion_start();
    QVERIFY(runningStateBecomes(2));
    send({move(1, second[0], 20), move(1, second[1], 20)});
    QVERIFY(runningStateBecomes(0));

    const QVector<Point> reached = arrivals().mid(before);
    QCOMPARE(reached.size(), 4);
    const Path all = first + second;
    for (int k = 0; k < 4; ++k)
        compare(reached[k], all[k], "arrival");
    QVERIFY(eventually([] { return get_job_running_lines() == 4; }));
}

void TestQueue::instructionThatCannotRunEndsTheRun()
{
    double robotAxes[7] = {12, -8, 4, 0, 0, 0, 0}, syncAxes[7] = {};
    set_GPosition("GP405", 0, robotAxes, syncAxes);
    qrx_motion_record known = move(1, {}, 50), missing = move(1, {}, 50);
    known.u.move.posidtype = missing.u.move.posidtype = 1;
    put(known.u.move.posidname, "GP405");
    put(missing.u.move.posidname, "GP404");
    const QString stopped = QStringLiteral("错误： continuous motion stopped at instruction 2: "
                                           "global position GP404 does not exist");
    const int before = hosterrors::count(stopped);
    send({known, missing, timer(5)});
    continuous_motion_start();
    QVERIFY(eventually([&] { return hosterrors::count(stopped) == before + 1; }));
    QVERIFY(runningStateBecomes(0));
    QVERIFY(m_ctl.settle());
    compare(position(), {12, -8, 4, 0, 0, 0}, "the global position");
}

// The handler and the link end before the process does.
void TestQueue::cleanupTestCase()
{
    setErrorHandle(nullptr);
    disconnect_robot();
}

QTEST_GUILESS_MAIN(TestQueue)
#include "tst_queue.moc"
