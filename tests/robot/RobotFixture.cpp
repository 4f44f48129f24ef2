#include "RobotFixture.h"

#include "support/Loopback.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <chrono>
#include <mutex>

namespace {

constexpr quint16 kMarkerCode = 0x0F0F; // not a controller code: relayed as raw data
constexpr int kFastTimeBase = 18000;    // 100 ms checks, 120 ms time-out checks

bool waitFor(const std::function<bool()> &condition, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(2);
    }
    return true;
}

} // namespace

RobotFixture::RobotFixture() = default;

RobotFixture::~RobotFixture()
{
    m_relayed.reset();
    m_robot.reset();
    m_sim.reset();
}

bool RobotFixture::start(std::function<void(qrxsim::ControllerModel &)> prepare)
{
    m_sim.reset(new qrxsim::SimHandle(testsupport::loopbackAddress()));
    if (!m_sim->start())
        return false;
    if (prepare)
        m_sim->withModel(prepare);
    Robot::setLinkTimeBase(kFastTimeBase);
    m_robot.reset(new Robot(testsupport::loopbackAddress()));
    m_relayed.reset(new ThreadSpy(m_robot.get(), SIGNAL(robot_received_data(ushort, QByteArray))));
    m_robot->firstStart();
    if (!waitFor([this] { return m_robot->connected.load() != 0; }, 15000))
        return false;
    // The start-up reports end with the operating mode.
    return waitFor([this] { return m_robot->modeReceived.load(); }, 15000) && flush();
}

void RobotFixture::send(quint16 command, const QByteArray &json, bool raw)
{
    m_sim->send(command, raw || json.isEmpty() ? json : json + '\n');
}

bool RobotFixture::flush(int timeoutMs)
{
    const QByteArray marker = "marker " + QByteArray::number(++m_markers);
    m_sim->send(kMarkerCode, marker);
    return waitFor(
        [&] {
            for (int i = m_relayed->count() - 1; i >= 0; --i)
                if (m_relayed->at(i).value(1).toByteArray() == marker)
                    return true;
            return false;
        },
        timeoutMs);
}

bool RobotFixture::wokenBy(const std::function<bool()> &send)
{
    ReplyWaiter waiter(*m_robot);
    waiter.start();
    if (!send())
        return false;
    return waitFor([&] { return waiter.finished(); }, 15000) && waiter.woken();
}

bool RobotFixture::sendWaking(quint16 command, const QByteArray &json, bool raw)
{
    return wokenBy([&] {
        send(command, json, raw);
        return true;
    });
}

bool RobotFixture::sendWithoutWake(quint16 command, const QByteArray &json, bool raw)
{
    m_robot->replyMutex.lock();
    send(command, json, raw);
    const bool handled = flush(10000);
    m_robot->replyMutex.unlock();
    return handled;
}

class ReplyWaiter::Thread : public QThread
{
public:
    explicit Thread(ReplyWaiter &owner) : m_owner(owner) {}
    void run() override
    {
        Robot &robot = m_owner.m_robot;
        std::unique_lock<std::mutex> lock(robot.replyMutex);
        m_owner.m_waiting.store(true);
        // Bounded only so that a failing test ends; a wake comes at once.
        const bool woken = robot.replyCondition.wait_for(lock, std::chrono::seconds(30)) == std::cv_status::no_timeout;
        lock.unlock();
        m_owner.m_woken.store(woken);
        m_owner.m_finished.store(true);
    }

private:
    ReplyWaiter &m_owner;
};

ReplyWaiter::ReplyWaiter(Robot &robot)
    : m_robot(robot), m_thread(new Thread(*this))
{
}

ReplyWaiter::~ReplyWaiter()
{
    if (m_thread->isRunning()) {
        {
            std::lock_guard<std::mutex> lock(m_robot.replyMutex);
            m_robot.replyCondition.notify_all();
        }
        m_thread->wait();
    }
}

void ReplyWaiter::start()
{
    m_thread->start();
    while (!m_waiting.load())
        QThread::yieldCurrentThread();
    // The waiter set the flag holding the mutex and releases it only inside
    // the wait: once we can take the mutex, it is waiting.
    m_robot.replyMutex.lock();
    m_robot.replyMutex.unlock();
}
