#include "link/DirectWriter.h"

#include "link/SessionRecorder.h"

#include <QAbstractSocket>
#include <QHostAddress>

#include <cerrno>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace qrx {

void DirectWriter::open(const QAbstractSocket &socket)
{
    close();
    const qintptr descriptor = socket.socketDescriptor();
    if (descriptor < 0)
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_fd = ::fcntl(int(descriptor), F_DUPFD_CLOEXEC, 0);
    m_host = SessionRecorder::endpoint(socket.localAddress(), socket.localPort());
    m_controller = SessionRecorder::endpoint(socket.peerAddress(), socket.peerPort());
}

void DirectWriter::close()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

qint64 DirectWriter::write(const QByteArray &frame)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_fd < 0)
        return -1;
    // Recorded before it leaves: an answer cannot be recorded before it.
    recordSent(m_host, m_controller, frame);
    qint64 done = 0;
    while (done < frame.size()) {
        const ssize_t n = ::send(m_fd, frame.constData() + done, size_t(frame.size() - done),
                                 MSG_DONTWAIT | MSG_NOSIGNAL);
        if (n > 0)
            done += n;
        else if (n < 0 && errno == EINTR)
            continue;
        else
            break;
    }
    return done;
}

} // namespace qrx
