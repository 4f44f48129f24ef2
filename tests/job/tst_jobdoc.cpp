// docs/job-language.md, read by the job reader: every example line of a
// ```job block reads and is written back as the same line, every ```jobfile
// block reads and is written back as the same file, and every instruction
// class of the instruction table has an example. The examples are taken from
// the page itself, so the page and this test cannot drift apart.

#include "job/InstructionTable.h"
#include "job/JobReadDriver.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>
#include <map>
#include <set>
#include <sstream>

using namespace qrx;

namespace {

const char *const kHeader = "//DIR\n//JOB\n//NAME DOC\n//POS\n///NPOS 0,0,0,0,0,0\n///POSTYPE PULSE\n///PULSE\n"
                            "//INSTRUCTION\n///DATE 2026.11.24 10:00:00\nROBOTTYPE = [R6]\n"
                            "DOUBLEROBOT = [NoCooperative]\nPROVERSION = [1.0.5]\nNOP\n";

struct Block
{
    QString kind; // "job" or "jobfile"
    QString text;
};

std::vector<Block> blocks()
{
    QFile page(QStringLiteral(QRX_SOURCE_DIR "/docs/job-language.md"));
    if (!page.open(QIODevice::ReadOnly))
        qFatal("docs/job-language.md does not open");
    const QRegularExpression fence(QStringLiteral("```(job|jobfile)\\n(.*?)```"),
                                   QRegularExpression::DotMatchesEverythingOption);
    std::vector<Block> found;
    auto matches = fence.globalMatch(QString::fromUtf8(page.readAll()));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        found.push_back({match.captured(1), match.captured(2)});
    }
    return found;
}

std::unique_ptr<JobProgram> read(const std::string &text, std::string &diagnostics)
{
    std::ostringstream out;
    JobReadDriver driver(out);
    auto program = driver.read(text);
    diagnostics = out.str();
    return program;
}

} // namespace

class TestJobDoc : public QObject
{
    Q_OBJECT

private slots:
    void examples_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("text");
        int n = 0;
        for (const Block &block : blocks())
            QTest::addRow("%d %s: %s", ++n, qPrintable(block.kind), qPrintable(block.text.section('\n', 0, 0)))
                << block.kind << block.text;
        QVERIFY2(n > 0, "the page has no example block");
    }

    void examples()
    {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        if (kind == "jobfile") {
            std::string diagnostics;
            const auto program = read(text.toStdString(), diagnostics);
            QVERIFY2(program, diagnostics.c_str());
            QCOMPARE(QString::fromStdString(program->text(program->date)), text);
            return;
        }
        const QStringList lines = text.split('\n', Qt::SkipEmptyParts);
        std::string diagnostics;
        const auto program = read(kHeader + text.toStdString() + "END\n", diagnostics);
        QVERIFY2(program, diagnostics.c_str());
        QCOMPARE(program->instructions.size(), std::size_t(lines.size() + 2));
        for (int i = 0; i < lines.size(); ++i)
            QCOMPARE(QString::fromStdString(program->instructions[std::size_t(i + 1)]->toString()), lines[i]);
    }

    // Each instruction class of the table has an example line on the page.
    void everyFamilyHasAnExample()
    {
        std::map<int, std::string> classOfType;
        std::set<std::string> classes;
        for (const InstructionEntry &entry : instructionTable()) {
            classOfType[entry.type] = entry.className;
            classes.insert(entry.className);
        }
        for (const Block &block : blocks()) {
            std::string diagnostics;
            const std::string text = block.kind == "job" ? kHeader + block.text.toStdString() + "END\n"
                                                         : block.text.toStdString();
            const auto program = read(text, diagnostics);
            for (std::size_t i = 1; program && i + 1 < program->instructions.size(); ++i)
                classes.erase(classOfType[program->instructions[i]->type]);
        }
        QStringList missing;
        for (const std::string &name : classes)
            missing << QString::fromStdString(name);
        QVERIFY2(missing.isEmpty(), qPrintable("no example of: " + missing.join(", ")));
    }
};

QTEST_GUILESS_MAIN(TestJobDoc)
#include "tst_jobdoc.moc"
