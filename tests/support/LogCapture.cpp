#include "support/LogCapture.h"

namespace {
// The capture that takes lines; the lock also keeps it alive while a line
// of another thread is being added.
std::mutex g_activeMutex;
LogCapture *g_active = nullptr;
}

LogCapture::LogCapture(const char *categoryPrefix)
    : m_prefix(categoryPrefix)
{
    {
        std::lock_guard<std::mutex> lock(g_activeMutex);
        g_active = this;
    }
    m_previous = qInstallMessageHandler(&LogCapture::handler);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    std::lock_guard<std::mutex> lock(g_activeMutex);
    g_active = nullptr;
}

void LogCapture::handler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    QtMessageHandler previous = nullptr;
    {
        std::lock_guard<std::mutex> activeLock(g_activeMutex);
        LogCapture *self = g_active;
        if (self && context.category && QByteArray(context.category).startsWith(self->m_prefix)) {
            std::lock_guard<std::mutex> lock(self->m_mutex);
            self->m_lines.append(message);
            return;
        }
        if (self)
            previous = self->m_previous;
    }
    if (previous)
        previous(type, context, message);
}

QStringList LogCapture::lines() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_lines;
}

int LogCapture::count(const QString &line) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return int(m_lines.count(line));
}

bool LogCapture::contains(const QString &fragment) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const QString &l : m_lines)
        if (l.contains(fragment))
            return true;
    return false;
}

void LogCapture::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
}
