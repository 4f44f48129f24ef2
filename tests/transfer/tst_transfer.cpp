// File transfer through the exported functions against qrx-sim's file
// service: the pause between uploaded files, the controller's kept digests,
// frames split over reads, and the refusal of a second upload. The exchange
// frame by frame, its outcomes and its failures are tst_file_exchange's.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "sim/SimHandle.h"
#include "sim/files/FileService.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using qrxsim::FileService;

namespace {

QByteArray bytesOf(int size, char seed)
{
    QByteArray data(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        data[i] = char(seed + i * 7 + (i >> 8));
    return data;
}

bool writeFile(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// Names of every file below dir, relative to it, sorted.
QStringList filesBelow(const QString &dir)
{
    QStringList names;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        names << QDir(dir).relativeFilePath(it.next());
    names.sort();
    return names;
}

// A progress callback that asks for a second upload while the first runs.
int progressCalls = 0;
void uploadAgain(const char *, long long, long long)
{
    if (progressCalls++ == 0)
        upload_job();
}

} // namespace

class TestTransfer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void secondUploadRefused();
    void uploadPause_data();
    void uploadPause();
    void controllerDigests_data();
    void controllerDigests();
    void splitFramesArriveWhole();

private:
    QVector<QByteArray> fileFrames(quint16 code);
    void setFaults(const qrxsim::FileFaults &faults)
    {
        m_files->with([&](FileService &service) { service.faults = faults; });
    }

    std::unique_ptr<qrxsim::SimHandle> m_sim;
    std::unique_ptr<qrxsim::FileServiceHandle> m_files;
    std::unique_ptr<QTemporaryDir> m_host, m_controller;
};

void TestTransfer::initTestCase()
{
    Robot::setLinkTimeBase(30000);
    const QString address = testsupport::loopbackAddress();
    m_sim = std::make_unique<qrxsim::SimHandle>(address);
    QVERIFY(m_sim->start());
    m_files = std::make_unique<qrxsim::FileServiceHandle>(*m_sim);
    QVERIFY(m_files->isListening());
    QCOMPARE(connect_robot(address.toLatin1().constData()), 1);
    QVERIFY(m_sim->waitForFrame(0x5052));
}

void TestTransfer::init()
{
    m_host = std::make_unique<QTemporaryDir>();
    m_controller = std::make_unique<QTemporaryDir>();
    qrx_set_job_root(m_host->path().toUtf8().constData());
    const QString controller = m_controller->path();
    m_files->with([&](FileService &service) {
        service.jobDir = controller + QStringLiteral("/job");
        service.logDir = controller + QStringLiteral("/log");
        service.eniDir = controller + QStringLiteral("/eni");
        service.configDir = controller + QStringLiteral("/config");
        service.faults = {};
        service.setDigestTrustWindowMs(2000);
        service.received.clear();
        service.connectionCount = 0;
    });
    m_sim->clearReceived();
    qrx_set_transfer_progress(nullptr);
}

void TestTransfer::cleanup()
{
    qrx_set_transfer_progress(nullptr);
    qrx_set_transfer_pause(1000);
}

void TestTransfer::cleanupTestCase()
{
    m_files.reset();
    disconnect_robot();
}

QVector<QByteArray> TestTransfer::fileFrames(quint16 code)
{
    QVector<QByteArray> payloads;
    for (const auto &frame : m_files->received()) {
        if (frame.first == code)
            payloads << frame.second;
    }
    return payloads;
}

void TestTransfer::secondUploadRefused()
{
    const QByteArray data = bytesOf(6000, 1);
    QVERIFY(writeFile(m_host->path() + QStringLiteral("/robotJob/R1/A.JBR"), data));
    LogCapture log;
    progressCalls = 0;
    qrx_set_transfer_progress(&uploadAgain);

    upload_job();

    QVERIFY(progressCalls >= 3);
    QCOMPARE(log.count(QStringLiteral("上传文件中，不允许上传文件")), 1);
    // The refused call opened nothing and the running upload went on.
    QCOMPARE(fileFrames(0x5501).size(), 1);
    QCOMPARE(readFile(m_controller->path() + QStringLiteral("/job/R1/A.JBR")), data);
}

// Three files: two pauses between them, 1000 ms each unless the host sets
// another (qrx_set_transfer_pause).
void TestTransfer::uploadPause_data()
{
    QTest::addColumn<int>("pause"); // -1: never set
    QTest::newRow("described pause") << -1;
    QTest::newRow("no pause") << 0;
}

void TestTransfer::uploadPause()
{
    QFETCH(int, pause);
    for (const char *name : {"R1/A.JBR", "R2/B.JBR", "R3/C.JBR"})
        QVERIFY(writeFile(m_host->path() + QStringLiteral("/robotJob/") + QLatin1String(name), name));
    if (pause >= 0)
        qrx_set_transfer_pause(pause);
    QElapsedTimer clock;
    clock.start();

    upload_job();

    const qint64 took = clock.elapsed();
    QCOMPARE(qrx_last_transfer_failed(), 0);
    QCOMPARE(filesBelow(m_controller->path() + QStringLiteral("/job")),
             (QStringList{"R1/A.JBR", "R2/B.JBR", "R3/C.JBR"}));
    if (pause < 0)
        QVERIFY2(took >= 2000, qPrintable(QString::number(took)));
    else
        QVERIFY2(took < 2000, qPrintable(QString::number(took))); // no pause: a few ms of loopback traffic
}

// The controller keeps its files' digests between synchronisations; a file
// that changed, even in the same tick of the file clock and at the same size,
// is still announced with its new digest and fetched again.
void TestTransfer::controllerDigests_data()
{
    QTest::addColumn<int>("trustWindowMs");
    QTest::addColumn<QByteArray>("rewrite"); // empty: the file stays as it was
    QTest::addColumn<int>("hashedAgain");
    QTest::addColumn<int>("fetchedAgain");
    QTest::newRow("unchanged: known digest") << 0 << QByteArray() << 0 << 0;
    QTest::newRow("unchanged, just written: hashed again") << 2000 << QByteArray() << 1 << 0;
    QTest::newRow("grown: hashed and fetched") << 0 << QByteArray("version two, longer\n") << 1 << 1;
    QTest::newRow("same size, in place: hashed and fetched") << 2000 << QByteArray("version 2\n") << 1 << 1;
}

void TestTransfer::controllerDigests()
{
    QFETCH(int, trustWindowMs);
    QFETCH(QByteArray, rewrite);
    QFETCH(int, hashedAgain);
    QFETCH(int, fetchedAgain);
    m_files->with([&](FileService &service) { service.setDigestTrustWindowMs(trustWindowMs); });
    const QString remote = m_controller->path() + QStringLiteral("/job/R1/KNOWN.JBR");
    const QString local = m_host->path() + QStringLiteral("/robotJob/R1/KNOWN.JBR");
    QVERIFY(writeFile(remote, "version 1\n"));
    download_job();
    QCOMPARE(readFile(local), QByteArray("version 1\n"));
    int hashed = 0;
    m_files->with([&](FileService &service) { hashed = service.hashedCount(); });
    const int fetched = fileFrames(0x5504).size();

    if (!rewrite.isEmpty()) { // in place: same file, same inode
        QFile file(remote);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(file.write(rewrite), qint64(rewrite.size()));
    }
    download_job();

    QCOMPARE(qrx_last_transfer_failed(), 0);
    int hashedNow = 0;
    m_files->with([&](FileService &service) { hashedNow = service.hashedCount(); });
    QCOMPARE(hashedNow - hashed, hashedAgain);
    QCOMPARE(fileFrames(0x5504).size() - fetched, fetchedAgain);
    QCOMPARE(readFile(local), rewrite.isEmpty() ? QByteArray("version 1\n") : rewrite);
}

void TestTransfer::splitFramesArriveWhole()
{
    const QByteArray data = bytesOf(7000, 2);
    QVERIFY(writeFile(m_controller->path() + QStringLiteral("/job/R3/SPLIT.JBR"), data));
    qrxsim::FileFaults split;
    split.splitFrames = true;
    setFaults(split);

    download_job();

    QCOMPARE(qrx_last_transfer_failed(), 0);
    QCOMPARE(readFile(m_host->path() + QStringLiteral("/robotJob/R3/SPLIT.JBR")), data);
}

QTEST_GUILESS_MAIN(TestTransfer)
#include "tst_transfer.moc"
