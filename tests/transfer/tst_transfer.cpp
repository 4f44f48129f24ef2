// File transfer through the exported functions against qrx-sim's file
// service: what goes over the file connection, what lands on either side,
// and how each failure ends (its text, 0x5525, nothing half-written).

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "sim/SimHandle.h"
#include "sim/files/FileService.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using qrxsim::FileService;

Q_DECLARE_METATYPE(qrxsim::FileFaults)

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

QString lastError()
{
    char text[512];
    qrx_last_transfer_error(text, sizeof text);
    return QString::fromUtf8(text);
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

    void uploadChunks_data();
    void uploadChunks();
    void secondUploadRefused();
    void uploadRefused();
    void unreadableFile();
    void downloadSynchronises();
    void emptyListTouchesNothing();
    void controllerDigests_data();
    void controllerDigests();
    void downloadFailures_data();
    void downloadFailures();
    void splitFramesArriveWhole();
    void exportLists_data();
    void exportLists();
    void emptyExportList_data();
    void emptyExportList();
    void exportFolderCannotBeCreated();
    void configurationRoundTrip();

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

void TestTransfer::uploadChunks_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QVector<int>>("chunks");
    QTest::newRow("one byte") << 1 << QVector<int>{1};
    QTest::newRow("one chunk") << 2048 << QVector<int>{2048};
    QTest::newRow("4096: two chunks") << 4096 << QVector<int>{2048, 2048};
    QTest::newRow("4097: three chunks") << 4097 << QVector<int>{2048, 2048, 1};
}

