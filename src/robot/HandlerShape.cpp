// The handler shapes shared by the report families of Robot.

#include "robot/HandlerShape.h"

#include "robot/HandlerLines.h"
#include "common/JsonRead.h"

void Robot::takePayload(const QByteArray &data, std::initializer_list<CacheArray> arrays,
                       std::initializer_list<PayloadSignal> notify)
{
    takeReport(data, [&](const Json::Value &root) {
        for (const CacheArray &array : arrays)
            qrx::jsonReals(root, array.key, array.out, array.count);
        for (PayloadSignal signal : notify)
            emit(this->*signal)(data);
    });
}

void Robot::takeNumber(const QByteArray &data, const char *key, std::atomic<int> &field, const char *text, NumberSignal notify)
{
    takeReport(data, [&](const Json::Value &root) {
        const int value = qrx::jsonInt(root, key);
        field = value;
        qrx::writeRobotLine(qrx::robotText(text).arg(value));
        emit(this->*notify)(value);
    });
}
