#pragma once
// The MD5 digests of the controller's job files, kept between
// synchronisations as a controller that knows its own files would: a file
// is hashed again only when it may have changed since it was hashed.
//
// A digest is trusted while the file's inode, size, modification and change
// times are those seen when it was hashed, and only once the file's last
// change lay more than two seconds before the hashing: a file rewritten in
// the same tick of the file system's clock (same size, same times) could
// otherwise keep an old digest. The change time cannot be set by hand, so
// a file put back with its old modification time is hashed again too.

#include <QHash>
#include <QString>

#include <cstdint>

namespace qrxsim {

class DigestCache
{
public:
    // The file's MD5 as lower-case hexadecimal text (of no bytes when the
    // file cannot be read).
    QString md5Of(const QString &path);
    int hashedCount() const { return m_hashed; }
    // How long before its hashing a file's last change must lie (2 s).
    void setTrustWindowMs(int ms) { m_windowNs = std::int64_t(ms) * 1'000'000; }

private:
    struct Stamp
    {
        std::uint64_t inode = 0;
        std::int64_t size = -1;
        std::int64_t modifiedNs = 0;
        std::int64_t changedNs = 0;
        bool operator==(const Stamp &o) const
        {
            return inode == o.inode && size == o.size && modifiedNs == o.modifiedNs && changedNs == o.changedNs;
        }
    };
    struct Entry
    {
        Stamp stamp;
        std::int64_t hashedNs = 0;
        QString md5;
    };
    static bool stampOf(const QString &path, Stamp &stamp);

    QHash<QString, Entry> m_entries;
    std::int64_t m_windowNs = 2'000'000'000;
    int m_hashed = 0;
};

} // namespace qrxsim
