// The qrx-job tool through its command line: exit codes, diagnostics in the
// FILE:LINE form, files left alone by check, in-place formatting, the JSON
// round trip.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QByteArray kValid = "//DIR\n//JOB\n//NAME J\n//POS\n///NPOS 2,0,0,0,0,0\n///POSTYPE PULSE\n///PULSE\n"
                          "P0001 = 1.50,2.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0\n"
                          "INTV I1 = 3\n"
                          "//INSTRUCTION\n///DATE 2026.11.22 10:00:00\nROBOTTYPE = [R6]\nDOUBLEROBOT = [Cooperative]\n"
                          "PROVERSION = [1.0.5]\nNOP\nMOVJ P0001 VJ = 50 % PL = 0 ACC = 0 DEC = 0 0\nTIMER T = 2\nEND\n";

struct Run
{
    int status;
    QString out;
    QString err;
};

Run run(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(QRX_JOB_TOOL), arguments);
    if (!process.waitForStarted(60000))
        qFatal("qrx-job did not start: %s", qPrintable(process.errorString()));
    if (!process.waitForFinished(120000))
        qFatal("qrx-job did not finish");
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QString write(const QTemporaryDir &dir, const QString &name, const QByteArray &content)
{
    QFile file(dir.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write the test file");
    return file.fileName();
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray replaced(QByteArray text, const QByteArray &from, const QByteArray &to)
{
    return text.replace(from, to);
}

} // namespace

class TestQrxJob : public QObject
{
    Q_OBJECT

private slots:
    void help_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("first");
        QTest::newRow("tool") << QStringList{"--help"} << "usage: qrx-job <command>";
        for (const char *command : {"check", "fmt", "upgrade", "to-json", "from-json"})
            QTest::addRow("%s", command) << QStringList{command, "--help"} << QString("usage: qrx-job ") + command;
    }

    void help()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, first);
        const Run result = run(arguments);
        QCOMPARE(result.status, 0);
        QVERIFY2(result.out.startsWith(first), qPrintable(result.out));
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("nothing") << QStringList{};
        QTest::newRow("unknown command") << QStringList{"lint", "x"};
        QTest::newRow("no file") << QStringList{"check"};
        QTest::newRow("unknown option") << QStringList{"check", "--fast", "x"};
        QTest::newRow("from-json without -o") << QStringList{"from-json", "x.json"};
    }

    void usageErrors()
    {
        QFETCH(QStringList, arguments);
        const Run result = run(arguments);
        QCOMPARE(result.status, 2);
        QVERIFY(result.err.contains("usage: qrx-job"));
    }

    // check: every problem once, on standard error, in the FILE:LINE form
    // with the file's own line, in line order; nothing on standard output;
    // the status; the file is never changed.
    void check_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("extra");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("diagnostics"); // all of standard error, "%1" the file
        QTest::newRow("valid") << kValid << QStringList{} << 0 << "";
        QTest::newRow("unknown keyword") << replaced(kValid, "TIMER T = 2", "FOO 1") << QStringList{} << 1
                                         << "%1:17: error: syntax error at \"FOO 1\"\n";
        QTest::newRow("instruction that does not read")
            << replaced(kValid, "TIMER T = 2", "TIMER X = 2") << QStringList{} << 1
            << "%1:17: error: syntax error at \"TIMER X = 2\"\n";
        QTest::newRow("no END") << replaced(kValid, "END\n", "") << QStringList{} << 1
                                << "%1:17: error: syntax error at the end of the file\n";
        QTest::newRow("record cut short") << replaced(kValid, "INTV I1 = 3", "INTV I1 =") << QStringList{} << 1
                                          << "%1:9: error: syntax error at the end of the line\n";
        QTest::newRow("carriage returns") << replaced(kValid, "\n", "\r\n") << QStringList{} << 1
                                          << "%1:10: error: syntax error at a carriage return (lines end with a line feed alone)\n";
        QTest::newRow("old version still checks") << replaced(kValid, "[1.0.5]", "[1.0.3]") << QStringList{} << 0 << "";
        QTest::newRow("unclosed IF") << replaced(kValid, "TIMER T = 2", "IF {(I1 == 1)}") << QStringList{} << 0
                                     << "%1:17: warning: IF block does not close\n";
        QTest::newRow("jump to nowhere") << replaced(kValid, "TIMER T = 2", "JUMP L9") << QStringList{} << 0
                                         << "%1:17: warning: JUMP to LABEL L9 that does not exist\n";
        QTest::newRow("label twice") << replaced(kValid, "TIMER T = 2", "LABEL L1\nLABEL L1") << QStringList{} << 0
                                     << "%1:18: warning: LABEL L1 defined twice (first at line 17)\n";
        QTest::newRow("undeclared position") << replaced(kValid, "MOVJ P0001", "MOVJ P0002") << QStringList{} << 0
                                             << "%1:16: warning: position P0002 is not declared\n";
        QTest::newRow("other robot type") << kValid << QStringList{"--robot-type", "R4"} << 0
                                          << "%1:12: warning: the job is for robot type R6, not R4\n";
        QTest::newRow("several, in line order")
            << replaced(replaced(kValid, "TIMER T = 2", "JUMP L9"), "MOVJ P0001", "MOVJ P0002")
            << QStringList{"--robot-type", "R4"} << 0
            << "%1:12: warning: the job is for robot type R6, not R4\n"
               "%1:16: warning: position P0002 is not declared\n"
               "%1:17: warning: JUMP to LABEL L9 that does not exist\n";
        QTest::newRow("--werror fails a warning") << replaced(kValid, "TIMER T = 2", "JUMP L9") << QStringList{"--werror"}
                                                  << 1 << "%1:17: warning: JUMP to LABEL L9 that does not exist\n";
        QTest::newRow("--werror passes a clean file") << kValid << QStringList{"--werror"} << 0 << "";
    }

    void check()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, extra);
        QFETCH(int, status);
        QFETCH(QString, diagnostics);
        QTemporaryDir dir;
        const QString path = write(dir, "JOB.JBR", content);
        const Run result = run(QStringList{"check", path} + extra);
        QCOMPARE(result.err, diagnostics.arg(path));
        QCOMPARE(result.out, QString());
        QCOMPARE(result.status, status);
        QCOMPARE(read(path), content); // never modified, not even by the upgrade chain
    }

    void checkSeveralFiles()
    {
        QTemporaryDir dir;
        const QString good = write(dir, "A.JBR", kValid);
        const QString bad = write(dir, "B.JBR", "garbage");
        const Run result = run({"check", good, bad, dir.filePath("C.JBR")});
        QCOMPARE(result.status, 1);
        QVERIFY(result.err.contains(bad + ":1: error: syntax error at \"garbage\"\n"));
        QVERIFY(result.err.contains(dir.filePath("C.JBR") + ":1: error: cannot open the file"));
        QVERIFY(!result.err.contains(good));
    }

    void fmtKeepsAFormattedFile()
    {
        QTemporaryDir dir;
        const QString path = write(dir, "F.JBR", kValid);
        const Run result = run({"fmt", path});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.out.toUtf8(), kValid);
    }

    void fmtInPlace()
    {
        QTemporaryDir dir;
        // A position record with numbers in another spelling is rewritten in
        // the writer's form.
        const QByteArray loose = replaced(kValid, "1.50,2.0,", "1.5,2,");
        const QString path = write(dir, "F.JBR", loose);
        QCOMPARE(run({"fmt", path, "-i"}).status, 0);
        QCOMPARE(read(path), kValid);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"F.JBR"}); // no temporary left
    }

    void fmtOfABadFileLeavesItAlone()
    {
        QTemporaryDir dir;
        const QByteArray bad = replaced(kValid, "TIMER T = 2", "TIMER X = 2");
        const QString path = write(dir, "F.JBR", bad);
        const Run result = run({"fmt", path, "-i"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.err, path + ":17: error: syntax error at \"TIMER X = 2\"\n");
        QCOMPARE(read(path), bad);
    }

    void upgradeReportsEachStep()
    {
        QTemporaryDir dir;
        const QString path = write(dir, "U.JBR", replaced(kValid, "[1.0.5]", "[1.0.3]"));
        const Run result = run({"upgrade", path});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.out, path + ": 1.0.3 -> 1.0.4\n" + path + ": 1.0.4 -> 1.0.5\n");
        QVERIFY(read(path).contains("PROVERSION = [1.0.5]\n"));
        const Run again = run({"upgrade", path});
        QCOMPARE(again.out, path + ": 1.0.5, nothing to upgrade\n");
    }

    void jsonRoundTrip()
    {
        QTemporaryDir dir;
        const QString path = write(dir, "J.JBR", kValid);
        const Run json = run({"to-json", path});
        QCOMPARE(json.status, 0);
        QVERIFY(json.out.contains("\"instructions\":[{"));
        const QString jsonPath = write(dir, "J.json", json.out.toUtf8());
        QCOMPARE(run({"from-json", jsonPath, "-o", dir.filePath("K.JBR")}).status, 0);
        QCOMPARE(read(dir.filePath("K.JBR")), kValid);
        QCOMPARE(run({"to-json", dir.filePath("K.JBR")}).out, json.out);
        const Run pretty = run({"to-json", path, "--pretty"});
        QVERIFY(pretty.out.contains("\n   \"instructions\" : ["));
    }

    // Each instruction carries the keyword of its line beside its type: the
    // word the line starts with, where a type has several.
    void toJsonNamesTheKeyword_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("keyword");
        QTest::newRow("timer") << QByteArray("TIMER T = 2") << 7 << "TIMER";
        QTest::newRow("move") << QByteArray("MOVL P0001 V = 100 mm/s PL = 3 ACC = 80 DEC = 70 1.5") << 2 << "MOVL";
        QTest::newRow("ELSEIF is 11") << QByteArray("IF {(I1 == 1)}\nELSEIF {(I1 == 2)}\nENDIF") << 11 << "ELSEIF";
        QTest::newRow("type 93 adding") << QByteArray("POSADD P1 1 3 10") << 93 << "POSADD";
        QTest::newRow("type 93 subtracting") << QByteArray("POSSUB GP001 1 3 D001") << 93 << "POSSUB";
    }

    void toJsonNamesTheKeyword()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, type);
        QFETCH(QString, keyword);
        QTemporaryDir dir;
        const Run result = run({"to-json", write(dir, "K.JBR", replaced(kValid, "TIMER T = 2", line))});
        QCOMPARE(result.status, 0);
        const QJsonArray instructions = QJsonDocument::fromJson(result.out.toUtf8()).object()["instructions"].toArray();
        bool found = false;
        for (const QJsonValue &instruction : instructions) {
            const QJsonObject object = instruction.toObject();
            QVERIFY2(object["keyword"].isString() && !object["keyword"].toString().isEmpty(),
                     qPrintable(QJsonDocument(object).toJson()));
            found = found || (object["type"].toInt() == type && object["keyword"].toString() == keyword);
        }
        QVERIFY2(found, qPrintable(result.out));
    }

    // The README's sample job (the heredoc that writes DEMO.JBR) passes check.
    void readmeSampleJobChecks()
    {
        QFile readme(QStringLiteral(QRX_SOURCE_DIR "/README.md"));
        QVERIFY(readme.open(QIODevice::ReadOnly));
        const QRegularExpression sample(QStringLiteral("DEMO\\.JBR <<'JOB'\n((?:    [^\n]*\n)*?)    JOB\n"));
        const QRegularExpressionMatch match = sample.match(QString::fromUtf8(readme.readAll()));
        QVERIFY2(match.hasMatch(), "the README has no DEMO.JBR sample");
        const QByteArray job = match.captured(1).replace(QRegularExpression("^    ", QRegularExpression::MultilineOption), "").toUtf8();
        QTemporaryDir dir;
        const Run result = run({"check", "--werror", write(dir, "DEMO.JBR", job)});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.status, 0);
    }

    void fromJsonRefusesOtherDocuments_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::newRow("not JSON") << QByteArray("{");
        QTest::newRow("no instructions") << QByteArray("{\"name\":\"x\"}");
        QTest::newRow("reserved type") << QByteArray("{\"instructions\":[{\"type\":31}]}");
    }

    void fromJsonRefusesOtherDocuments()
    {
        QFETCH(QByteArray, document);
        QTemporaryDir dir;
        const QString path = write(dir, "X.json", document);
        const Run result = run({"from-json", path, "-o", dir.filePath("X.JBR")});
        QCOMPARE(result.status, 1);
        QVERIFY(result.err.startsWith(path + ":1: error: "));
        QVERIFY(!QFile::exists(dir.filePath("X.JBR")));
    }
};

QTEST_GUILESS_MAIN(TestQrxJob)
#include "tst_qrxjob.moc"
