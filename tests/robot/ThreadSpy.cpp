#include "ThreadSpy.h"

#include "common/HandOver.h"

#include <mutex>

ThreadSpy::ThreadSpy(const QObject *sender, const char *signal)
{
    if (!sender || !signal || signal[0] != '2')
        return;
    const QByteArray normalised = QMetaObject::normalizedSignature(signal + 1);
    const QMetaObject *meta = sender->metaObject();
    const int index = meta->indexOfSignal(normalised.constData());
    if (index < 0)
        return;
    const QMetaMethod method = meta->method(index);
    for (int i = 0; i < method.parameterCount(); ++i)
        m_types.append(method.parameterType(i));
    // The sender's thread reads this object once connected; Qt's connection
    // lock orders that, invisibly to ThreadSanitizer.
    qrx::handOff(this);
    m_valid = QMetaObject::connect(sender, index, this, QObject::staticMetaObject.methodCount(),
                                   Qt::DirectConnection, nullptr);
}

int ThreadSpy::count() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls.size();
}

QList<QVariant> ThreadSpy::at(int i) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls.value(i);
}

QList<QVariant> ThreadSpy::last() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls.isEmpty() ? QList<QVariant>() : m_calls.last();
}

void ThreadSpy::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.clear();
}

int ThreadSpy::qt_metacall(QMetaObject::Call call, int id, void **args)
{
    id = QObject::qt_metacall(call, id, args);
    if (id < 0)
        return id;
    if (call == QMetaObject::InvokeMetaMethod) {
        if (id == 0) {
            qrx::takeOver(this);
            std::lock_guard<std::mutex> lock(m_mutex);
            QList<QVariant> values;
            for (int i = 0; i < m_types.size(); ++i)
                values.append(QVariant(m_types[i], args[i + 1]));
            m_calls.append(values);
        }
        --id;
    }
    return id;
}
