#include "sim/files/DigestCache.h"

#include <QCryptographicHash>
#include <QFile>

#include <sys/stat.h>
#include <time.h>

namespace qrxsim {

namespace {

std::int64_t nanoseconds(const timespec &t)
{
    return std::int64_t(t.tv_sec) * 1'000'000'000 + t.tv_nsec;
}

} // namespace

bool DigestCache::stampOf(const QString &path, Stamp &stamp)
{
    struct stat st{};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return false;
    stamp.inode = std::uint64_t(st.st_ino);
    stamp.size = std::int64_t(st.st_size);
    stamp.modifiedNs = nanoseconds(st.st_mtim);
    stamp.changedNs = nanoseconds(st.st_ctim);
    return true;
}

QString DigestCache::md5Of(const QString &path)
{
    Stamp stamp;
    const bool known = stampOf(path, stamp);
    const auto found = m_entries.constFind(path);
    if (known && found != m_entries.constEnd() && found->stamp == stamp
        && stamp.changedNs < found->hashedNs - m_windowNs)
        return found->md5;

    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now); // the clock the file times come from
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (file.open(QIODevice::ReadOnly))
        hash.addData(&file);
    ++m_hashed;
    const QString md5 = QString::fromLatin1(hash.result().toHex());
    if (known)
        m_entries.insert(path, Entry{stamp, nanoseconds(now), md5});
    else
        m_entries.remove(path);
    return md5;
}

} // namespace qrxsim
