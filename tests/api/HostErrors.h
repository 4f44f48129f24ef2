#pragma once
// The texts the library hands to the host's error handler. setErrorHandle()
// takes a plain function, called on the library's threads, so the texts are
// kept in one locked list for the whole test executable.

#include <mutex>
#include <QString>
#include <QStringList>

namespace hosterrors {

inline std::mutex &mutex()
{
    static std::mutex m;
    return m;
}

inline QStringList &texts()
{
    static QStringList t;
    return t;
}

// The handler to pass to setErrorHandle().
inline void collect(const char *text)
{
    std::lock_guard<std::mutex> lock(mutex());
    texts() << QString::fromUtf8(text);
}

// Whether the handler has been given this text so far.
inline bool seen(const QString &text)
{
    std::lock_guard<std::mutex> lock(mutex());
    return texts().contains(text);
}

// How many times the handler has been given this text so far.
inline int count(const QString &text)
{
    std::lock_guard<std::mutex> lock(mutex());
    return texts().count(text);
}

} // namespace hosterrors
