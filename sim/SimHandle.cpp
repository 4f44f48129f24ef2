#include "sim/SimHandle.h"

#include "common/CompactJson.h"
#include "common/HandOver.h"
#include "sim/Simulator.h"

#include <QHostAddress>
#include <QMetaObject>

namespace qrxsim {

SimHandle::SimHandle(QString address, quint16 port)
    : m_address(std::move(address))
    , m_port(port)
{
    m_thread.setObjectName(QStringLiteral("qrx-sim"));
    m_simulator = new Simulator;
    m_simulator->moveToThread(&m_thread);
    m_thread.start();
}

SimHandle::~SimHandle()
{
    run([](Simulator &sim) { sim.shutdown(); });
    // Deleted on its own thread: the thread's finish runs deferred deletes.
    m_simulator->deleteLater();
    m_thread.quit();
    m_thread.wait();
}

void SimHandle::run(const std::function<void(Simulator &)> &fn) const
{
    Simulator *sim = m_simulator;
    // What a test changes may give the ticks work again.
    if (QThread::currentThread() == &m_thread) {
        fn(*sim);
        sim->wake();
        return;
    }
    qrx::handOff(sim);
    QMetaObject::invokeMethod(
        sim,
        [sim, &fn] {
            qrx::takeOver(sim);
            fn(*sim);
            sim->wake();
            qrx::handOff(sim);
        },
        Qt::BlockingQueuedConnection);
    qrx::takeOver(sim);
}

bool SimHandle::start()
{
    bool ok = false;
    run([this, &ok](Simulator &sim) { ok = sim.listen(QHostAddress(m_address), m_port); });
    return ok;
}

quint16 SimHandle::port() const
{
    quint16 port = 0;
    run([&port](Simulator &sim) { port = sim.port(); });
    return port;
}

bool SimHandle::waitForClient(int timeoutMs)
{
    return m_simulator->recorder().waitForClient(timeoutMs);
}

int SimHandle::clientCount() const
{
    return m_simulator->recorder().clientCount();
}

void SimHandle::send(quint16 command, QByteArray payload)
{
    run([&](Simulator &sim) { sim.sendToAll(command, payload); });
}

void SimHandle::sendJson(quint16 command, const Json::Value &v)
{
    // Serialised here: Json::Value is not safe to share across threads.
    send(command, qrx::jsonPayload(v));
}

void SimHandle::sendRaw(QByteArray bytes)
{
    run([&](Simulator &sim) { sim.sendRaw(bytes); });
}

QVector<ReceivedFrame> SimHandle::received() const
{
    return m_simulator->recorder().frames();
}

QVector<ReceivedFrame> SimHandle::received(quint16 command) const
{
    return m_simulator->recorder().frames(command);
}

void SimHandle::clearReceived()
{
    m_simulator->recorder().clear();
}

bool SimHandle::waitForFrame(quint16 command, int timeoutMs)
{
    return m_simulator->recorder().waitForFrame(command, timeoutMs);
}

ReceivedFrame SimHandle::lastFrame(quint16 command) const
{
    return m_simulator->recorder().last(command);
}

void SimHandle::setSilent(bool silent)
{
    run([silent](Simulator &sim) { sim.setSilent(silent); });
}

void SimHandle::dropConnections()
{
    run([](Simulator &sim) { sim.dropConnections(); });
}

void SimHandle::setRefuseConnections(bool refuse)
{
    run([refuse](Simulator &sim) { sim.setRefuseConnections(refuse); });
}

void SimHandle::sendGarbage(QByteArray bytes)
{
    sendRaw(std::move(bytes));
}

void SimHandle::setSplitDelivery(bool split)
{
    run([split](Simulator &sim) { sim.setSplitDelivery(split); });
}

void SimHandle::corruptNextCrc()
{
    run([](Simulator &sim) { sim.corruptNextCrc(); });
}

void SimHandle::setControllerHeartbeat(int intervalMs)
{
    run([intervalMs](Simulator &sim) { sim.setControllerHeartbeat(intervalMs); });
}

void SimHandle::setAnswerHeartbeats(bool answer)
{
    run([answer](Simulator &sim) { sim.setAnswerHeartbeats(answer); });
}

void SimHandle::withModel(std::function<void(ControllerModel &)> fn)
{
    run([&fn](Simulator &sim) { fn(sim.model()); });
}

void SimHandle::setHandler(quint16 code, std::function<void(Session &, const ReceivedFrame &)> handle)
{
    run([&](Simulator &sim) { sim.setHandler(CommandEntry{code, std::move(handle)}); });
}

void SimHandle::withSimulator(std::function<void(Simulator &)> fn)
{
    run(fn);
}

qint64 SimHandle::nowMs() const
{
    return m_simulator->nowMs();
}

} // namespace qrxsim
