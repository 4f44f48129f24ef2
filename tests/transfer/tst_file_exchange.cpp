// The file exchange frame by frame against a scripted controller: each row is
// one scenario of the controller's message table, played by ScriptedPeer,
// which fails the row on any frame it did not expect and on any step left
// unused. The row also says how the transfer ends (its failure text, the
// files it moved) and what the host's folder holds afterwards: a failure
// leaves the old files whole and nothing else.

#include "ScriptedPeer.h"

#include "support/Loopback.h"
#include "transfer/TcpUpDownFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using testsupport::Script;
using testsupport::Step;
using Files = QMap<QString, QByteArray>; // path below the host's folder -> contents

namespace {

constexpr Step::Link F = Step::File;
constexpr Step::Link M = Step::Main;

QByteArray bytesOf(int size, char seed)
{
    QByteArray data(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        data[i] = char(seed + i * 7 + (i >> 8));
    return data;
}

QByteArray md5(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Md5).toHex();
}

Files filesBelow(const QString &dir)
{
    Files files;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        file.open(QIODevice::ReadOnly);
        files.insert(QDir(dir).relativeFilePath(file.fileName()), file.readAll());
    }
    return files;
}

// The controller sends a file: its data in frames of up to 2048 bytes, then
// the closing frame.
Script dataThenFinish(const QByteArray &data, const QByteArray &finish = R"({"finish":"yes"})")
{
    Script steps;
    for (int at = 0; at < data.size(); at += 2048)
        steps << Step::controllerRaw(0x5522, data.mid(at, 2048));
    steps << Step::controller(F, 0x5522, finish);
    return steps;
}

// The host sends a file: 0x5511 frames of 2048 bytes, the last one shorter.
Script chunks(const QByteArray &data)
{
    Script steps;
    for (int at = 0; at < data.size(); at += 2048)
        steps << Step::hostRaw(0x5511, data.mid(at, 2048));
    return steps;
}

// One job file asked for and sent, in the order of the job synchronisation.
Script jobFile(const QByteArray &name, const QByteArray &data, const QByteArray &finish = R"({"finish":"yes"})")
{
    return Script{Step::host(F, 0x5504, R"({"name":")" + name + R"("})"),
                  Step::controller(F, 0x5505, R"({"answer":"yes","name":")" + name + R"(","size":)"
                                                  + QByteArray::number(data.size()) + "}"),
                  Step::host(F, 0x5524, "{}")}
        + dataThenFinish(data, finish) + Script{Step::host(F, 0x5523, "{}")};
}

// One configuration, log or ENI file: the header, then the file begins.
Script exportFile(const QByteArray &name, const QByteArray &data)
{
    return Script{Step::host(F, 0x5504, R"({"name":")" + name + R"("})"),
                  Step::controller(F, 0x5505, R"({"answer":"yes","name":")" + name + R"(","size":)"
                                                  + QByteArray::number(data.size()) + "}"),
                  Step::controller(F, 0x5521, R"({"name":")" + name + R"("})"),
                  Step::host(F, 0x5524, "{}")}
        + dataThenFinish(data) + Script{Step::host(F, 0x5523, "{}")};
}

// The digest lists of the job synchronisation: robot 1 lists its files,
// robots 2 to 4 none, then the end of the lists.
Script jobLists(const QByteArray &entries, int count)
{
    Script steps{Step::host(M, 0x5532, "{}"),
                 Step::controller(M, 0x5533, R"({"robot":1,"listnum":)" + QByteArray::number(count)
                                                 + R"(,"jobfilelist":[)" + entries + "]}")};
    for (int robot = 2; robot <= 4; ++robot)
        steps << Step::controller(M, 0x5533, R"({"robot":)" + QByteArray::number(robot) + R"(,"listnum":0,"jobfilelist":[]})");
    return steps << Step::controller(M, 0x5535, "");
}

Script upload(const QByteArray &remote, const QByteArray &data)
{
    return Script{Step::host(F, 0x5501, R"({"name":")" + remote + R"(","size":)" + QByteArray::number(data.size()) + "}"),
                  Step::controller(F, 0x5502, R"({"answer":"yes","name":")" + remote + R"("})")}
        + chunks(data)
        + Script{Step::host(F, 0x5512, "{}"), Step::controller(F, 0x5513, R"({"finish":"yes","name":")" + remote + R"("})"),
                 Step::host(M, 0x5061, "{}")};
}

} // namespace

class TestFileExchange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scenario_data();
    void scenario();
};

