#pragma once
// The MD5 digests of the local job files (R1..R4 below the job root), taken
// in a thread of their own from the moment a job download is asked for: the
// host's hashing overlaps the request and the controller's lists instead of
// following them. A file the pass did not see is hashed when asked for.

#include <QHash>
#include <QString>

#include <atomic>
#include <future>

namespace qrx::transfer {

class LocalDigests
{
public:
    LocalDigests() = default;
    LocalDigests(const LocalDigests &) = delete;
    LocalDigests &operator=(const LocalDigests &) = delete;
    ~LocalDigests(); // stops the pass after the file under way

    void start(const QString &jobRoot);
    // The lower-case hexadecimal MD5 of the file at path (empty when it
    // cannot be read); waits for the pass when one is running.
    QString md5Of(const QString &path);

private:
    std::atomic<bool> m_stop{false};
    std::future<QHash<QString, QString>> m_pass;
    QHash<QString, QString> m_digests;
};

} // namespace qrx::transfer
