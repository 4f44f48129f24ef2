#include "transfer/LocalDigests.h"

#include "transfer/TransferPaths.h"

#include <QDir>

namespace qrx::transfer {

LocalDigests::~LocalDigests()
{
    m_stop = true;
    if (m_pass.valid())
        m_pass.wait();
}

void LocalDigests::start(const QString &jobRoot)
{
    m_pass = std::async(std::launch::async, [this, jobRoot] {
        QHash<QString, QString> digests;
        for (int robot = 1; robot <= 4 && !m_stop; ++robot) {
            const QDir dir(jobFolder(jobRoot, robot));
            for (const QString &name : dir.entryList(QDir::Files)) {
                if (m_stop)
                    break;
                const QString path = dir.filePath(name);
                digests.insert(path, fileMd5(path));
            }
        }
        return digests;
    });
}

QString LocalDigests::md5Of(const QString &path)
{
    if (m_pass.valid())
        m_digests = m_pass.get();
    const auto known = m_digests.constFind(path);
    return known != m_digests.constEnd() ? *known : fileMd5(path);
}

} // namespace qrx::transfer
