#pragma once
// What the family tests of the host API share: one qrx-sim on the test's own
// loopback address, the library connected to it through connect_robot(),
// and ways to see what went over the wire.
//
// A getter's wait ends on ANY waking reply, so a test that checks the value
// a getter returns first makes sure no earlier reply is still on its way:
// settle() sends a marker report after everything the simulator has sent
// and waits until the Robot has taken it.

#include "HostErrors.h"
#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "sim/SimHandle.h"
#include "support/Loopback.h"

#include <QtTest>

#include <functional>
#include <memory>

Q_DECLARE_METATYPE(std::function<void()>)

namespace familytest {

using Call = std::function<void()>;

// One frame as "0x2001 {...}" text, so a failed comparison reads well.
inline QString frameText(quint16 code, const QByteArray &payload)
{
    return QStringLiteral("0x%1 %2").arg(code, 4, 16, QLatin1Char('0')).arg(QString::fromUtf8(payload).trimmed());
}

// The payload bytes of a compact JSON text: the text and one line feed.
inline QByteArray json(const char *text)
{
    return QByteArray(text) + '\n';
}

// A frame whose payload is the JSON text; a null text is an empty payload.
inline QString frame(quint16 code, const char *jsonText)
{
    return frameText(code, jsonText ? json(jsonText) : QByteArray());
}

inline QString frame(quint16 code, const QString &jsonText)
{
    return frameText(code, json(jsonText.toUtf8().constData()));
}

// A position report 0x2F08 for robot 1 in joint coordinates: "pos" and
// "posDeg" both first, first+1, ... first+6.
inline Json::Value positionReport(double first)
{
    Json::Value report(Json::objectValue);
    report["robot"] = 1;
    report["coord"] = 0;
    for (int i = 0; i < 7; ++i) {
        report["pos"].append(first + i);
        report["posDeg"].append(first + i);
    }
    return report;
}

// The columns of a framesOnTheWire table: "call" and the "expected" frames
// (Controller::compareRowFrames() runs a row).
inline void frameColumns()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QStringList>("expected");
}

// noLinkResults runs before any connect_robot(): its init() starts nothing.
inline bool runsWithoutLink()
{
    return QByteArray(QTest::currentTestFunction()) == "noLinkResults";
}

class Controller
{
public:
    // Starts qrx-sim and connects the library; false (with a message) when
    // either fails.
    bool start()
    {
        Robot::setLinkTimeBase(30000);
        const QString address = testsupport::loopbackAddress();
        sim = std::make_unique<qrxsim::SimHandle>(address);
        if (!sim->start()) {
            qWarning("cannot listen on %s", qPrintable(address));
            return false;
        }
        if (connect_robot(address.toLatin1().constData()) != 1)
            return false;
        robot = qrx::api::apiRobot();
        return robot && sim->waitForFrame(0x5052) && settle();
    }

    // start() the first time; true once the library is connected.
    bool startOnce() { return robot || start(); }

    // Every report the simulator sent so far has been taken by the Robot.
    bool settle()
    {
        const int marker = ++m_marker;
        Json::Value v(Json::objectValue);
        v["varName"] = "GD999";
        v["varType"] = 3;
        v["varValue"] = double(marker);
        sim->sendJson(0x560C, v);
        QElapsedTimer clock;
        clock.start();
        // Read the way the library reads its caches: under the cache lock.
        const auto taken = [this] {
            double value = 0.0;
            qrx::api::copyOut(robot, &robot->globalReal[999], 1, &value);
            return value;
        };
        while (taken() != double(marker)) {
            if (clock.elapsed() > 10000)
                return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            QThread::msleep(1);
        }
        return true;
    }

    // Frames the host sent since the last clear, heartbeats left out.
    QStringList sentFrames() const
    {
        QStringList frames;
        for (const auto &frame : sim->received()) {
            if (frame.command != 0x7266)
                frames << frameText(frame.command, frame.payload);
        }
        return frames;
    }

    // Runs call and returns the frames it sent. Frames reach the simulator
    // in the order they were sent, so once it holds a marker frame sent
    // after the call (a code nobody answers), every frame of the call is in.
    QStringList framesOf(const Call &call)
    {
        sim->clearReceived();
        call();
        return framesSoFar();
    }

    // Runs call and waits until the controller has taken its frames and the
    // Robot every report they caused, so no reply of call can end a later wait.
    bool quietly(const Call &call)
    {
        framesOf(call);
        return settle();
    }

    // The body of a framesOnTheWire test: the row's "call" sends exactly the
    // row's "expected" frames.
    void compareRowFrames()
    {
        QFETCH(Call, call);
        QFETCH(QStringList, expected);
        QCOMPARE(framesOf(call), expected);
    }

    QStringList framesSoFar()
    {
        robot->send(kFenceCode, QByteArray());
        if (!sim->waitForFrame(kFenceCode, 10000))
            return {QStringLiteral("fence frame never arrived")};
        QStringList frames = sentFrames();
        frames.removeAll(frameText(kFenceCode, QByteArray()));
        return frames;
    }

    // The model of the simulated controller, changed on its thread.
    void model(const std::function<void(qrxsim::ControllerModel &)> &fn) { sim->withModel(fn); }

    // A status report as the controller sends it, taken by the Robot: true
    // once the Robot has handled it (and everything sent before it) and
    // taken() holds.
    bool report(quint16 code, const char *jsonText, const std::function<bool()> &taken)
    {
        sim->send(code, json(jsonText));
        return settle() && taken();
    }

    // The servo state as the Robot holds it, set through a servo report.
    bool holdServo(int status)
    {
        const QByteArray text = QStringLiteral("{\"mode\":0,\"robot\":1,\"status\":%1}").arg(status).toLatin1();
        return report(0x2003, text.constData(), [this, status] { return robot->servoStatus == status; });
    }

    // Drives running, deadman powered: in the controller and in the Robot.
    bool servoRunning()
    {
        model([](qrxsim::ControllerModel &m) {
            m.servoStatus = 3;
            m.deadman = 1;
        });
        return holdServo(3);
    }

    bool holdRunningState(int status)
    {
        const QByteArray text = QStringLiteral("{\"robot\":1,\"status\":%1}").arg(status).toLatin1();
        return report(0x3D03, text.constData(), [this, status] { return robot->runningStatus == status; });
    }

    bool holdMode(int mode)
    {
        const QByteArray text = QStringLiteral("{\"mode\":%1}").arg(mode).toLatin1();
        return report(0x2103, text.constData(), [this, mode] { return robot->operationMode == mode; });
    }

    std::unique_ptr<qrxsim::SimHandle> sim;
    Robot *robot = nullptr;

private:
    // A code that no family uses and the simulator answers with nothing.
    static constexpr quint16 kFenceCode = 0x7FFE;
    int m_marker = 0;
};

} // namespace familytest
