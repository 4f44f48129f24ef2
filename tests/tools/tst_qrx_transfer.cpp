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
    void uploadFromAMissingRootFails();
    void downloadFetchesTheControllersFiles_data();
    void downloadFetchesTheControllersFiles();
    void exportCopiesTheFilesOfItsKind_data();
    void exportCopiesTheFilesOfItsKind();

private:
    QrxRun qrx(const QStringList &args, const QString &language = QString())
    {
        return runQrx(m_sim->address(), args, language);
    }

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
    QTest::addColumn<QString>("language");

    QTest::newRow("one chunk") << 100 << false << QString();
    QTest::newRow("two chunks and one byte") << 4097 << false << QString();
    QTest::newRow("refused by the controller") << 100 << true << QString();
    QTest::newRow("refused by the controller, in English") << 100 << true << "en";
}

void TestQrxTransfer::upload()
{
    QFETCH(int, size);
    QFETCH(bool, refused);
    QFETCH(QString, language);
    const QByteArray data = bytes(size, 7);
    QVERIFY(writeFile(m_host->path() + "/robotJob/R1/UP.JBR", data));
    m_files->with([&](FileService &service) { service.faults.refuseUpload = refused; });

    const QrxRun run = qrx({"upload", "--root", m_host->path()}, language);
    const QString stored = m_controller->path() + "/jobs/R1/UP.JBR";
    if (refused) {
        // A refusal whatever the language of its text.
        QCOMPARE(run.exitCode, 4);
        QVERIFY2(run.err.contains(language.isEmpty() ? "控制器拒绝上传程序" : "R1/UP.JBR"), qPrintable(run.err));
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

void TestQrxTransfer::uploadFromAMissingRootFails()
{
    const QString missing = m_host->path() + "/nowhere";
    const QrxRun run = qrx({"upload", "--root", missing});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains("no job folder at " + missing), qPrintable(run.err));
    QVERIFY(run.out.isEmpty());
}

void TestQrxTransfer::downloadFetchesTheControllersFiles_data()
{
    QTest::addColumn<bool>("json");
    QTest::addColumn<QString>("listed"); // how the file shows, named as an upload names it

    QTest::newRow("text") << false << "R2/DOWN.JBR 5000 bytes\n";
    QTest::newRow("json") << true << "{\"file\":\"R2/DOWN.JBR\",\"bytes\":5000}\n";
}

void TestQrxTransfer::downloadFetchesTheControllersFiles()
{
    QFETCH(bool, json);
    QFETCH(QString, listed);
    const QByteArray data = bytes(5000, 3);
    QVERIFY(writeFile(m_controller->path() + "/jobs/R2/DOWN.JBR", data));
    QStringList args{"download", "--root", m_host->path()};
    if (json)
        args.prepend("--json");
    const QrxRun run = qrx(args);
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    QCOMPARE(readFile(m_host->path() + "/robotJob/R2/DOWN.JBR"), data);
    QVERIFY2(run.out.startsWith(listed), qPrintable(run.out));
    QVERIFY2(run.out.endsWith(json ? "{\"files\":1,\"bytes\":5000}\n" : "files: 1\nbytes: 5000\n"), qPrintable(run.out));
}

void TestQrxTransfer::exportCopiesTheFilesOfItsKind_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("folder"); // the controller's folder that holds a file, or empty
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("language");

    QTest::newRow("logs") << "logs" << "logs" << 0 << QString() << QString();
    QTest::newRow("eni") << "eni" << "eni" << 0 << QString() << QString();
    QTest::newRow("no log files") << "logs" << QString() << 1 << "控制器发送的日志列表为空" << QString();
    QTest::newRow("no ENI files") << "eni" << QString() << 1 << "控制器发送的ENI列表为空" << QString();
    QTest::newRow("no log files, in English") << "logs" << QString() << 1 << QString() << "en";
    // The controller holds no configuration folder: it refuses, in any language.
    QTest::newRow("no configuration folder") << "config" << QString() << 4 << "控制器拒绝下载配置文件" << QString();
    QTest::newRow("no configuration folder, in English") << "config" << QString() << 4 << QString() << "en";
}

void TestQrxTransfer::exportCopiesTheFilesOfItsKind()
{
    QFETCH(QString, kind);
    QFETCH(QString, folder);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    QFETCH(QString, language);
    const QByteArray data = bytes(3000, 11);
    if (!folder.isEmpty())
        QVERIFY(writeFile(m_controller->path() + "/" + folder + "/one.txt", data));
    if (kind == "config" && folder.isEmpty())
        m_files->with([](FileService &service) { service.configDir.clear(); });

    const QString target = m_host->path() + "/export/" + kind;
    const QrxRun run = qrx({"export", kind, target}, language);
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
