// The handler shapes shared by the report families of Robot.

#include "robot/HandlerShape.h"

#include "robot/HandlerLines.h"
#include "common/JsonRead.h"

void Robot::takePayload(const QByteArray &data, std::initializer_list<CacheArray> arrays,
                       std::initializer_list<PayloadSignal> notify)
{
    takeReport(data, [&](const Json::Value &root) {
        // A report that fills caches lacks its keys when it holds none of
        // the cache members (a pure relay has none to lack).
        bool anyKey = arrays.size() == 0;
        for (const CacheArray &array : arrays)
            anyKey = anyKey || qrx::hasAnyKey(root, {array.key});
        if (!anyKey)
            return;
        for (const CacheArray &array : arrays)
            qrx::jsonReals(root, array.key, array.out, array.count);
        for (PayloadSignal signal : notify)
            emit(this->*signal)(data);
    });
}

void Robot::takeNumber(const QByteArray &data, const char *key, std::atomic<int> &field, const char *text, NumberSignal notify)
{
    takeReport(data, {key}, [&](const Json::Value &root) {
        const int value = qrx::jsonInt(root, key);
        field = value;
        qrx::writeRobotLine(qrx::robotText(text).arg(value));
        emit(this->*notify)(value);
    });
}
