#pragma once
// Runs the qrx program as a user would and collects what it printed.

#include <QProcess>
#include <QString>
#include <QStringList>

struct QrxRun
{
    int exitCode = -1;
    QString out;
    QString err;
    bool finished = false;
};

// Runs qrx with args against the controller at host (QRX_HOST), with the
// library's log lines off, and waits for it to end (at most 60 s). language
// sets QRX_LANG ("en"; empty: the default, Chinese).
QrxRun runQrx(const QString &host, const QStringList &args, const QString &language = QString());

// Starts qrx without waiting; the caller reads and ends it.
void startQrx(QProcess &process, const QString &host, const QStringList &args,
              const QString &language = QString());

// The value after "key:" on its line of qrx's text output, trimmed.
QString fieldOf(const QString &text, const QString &key);
