#include "robot/HandlerLines.h"

#include "common/Logging.h"
#include "common/JsonRead.h"

#include <QCoreApplication>

namespace qrx {

QString robotText(const char *text)
{
    return QCoreApplication::translate("Robot", text);
}

QString fillLine(const char *text, const Json::Value &object, std::initializer_list<const char *> keys)
{
    QString line = robotText(text);
    for (const char *key : keys)
        line = line.arg(jsonReal(object, key));
    return line;
}

void writeRobotLine(const QString &line)
{
    qCDebug(lcRobot).noquote() << line;
}

} // namespace qrx
