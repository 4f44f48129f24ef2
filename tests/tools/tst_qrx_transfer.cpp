// qrx's file commands against the simulated controller's file service:
// what arrives where, byte for byte, what qrx prints, and its exit status.

#include "QrxRun.h"
#include "sim/SimHandle.h"
#include "sim/files/FileService.h"
#include "support/Loopback.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using qrxsim::FileService;

namespace {

QByteArray bytes(int size, int seed)
{
    QByteArray data(size, '\0');
    for (int i = 0; i < size; ++i)
        data[i] = char((i * 31 + seed) & 0xFF);
    return data;
}

bool writeFile(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(data) == data.size();
}

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace

class TestQrxTransfer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void upload_data();
    void upload();
    void downloadFetchesTheControllersFiles();
    void exportCopiesTheFilesOfItsKind_data();
    void exportCopiesTheFilesOfItsKind();

private:
    QrxRun qrx(const QStringList &args) { return runQrx(m_sim->address(), args); }

    std::unique_ptr<qrxsim::SimHandle> m_sim;
    std::unique_ptr<qrxsim::FileServiceHandle> m_files;
    std::unique_ptr<QTemporaryDir> m_controller; // the controller's folders
    std::unique_ptr<QTemporaryDir> m_host;       // the host's job root
};

void TestQrxTransfer::initTestCase()
{
    m_sim = std::make_unique<qrxsim::SimHandle>(testsupport::loopbackAddress());
    QVERIFY(m_sim->start());
    m_files = std::make_unique<qrxsim::FileServiceHandle>(*m_sim);
    QVERIFY(m_files->isListening());
}

void TestQrxTransfer::cleanupTestCase()
{
    m_files.reset();
    m_sim.reset();
}

void TestQrxTransfer::init()
{
    m_controller = std::make_unique<QTemporaryDir>();
    m_host = std::make_unique<QTemporaryDir>();
    const QString root = m_controller->path();
    for (const char *dir : {"jobs/R1", "jobs/R2", "logs", "eni", "config"})
        QVERIFY(QDir(root).mkpath(dir));
    m_files->with([&](FileService &service) {
        service.jobDir = root + "/jobs";
        service.logDir = root + "/logs";
        service.eniDir = root + "/eni";
        service.configDir = root + "/config";
        service.faults = qrxsim::FileFaults();
    });
}

void TestQrxTransfer::upload_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("refused");

    QTest::newRow("one chunk") << 100 << false;
    QTest::newRow("two chunks and one byte") << 4097 << false;
    QTest::newRow("refused by the controller") << 100 << true;
}

void TestQrxTransfer::upload()
{
    QFETCH(int, size);
    QFETCH(bool, refused);
    const QByteArray data = bytes(size, 7);
    QVERIFY(writeFile(m_host->path() + "/robotJob/R1/UP.JBR", data));
    m_files->with([&](FileService &service) { service.faults.refuseUpload = refused; });

    const QrxRun run = qrx({"upload", "--root", m_host->path()});
    const QString stored = m_controller->path() + "/jobs/R1/UP.JBR";
    if (refused) {
        QCOMPARE(run.exitCode, 4);
        QVERIFY2(run.err.contains("控制器拒绝上传程序"), qPrintable(run.err));
        QVERIFY(!QFile::exists(stored));
        return;
    }
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    QCOMPARE(readFile(stored), data);
    // Not a terminal: one plain line per file, then the summary.
    QVERIFY2(run.out.contains(QStringLiteral("R1/UP.JBR %1 bytes\n").arg(size)), qPrintable(run.out));
    QCOMPARE(fieldOf(run.out, "files"), QString("1"));
    QCOMPARE(fieldOf(run.out, "bytes"), QString::number(size));
}

void TestQrxTransfer::downloadFetchesTheControllersFiles()
{
    const QByteArray data = bytes(5000, 3);
    QVERIFY(writeFile(m_controller->path() + "/jobs/R2/DOWN.JBR", data));
    const QrxRun run = qrx({"--json", "download", "--root", m_host->path()});
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    QCOMPARE(readFile(m_host->path() + "/robotJob/R2/DOWN.JBR"), data);
    QVERIFY2(run.out.contains("\"bytes\":5000}"), qPrintable(run.out));
    QVERIFY2(run.out.endsWith("{\"files\":1,\"bytes\":5000}\n"), qPrintable(run.out));
}

void TestQrxTransfer::exportCopiesTheFilesOfItsKind_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("folder"); // the controller's folder that holds a file, or empty
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");

    QTest::newRow("logs") << "logs" << "logs" << 0 << QString();
    QTest::newRow("eni") << "eni" << "eni" << 0 << QString();
    QTest::newRow("no log files") << "logs" << QString() << 1 << "控制器发送的日志列表为空";
    QTest::newRow("no ENI files") << "eni" << QString() << 1 << "控制器发送的ENI列表为空";
}

void TestQrxTransfer::exportCopiesTheFilesOfItsKind()
{
    QFETCH(QString, kind);
    QFETCH(QString, folder);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    const QByteArray data = bytes(3000, 11);
    if (!folder.isEmpty())
        QVERIFY(writeFile(m_controller->path() + "/" + folder + "/one.txt", data));

    const QString target = m_host->path() + "/export/" + kind;
    const QrxRun run = qrx({"export", kind, target});
    QCOMPARE(run.exitCode, exitCode);
    if (exitCode != 0) {
        QVERIFY2(run.err.contains(message), qPrintable(run.err));
        QVERIFY(!QFile::exists(target + "/one.txt"));
        return;
    }
    QCOMPARE(readFile(target + "/one.txt"), data);
    QCOMPARE(fieldOf(run.out, "files"), QString("1"));
}

QTEST_GUILESS_MAIN(TestQrxTransfer)
#include "tst_qrx_transfer.moc"
