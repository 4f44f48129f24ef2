#include "QrxRun.h"

#include <QProcessEnvironment>
#include <QRegularExpression>

void startQrx(QProcess &process, const QString &host, const QStringList &args, const QString &language)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QRX_HOST"), host);
    env.remove(QStringLiteral("QRX_LANG"));
    if (!language.isEmpty())
        env.insert(QStringLiteral("QRX_LANG"), language);
    env.remove(QStringLiteral("QT_LOGGING_RULES"));
    // qrx is a terminal program: it runs without the test's offscreen platform.
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    process.setProcessEnvironment(env);
    process.setProgram(QStringLiteral(QRX_CLI_PATH));
    process.setArguments(args);
    process.start();
}

QrxRun runQrx(const QString &host, const QStringList &args, const QString &language)
{
    QProcess process;
    startQrx(process, host, args, language);
    QrxRun run;
    run.finished = process.waitForFinished(60000);
    if (!run.finished)
        process.kill();
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QString fieldOf(const QString &text, const QString &key)
{
    const QRegularExpression line(QStringLiteral("^%1:\\s*(.*)$").arg(QRegularExpression::escape(key)),
                                  QRegularExpression::MultilineOption);
    const QRegularExpressionMatch m = line.match(text);
    return m.hasMatch() ? m.captured(1).trimmed() : QString();
}