void TestFileExchange::scenario_data()
{
    QTest::addColumn<QString>("operation"); // upload, import, jobs, logs, eni, config
    QTest::addColumn<QStringList>("names");   // files to upload or to fetch
    QTest::addColumn<Files>("before");        // the host's folder before
    QTest::addColumn<Script>("script");
    QTest::addColumn<QString>("failure");     // empty: the transfer succeeds; {host}: the host's folder
    QTest::addColumn<int>("moved");
    QTest::addColumn<Files>("after");         // the host's folder afterwards

    const QByteArray big = bytesOf(4097, 3), small = "NOP\nEND\n", other = "MOVJ\nEND\n";
    const QByteArray old = "old program\n", fresh = bytesOf(5000, 9);
    const Files oneJob{{"robotJob/R1/A.JBR", big}};
    const Files oldJob{{"robotJob/R1/A.JBR", old}};
    const QByteArray listed = R"({"name":"A.JBR","MD5":")" + md5(fresh) + R"("})";
    const Script asked = jobLists(listed, 1);
    const Script header = asked + Script{Step::host(F, 0x5504, R"({"name":"job/R1/A.JBR"})")};
    const Script sizeHeader = header
        + Script{Step::controller(F, 0x5505, R"({"answer":"yes","name":"job/R1/A.JBR","size":5000})"),
                 Step::host(F, 0x5524, "{}"), Step::controllerRaw(0x5522, fresh.left(2048))};
    const QString broken = QStringLiteral("下载文件出现问题，请重新下载");

    QTest::newRow("upload one file: 4097 bytes in 2048+2048+1")
        << "upload" << QStringList{"R1/A.JBR"} << oneJob << upload("job/R1/A.JBR", big) << QString() << 1 << oneJob;
    const Files even{{"robotJob/R2/E.JBR", big.left(4096)}};
    QTest::newRow("upload 4096 bytes: two chunks")
        << "upload" << QStringList{"R2/E.JBR"} << even << upload("job/R2/E.JBR", big.left(4096)) << QString() << 1 << even;
    const Files long_{{"robotJob/R1/L.JBR", bytesOf(70000, 5)}}; // 34 chunks, more than one write holds
    QTest::newRow("upload 70000 bytes: 34 chunks, the last of 368")
        << "upload" << QStringList{"R1/L.JBR"} << long_ << upload("job/R1/L.JBR", bytesOf(70000, 5)) << QString() << 1 << long_;
    const Files two{{"robotJob/R1/A.JBR", small}, {"robotJob/R3/B.JBP", other}};
    Script secondFile = upload("job/R3/B.JBP", other);
    secondFile[0] = secondFile[0].after(1000); // the described pause between files
    QTest::newRow("upload several files")
        << "upload" << QStringList{"R1/A.JBR", "R3/B.JBP"} << two
        << upload("job/R1/A.JBR", small) + secondFile << QString() << 2 << two;
    QTest::newRow("upload refused")
        << "upload" << QStringList{"R1/A.JBR", "R3/B.JBP"} << two
        << Script{Step::host(F, 0x5501, R"({"name":"job/R1/A.JBR","size":8})"),
                  Step::controller(F, 0x5502, R"({"answer":"no","name":"job/R1/A.JBR"})"), Step::hostRaw(0x5525, "")}
        << QStringLiteral("控制器拒绝上传程序：R1/A.JBR") << 0 << two;
    QTest::newRow("upload not stored")
        << "upload" << QStringList{"R1/A.JBR"} << Files{{"robotJob/R1/A.JBR", small}}
        << Script{Step::host(F, 0x5501, R"({"name":"job/R1/A.JBR","size":8})"),
                  Step::controller(F, 0x5502, R"({"answer":"yes"})"), Step::hostRaw(0x5511, small),
                  Step::host(F, 0x5512, "{}"), Step::controller(F, 0x5513, R"({"finish":"no"})"),
                  Step::hostRaw(0x5525, "")}
        << QStringLiteral("R1/A.JBR 上传失败！") << 0 << Files{{"robotJob/R1/A.JBR", small}};

    QTest::newRow("download: equal MD5, nothing fetched")
        << "jobs" << QStringList() << Files{{"robotJob/R1/A.JBR", fresh}} << asked << QString() << 0
        << Files{{"robotJob/R1/A.JBR", fresh}};
    QTest::newRow("download: empty lists, nothing touched")
        << "jobs" << QStringList() << oldJob << jobLists("", 0) << QString() << 0 << oldJob;
    QTest::newRow("download: other MD5, replaced")
        << "jobs" << QStringList() << oldJob << asked + jobFile("job/R1/A.JBR", fresh) << QString() << 1
        << Files{{"robotJob/R1/A.JBR", fresh}};
    QTest::newRow("download: missing file, any finish value")
        << "jobs" << QStringList() << Files() << asked + jobFile("job/R1/A.JBR", fresh, R"({"finish":true})")
        << QString() << 1 << Files{{"robotJob/R1/A.JBR", fresh}};
    QTest::newRow("download refused")
        << "jobs" << QStringList() << oldJob
        << header + Script{Step::controller(F, 0x5505, R"({"answer":"no","name":"job/R1/A.JBR"})"), Step::hostRaw(0x5525, "")}
        << QStringLiteral("控制器拒绝下载程序") << 0 << oldJob;
    QTest::newRow("download: wrong name")
        << "jobs" << QStringList() << oldJob
        << header + Script{Step::controller(F, 0x5505, R"({"answer":"yes","name":"job/R1/B.JBR","size":5000})"),
                           Step::hostRaw(0x5525, "")}
        << QStringLiteral("文件名有误：job/R1/A.JBR -- job/R1/B.JBR") << 0 << oldJob;
    QTest::newRow("download: connection broken mid-file")
        << "jobs" << QStringList() << oldJob << sizeHeader + Script{Step::close()} << broken << 0 << oldJob;
    QTest::newRow("download: controller silent mid-file, 0x5525")
        << "jobs" << QStringList() << oldJob << sizeHeader + Script{Step::hostRaw(0x5525, "")} << broken << 0 << oldJob;
    QTest::newRow("download: closing frame says no, 0x5525")
        << "jobs" << QStringList() << oldJob
        << header + Script{Step::controller(F, 0x5505, R"({"answer":"yes","name":"job/R1/A.JBR","size":8})"),
                           Step::host(F, 0x5524, "{}"), Step::controllerRaw(0x5522, small),
                           Step::controller(F, 0x5522, R"({"finish":"no"})"), Step::hostRaw(0x5525, "")}
        << broken << 0 << oldJob;
    QTest::newRow("download: the lists never come")
        << "jobs" << QStringList() << oldJob << Script{Step::host(M, 0x5532, "{}")} << broken << 0 << oldJob;
    QTest::newRow("download: hostile name, nothing asked")
        << "jobs" << QStringList() << oldJob
        << Script{Step::host(M, 0x5532, "{}"),
                  Step::controller(M, 0x5533, R"({"robot":1,"listnum":1,"jobfilelist":[{"name":"../A.JBR","MD5":"0"}]})")}
        << QStringLiteral("控制器发送的文件名不安全，已中止传输：../A.JBR") << 0 << oldJob;

    const QByteArray log = bytesOf(3000, 4);
    QTest::newRow("log export")
        << "logs" << QStringList() << Files()
        << Script{Step::host(M, 0x5542, R"({"num":5})"),
                  Step::controller(M, 0x5543, R"({"absolutepath":"/var/log/qrx","logfilenum":2,"logfilelist":["a.log","b.log"]})")}
               + exportFile("/var/log/qrx/a.log", log) + exportFile("/var/log/qrx/b.log", "")
               + Script{Step::host(F, 0x5544, "{}")}
        << QString() << 2 << Files{{"export/a.log", log}, {"export/b.log", ""}};
    QTest::newRow("log export: empty list")
        << "logs" << QStringList() << Files()
        << Script{Step::host(M, 0x5542, R"({"num":5})"),
                  Step::controller(M, 0x5543, R"({"absolutepath":"/var/log/qrx","logfilenum":0,"logfilelist":[]})")}
        << QStringLiteral("控制器发送的日志列表为空，无法导出控制器日志") << 0 << Files();
    QTest::newRow("log export refused")
        << "logs" << QStringList() << Files()
        << Script{Step::host(M, 0x5542, R"({"num":5})"),
                  Step::controller(M, 0x5543, R"({"absolutepath":"/l","logfilenum":1,"logfilelist":["a.log"]})"),
                  Step::host(F, 0x5504, R"({"name":"/l/a.log"})"),
                  Step::controller(F, 0x5505, R"({"answer":"no","name":"/l/a.log"})"), Step::hostRaw(0x5525, "")}
        << QStringLiteral("控制器拒绝下载日志文件") << 0 << Files();
    QTest::newRow("log export: folder cannot be made")
        << "logs" << QStringList() << Files{{"export", "a file, not a folder"}}
        << Script{Step::host(M, 0x5542, R"({"num":5})"),
                  Step::controller(M, 0x5543, R"({"absolutepath":"/l","logfilenum":1,"logfilelist":["a.log"]})"),
                  Step::host(F, 0x5504, R"({"name":"/l/a.log"})"),
                  Step::controller(F, 0x5505, R"({"answer":"yes","name":"/l/a.log","size":1})"),
                  Step::controller(F, 0x5521, R"({"name":"/l/a.log"})"), Step::hostRaw(0x5525, "")}
        << QStringLiteral("无法创建日志文件路径，无法继续下载") << 0 << Files{{"export", "a file, not a folder"}};
    QTest::newRow("ENI export: empty list")
        << "eni" << QStringList() << Files()
        << Script{Step::host(M, 0x5542, R"({"num":10})"),
                  Step::controller(M, 0x5546, R"({"absolutepath":"/eni","ENIfilenum":0,"ENIfilelist":[]})")}
        << QStringLiteral("控制器发送的ENI列表为空，无法导出控制器ENI") << 0 << Files();
    QTest::newRow("ENI export")
        << "eni" << QStringList() << Files()
        << Script{Step::host(M, 0x5542, R"({"num":10})"),
                  Step::controller(M, 0x5546, R"({"absolutepath":"/eni","ENIfilenum":1,"ENIfilelist":["bus.xml"]})")}
               + exportFile("/eni/bus.xml", log) + Script{Step::host(F, 0x5544, "{}")}
        << QString() << 1 << Files{{"export/bus.xml", log}};
    QTest::newRow("configuration export")
        << "config" << QStringList{"config/a.json", "config/b.json"} << Files()
        << exportFile("config/a.json", "{\"speed\":20}\n") + exportFile("config/b.json", small) << QString() << 2
        << Files{{"export/a.json", "{\"speed\":20}\n"}, {"export/b.json", small}};
    QTest::newRow("configuration import")
        << "import" << QStringList{"mine/global.json"} << Files{{"mine/global.json", small}}
        << upload("config/global.json", small) << QString() << 1 << Files{{"mine/global.json", small}};
    QTest::newRow("configuration import: unreadable file")
        << "import" << QStringList{"nowhere/global.json"} << Files() << Script{Step::hostRaw(0x5525, "")}
        << QStringLiteral("无法读取上传程序：{host}/nowhere/global.json") << 0 << Files();
}

