#pragma once
// Captures the library's log lines for the lifetime of the object, so a test
// can compare them with the texts the controller's operators know.

#include <QStringList>
#include <QtGlobal>

#include <mutex>

class LogCapture
{
public:
    // Captures messages of categories starting with categoryPrefix ("qrx."
    // by default); other messages go to the previous handler.
    explicit LogCapture(const char *categoryPrefix = "qrx.");
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const;
    int count(const QString &line) const;
    bool contains(const QString &fragment) const;
    void clear();

private:
    static void handler(QtMsgType, const QMessageLogContext &, const QString &);
    QByteArray m_prefix;
    QtMessageHandler m_previous = nullptr;
    mutable std::mutex m_mutex; // visible to ThreadSanitizer, unlike QMutex
    QStringList m_lines;
};
