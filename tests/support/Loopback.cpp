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
    const QString name = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    const uint h = qHash(name);
    // 127.1.x.y with x,y in 1..250: far from 127.0.0.1 where the demo runs.
    return QStringLiteral("127.1.%1.%2").arg(1 + (h >> 8) % 250).arg(1 + h % 250);
}

} // namespace testsupport