void TestTransfer::uploadChunks()
{
    QFETCH(int, size);
    QFETCH(QVector<int>, chunks);
    const QByteArray data = bytesOf(size, 3);
    QVERIFY(writeFile(m_host->path() + QStringLiteral("/robotJob/R2/WELD.JBR"), data));

    upload_job();

    QCOMPARE(qrx_last_transfer_failed(), 0);
    QCOMPARE(readFile(m_controller->path() + QStringLiteral("/job/R2/WELD.JBR")), data);
    QCOMPARE(fileFrames(0x5501),
             QVector<QByteArray>{QByteArray("{\"name\":\"job/R2/WELD.JBR\",\"size\":") + QByteArray::number(size) + "}\n"});
    QVector<int> sent;
    for (const QByteArray &chunk : fileFrames(0x5511))
        sent << chunk.toInt();
    QCOMPARE(sent, chunks);
    QCOMPARE(fileFrames(0x5512).size(), 1);
    QVERIFY(fileFrames(0x5525).isEmpty());
    QVERIFY(m_sim->waitForFrame(0x5061));
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

void TestTransfer::uploadRefused()
{
    QVERIFY(writeFile(m_host->path() + QStringLiteral("/robotJob/R1/A.JBR"), "x"));
    QVERIFY(writeFile(m_host->path() + QStringLiteral("/robotJob/R3/B.JBR"), "y"));
    setFaults({true});
    LogCapture log;

    upload_job();

    QCOMPARE(qrx_last_transfer_failed(), 1);
    QCOMPARE(lastError(), QStringLiteral("控制器拒绝上传程序：R1/A.JBR"));
    QVERIFY(log.count(QStringLiteral("控制器拒绝上传程序：R1/A.JBR")) == 1);
    QVERIFY(m_files->waitForFileFrame(0x5525));
    QCOMPARE(fileFrames(0x5501).size(), 1); // the transfer ended there
    QVERIFY(fileFrames(0x5511).isEmpty());
    QVERIFY(filesBelow(m_controller->path()).isEmpty());
}

void TestTransfer::unreadableFile()
{
    const QString missing = m_host->path() + QStringLiteral("/nowhere/controller.json");
    QCOMPARE(qrx_import_config(missing.toUtf8().constData()), -1);
    QCOMPARE(lastError(), QStringLiteral("无法读取上传程序：") + missing);
    QVERIFY(m_files->waitForFileFrame(0x5525));
    QVERIFY(fileFrames(0x5501).isEmpty());
}

void TestTransfer::downloadSynchronises()
{
    const QString job = m_controller->path() + QStringLiteral("/job");
    const QString local = m_host->path() + QStringLiteral("/robotJob");
    QVERIFY(writeFile(job + QStringLiteral("/R1/SAME.JBR"), "same text\n"));
    QVERIFY(writeFile(job + QStringLiteral("/R2/NEW.JBP"), bytesOf(5000, 9)));
    QVERIFY(writeFile(job + QStringLiteral("/R4/CHANGED.JBR"), "new text\n"));
    QVERIFY(writeFile(local + QStringLiteral("/R1/SAME.JBR"), "same text\n"));
    QVERIFY(writeFile(local + QStringLiteral("/R4/CHANGED.JBR"), "old text\n"));
    QVERIFY(writeFile(local + QStringLiteral("/R3/LOCAL_ONLY.JBR"), "mine\n"));

    download_job();

    QCOMPARE(qrx_last_transfer_failed(), 0);
    QVERIFY(m_sim->waitForFrame(0x5532));
    QCOMPARE(fileFrames(0x5504), (QVector<QByteArray>{"{\"name\":\"job/R2/NEW.JBP\"}\n",
                                                     "{\"name\":\"job/R4/CHANGED.JBR\"}\n"}));
    QCOMPARE(readFile(local + QStringLiteral("/R2/NEW.JBP")), bytesOf(5000, 9));
    QCOMPARE(readFile(local + QStringLiteral("/R4/CHANGED.JBR")), QByteArray("new text\n"));
    QCOMPARE(readFile(local + QStringLiteral("/R3/LOCAL_ONLY.JBR")), QByteArray("mine\n"));
    QCOMPARE(filesBelow(local), (QStringList{"R1/SAME.JBR", "R2/NEW.JBP", "R3/LOCAL_ONLY.JBR", "R4/CHANGED.JBR"}));
}

void TestTransfer::emptyListTouchesNothing()
{
    const QString local = m_host->path() + QStringLiteral("/robotJob/R1/KEEP.JBR");
    QVERIFY(writeFile(local, "keep\n"));

    download_job();

    QCOMPARE(qrx_last_transfer_failed(), 0);
    QCOMPARE(readFile(local), QByteArray("keep\n"));
    int connections = -1;
    m_files->with([&](FileService &service) { connections = service.connectionCount; });
    QCOMPARE(connections, 0);
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

void TestTransfer::downloadFailures_data()
{
    QTest::addColumn<qrxsim::FileFaults>("faults");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("abortSeen");
    qrxsim::FileFaults refuse, wrong, close, stall, hostile;
    refuse.refuseDownload = true;
    wrong.wrongName = true;
    close.closeMidFile = true;
    stall.stallMidFile = true;
    hostile.hostileName = true;
    QTest::newRow("refused") << refuse << QStringLiteral("控制器拒绝下载程序") << true;
    QTest::newRow("wrong name") << wrong
                                << QStringLiteral("文件名有误：job/R1/BIG.JBR -- job/R1/BIG.JBR.other") << true;
    QTest::newRow("connection closed mid-file") << close << QStringLiteral("下载文件出现问题，请重新下载") << false;
    QTest::newRow("controller silent mid-file") << stall << QStringLiteral("下载文件出现问题，请重新下载") << true;
    QTest::newRow("hostile name")
        << hostile << QStringLiteral("控制器发送的文件名不安全，已中止传输：../evil.JBR") << false;
}

void TestTransfer::downloadFailures()
{
    QFETCH(qrxsim::FileFaults, faults);
    QFETCH(QString, text);
    QFETCH(bool, abortSeen);
    const QString local = m_host->path() + QStringLiteral("/robotJob/R1/BIG.JBR");
    QVERIFY(writeFile(m_controller->path() + QStringLiteral("/job/R1/BIG.JBR"), bytesOf(200000, 5)));
    QVERIFY(writeFile(local, "old program\n"));
    setFaults(faults);
    LogCapture log;

    download_job();

    QCOMPARE(qrx_last_transfer_failed(), 1);
    QCOMPARE(lastError(), text);
    QCOMPARE(log.count(text), 1);
    // The old file stays whole, no temporary is left beside it, nothing
    // lands outside the job root.
    QCOMPARE(readFile(local), QByteArray("old program\n"));
    QCOMPARE(filesBelow(m_host->path()), QStringList{"robotJob/R1/BIG.JBR"});
    QVERIFY(!QFile::exists(m_host->path() + QStringLiteral("/robotJob/evil.JBR")));
    if (abortSeen)
        QVERIFY(m_files->waitForFileFrame(0x5525));
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

void TestTransfer::exportLists_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("logs") << QStringLiteral("log");
    QTest::newRow("ENI") << QStringLiteral("eni");
}

void TestTransfer::exportLists()
{
    QFETCH(QString, kind);
    const QString source = m_controller->path() + QLatin1Char('/') + kind;
    QVERIFY(writeFile(source + QStringLiteral("/a.txt"), bytesOf(3000, 4)));
    QVERIFY(writeFile(source + QStringLiteral("/b.txt"), QByteArray()));
    const QString target = m_host->path() + QStringLiteral("/export/here");
    const QByteArray folder = target.toUtf8();

    const int moved = kind == QLatin1String("log") ? qrx_export_logs(folder) : qrx_export_eni(folder);

    QCOMPARE(moved, 2);
    QCOMPARE(readFile(target + QStringLiteral("/a.txt")), bytesOf(3000, 4));
    QCOMPARE(readFile(target + QStringLiteral("/b.txt")), QByteArray());
    QVERIFY(m_sim->waitForFrame(0x5542));
    QCOMPARE(m_sim->lastFrame(0x5542).payload,
             QByteArray(kind == QLatin1String("log") ? "{\"num\":5}\n" : "{\"num\":10}\n"));
}

void TestTransfer::emptyExportList_data()
{
    exportLists_data();
}

void TestTransfer::emptyExportList()
{
    QFETCH(QString, kind);
    const bool logs = kind == QLatin1String("log");
    LogCapture log;
    const QByteArray folder = (m_host->path() + QStringLiteral("/export")).toUtf8();

    QCOMPARE(logs ? qrx_export_logs(folder) : qrx_export_eni(folder), -1);

    const QString text = logs ? QStringLiteral("控制器发送的日志列表为空，无法导出控制器日志")
                              : QStringLiteral("控制器发送的ENI列表为空，无法导出控制器ENI");
    QCOMPARE(lastError(), text);
    QCOMPARE(log.count(text), 1);
    int connections = -1;
    m_files->with([&](FileService &service) { connections = service.connectionCount; });
    QCOMPARE(connections, 0);
}

void TestTransfer::exportFolderCannotBeCreated()
{
    QVERIFY(writeFile(m_controller->path() + QStringLiteral("/log/a.log"), "line\n"));
    QVERIFY(writeFile(m_host->path() + QStringLiteral("/plain"), "a file, not a folder"));
    const QByteArray folder = (m_host->path() + QStringLiteral("/plain/logs")).toUtf8();

    QCOMPARE(qrx_export_logs(folder), -1);

    QCOMPARE(lastError(), QStringLiteral("无法创建日志文件路径，无法继续下载"));
    QVERIFY(m_files->waitForFileFrame(0x5525));
    QCOMPARE(filesBelow(m_host->path()), QStringList{"plain"});
}

void TestTransfer::configurationRoundTrip()
{
    const QString source = m_host->path() + QStringLiteral("/mine/global.json");
    QVERIFY(writeFile(source, "{\"speed\":20}\n"));
    QCOMPARE(qrx_import_config(source.toUtf8().constData()), 1);
    QCOMPARE(readFile(m_controller->path() + QStringLiteral("/config/global.json")), QByteArray("{\"speed\":20}\n"));

    // Export asks for every catalogue file; a missing one is refused.
    QCOMPARE(qrx_export_config((m_host->path() + QStringLiteral("/cfg")).toUtf8().constData()), -1);
    QCOMPARE(lastError(), QStringLiteral("控制器拒绝下载配置文件"));
}


QTEST_GUILESS_MAIN(TestTransfer)
#include "tst_transfer.moc"
