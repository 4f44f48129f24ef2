#pragma once
// The send slots of the controller link for the basic status commands, and
// the rule that every command of the library follows: a JSON object with
// the command's keys, written as compact JSON (keys ascending) plus a line
// feed, handed to sendData(). The result of sendData() is passed back as it
// is: false when the link is down, nothing retried or queued.
//
// The slots may be called from any thread; they only build bytes.

#include "link/LinkNotifications.h"
#include "link/LinkTypes.h"

#include <json/value.h>

#include <functional>
#include <mutex>

class LinkSenders : public LinkNotifications
{
    Q_OBJECT
public:
    using LinkNotifications::LinkNotifications;

    // Frames and writes the command if the link is up; false otherwise.
    virtual bool sendData(quint16 command, QByteArray payload) = 0;

    // The payload of a command that must not leave (its builder found a
    // value the controller cannot read and said so): sendData() refuses it
    // and returns false, nothing is framed or written. Copies of it are
    // recognised; no other payload, of any content, is.
    static const QByteArray &refusedPayload();
    static bool isRefused(const QByteArray &payload);

    // Sends a JSON command by the shared rule.
    bool sendJson(quint16 command, const Json::Value &object);

    // Where the "robot" key comes from: the robot that the state model
    // currently addresses. Until it is set (or after an empty function) the
    // commands address robot 1.
    void setCurrentRobotSource(std::function<int()> source);
    int currentRobot() const;

public Q_SLOTS:
    bool setServoStatus(ServoStatus servoStatus);             // 0x2001
    bool getServoStatus();                                    // 0x2002
    bool setOperationMode(OperationMode operationMode);       // 0x2101
    bool getOperationMode();                                  // 0x2102, empty payload
    bool setCoordinationMode(CoordinationMode coordinationMode); // 0x2201
    bool getCoordinationMode();                               // 0x2202
    bool sendDeadmanCommand(uchar status);                    // 0x2301
    bool setSpeed(signed char speed);                         // 0x2601
    bool getSpeed();                                          // 0x2602
    bool setTestMode(signed char testMode);                   // 0x2701, one raw byte
    bool getTestMode();                                       // 0x2702, empty payload
    bool sendStopMoveCommand(int axis);                       // 0x2902
    bool getPosition();                                       // 0x2A02
    bool clearError(ErrorList error);                         // 0x2B01, four raw bytes
    bool clearAllError();                                     // 0x3201
    bool getSelectTool();                                     // 0x380B
    bool getRobotRunStatus();                                 // 0x3D02

private:
    // {"robot": current robot}, the payload of most queries.
    bool sendRobotOnly(quint16 command);

    mutable std::mutex m_robotSourceMutex;
    std::function<int()> m_robotSource;
};
