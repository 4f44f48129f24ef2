#include "transfer/TransferPaths.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QStringList>


namespace qrx::transfer {

QString jobRoot()
{
    const QString fromEnvironment = qEnvironmentVariable("QRX_JOB_ROOT");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return QCoreApplication::applicationDirPath();
}

QString jobFolder(const QString &root, int robot)
{
    return root + QStringLiteral("/robotJob/R") + QString::number(robot);
}

bool isPlainName(const QString &name)
{
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return false;
    for (const QChar c : name) {
        if (c == QLatin1Char('/') || c == QLatin1Char('\\') || c == QLatin1Char(':') || c.unicode() < 0x20)
            return false;
    }
    return true;
}

bool isRelativePath(const QString &path)
{
    const QStringList parts = path.split(QLatin1Char('/'));
    for (const QString &part : parts) {
        if (!isPlainName(part))
            return false;
    }
    return true;
}

QString fileMd5(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!hash.addData(&file))
        return QString();
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace qrx::transfer
