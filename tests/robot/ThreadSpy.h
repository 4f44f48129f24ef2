#pragma once
// A signal recorder that may be fed from any thread: Robot emits its
// signals on the link thread while the test thread reads. Works like
// QSignalSpy (it catches the signal through qt_metacall), but every access
// to the recorded calls is locked.

#include <QList>
#include <QMetaMethod>
#include <mutex>
#include <QObject>
#include <QVariant>
#include <QVector>

class ThreadSpy : public QObject
{
public:
    // signal as written by SIGNAL(...): "2name(args)".
    ThreadSpy(const QObject *sender, const char *signal);

    bool isValid() const { return m_valid; }
    int count() const;
    QList<QVariant> at(int i) const;
    QList<QVariant> last() const;
    void clear();

    int qt_metacall(QMetaObject::Call call, int id, void **args) override;

private:
    bool m_valid = false;
    QVector<int> m_types;
    mutable std::mutex m_mutex;
    QList<QList<QVariant>> m_calls;
};
