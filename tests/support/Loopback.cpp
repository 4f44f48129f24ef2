#include "support/Loopback.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QtGlobal>

namespace testsupport {

QString loopbackAddress()
{
    const QByteArray forced = qgetenv("QRX_TEST_ADDRESS");
    if (!forced.isEmpty())
        return QString::fromLatin1(forced);
    const QFileInfo program(QCoreApplication::applicationFilePath());
    const uint h = qHash(program.fileName());
    // 127.n.x.y: x and y from the program's name, n (100..249) from its
    // folder, so the same suite built in two folders and run at the same
    // time does not meet itself. Far from 127.0.0.1 where the demo runs and
    // from the fixed addresses below 127.100 that the CMake entries give.
    const uint folder = qHash(program.absolutePath());
    return QStringLiteral("127.%1.%2.%3").arg(100 + folder % 150).arg(1 + (h >> 8) % 250).arg(1 + h % 250);
}

} // namespace testsupport