void TestFileExchange::scenario()
{
    QFETCH(QString, operation);
    QFETCH(QStringList, names);
    QFETCH(Files, before);
    QFETCH(Script, script);
    QFETCH(QString, failure);
    QFETCH(int, moved);
    QFETCH(Files, after);
    QTemporaryDir host;
    failure.replace(QLatin1String("{host}"), host.path());
    for (auto it = before.begin(); it != before.end(); ++it) {
        QVERIFY(QDir().mkpath(QFileInfo(host.filePath(it.key())).absolutePath()));
        QFile file(host.filePath(it.key()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(it.value()), qint64(it.value().size()));
    }

    const QHostAddress address(testsupport::loopbackAddress());
    testsupport::ScriptedPeer *peer = nullptr;
    TcpUpDownFile transfer({address.toString(),
                            [&](quint16 code, const QByteArray &payload) { return peer->fromHostMain(code, payload); },
                            {}});
    testsupport::ScriptedPeer scripted(address, script, &transfer);
    peer = &scripted;
    transfer.setFilePort(scripted.port());
    transfer.setJobRoot(host.path());
    transfer.setTargetFolder(host.filePath(QStringLiteral("export")));
    transfer.setSilenceMs(3000);

    QElapsedTimer clock;
    clock.start();
    if (operation == QLatin1String("upload")) {
        transfer.runUpload(names);
    } else if (operation == QLatin1String("import")) {
        transfer.setRemotePrefix(QStringLiteral("config/"));
        transfer.runUpload({host.filePath(names.value(0))});
    } else if (operation == QLatin1String("jobs")) {
        transfer.runJobDownload(1);
    } else if (operation == QLatin1String("config")) {
        transfer.runNameDownload(TcpUpDownFile::ConfigDownload, names);
    } else {
        transfer.runListExport(operation == QLatin1String("logs") ? TcpUpDownFile::LogDownload : TcpUpDownFile::EniDownload);
    }
    const qint64 took = clock.elapsed();

    const QStringList errors = scripted.verdict();
    QVERIFY2(errors.isEmpty(), qPrintable(errors.join(QLatin1String("\n"))));
    QCOMPARE(transfer.lastFailure(), failure);
    QCOMPARE(transfer.state(), failure.isEmpty() ? TcpUpDownFile::State::Done : TcpUpDownFile::State::Failed);
    QCOMPARE(transfer.filesDone(), moved);
    QCOMPARE(filesBelow(host.path()), after);
    // The file connection is opened once, and only when the script uses it.
    const bool usesFile = std::any_of(script.begin(), script.end(), [](const Step &step) { return step.link == F; });
    QCOMPARE(scripted.connections(), usesFile ? 1 : 0);
    QVERIFY2(took < 30000, "the transfer outlived its bound"); // the silence bound is 3 s
}

QTEST_GUILESS_MAIN(TestFileExchange)
#include "tst_file_exchange.moc"
