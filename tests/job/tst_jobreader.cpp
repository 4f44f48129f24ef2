// The job file reader: lines of every text form read back to the same line
// and fields, whole files read back to the same bytes, bad inputs fail with
// their texts and keep nothing, the version chain rewrites the file.

#include "job/CommandFactory.h"
#include "job/FieldAtoms.h"
#include "job/Instructions.h"
#include "job/InstructionTable.h"
#include "job/JobFileLoader.h"
#include "job/JobReadDriver.h"
#include "job/LineForms.h"

#include <QTemporaryDir>
#include <json/writer.h>
#include <QtTest>
#include <fstream>
#include <iostream>
#include <sstream>
#include <thread>

using namespace qrx;

namespace {

const char *const kDate = "2026.11.22 10:00:00";

// A value for a slot that differs from every default.
void fill(Command &command, const FieldAtom &atom, int variant)
{
    void *member = atom.get(command);
    switch (atom.kind) {
    case FieldAtom::Int: *static_cast<int *>(member) = 17 + variant; break;
    case FieldAtom::Double:
    case FieldAtom::SpeedData: *static_cast<double *>(member) = 2.5 + variant; break;
    case FieldAtom::String:
    case FieldAtom::SpeedName: *static_cast<std::string *>(member) = "VAR_" + std::to_string(variant); break;
    case FieldAtom::Parameter: {
        auto *parameter = static_cast<ParaCommand *>(member);
        if (variant % 2) {
            parameter->value = 1;
            parameter->varname = "PV" + std::to_string(variant);
        } else {
            parameter->data = 12.25;
        }
        break;
    }
    case FieldAtom::Condition: {
        auto *condition = static_cast<CommandConditionFINAL *>(member);
        condition->groups.resize(2);
        condition->groups[0].conditions.resize(2);
        condition->groups[0].conditions[0].key = "I001";
        condition->groups[0].conditions[0].logicType = 3;
        condition->groups[0].conditions[0].desValue = "5";
        condition->groups[0].conditions[1].key = "B002";
        condition->groups[0].conditions[1].desValue = "1";
        condition->groups[0].logics = {LogicSymbolClass{1}};
        condition->groups[1].conditions.resize(1);
        condition->groups[1].conditions[0].key = "D003";
        condition->groups[1].conditions[0].logicType = 1;
        condition->groups[1].conditions[0].desValue = "2.5";
        condition->logics = {LogicSymbolClass{0}};
        break;
    }
    default: break;
    }
}

std::unique_ptr<Command> parse(const std::string &line, PositionTable *table = nullptr)
{
    return parseInstructionLine(line, typesOfLine(line), table, nullptr);
}

QString writeFile(const QTemporaryDir &dir, const char *name, const std::string &text)
{
    const QString path = dir.filePath(name);
    std::ofstream(path.toStdString(), std::ios::binary) << text;
    return path;
}

std::string readAll(const QString &path)
{
    std::ifstream in(path.toStdString(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// A program with one instruction of every code that has a line form.
std::unique_ptr<JobProgram> everyCode()
{
    auto job = std::make_unique<JobProgram>();
    job->name = "ALL";
    job->robotType = "R6";
    job->doubleRobot = "Cooperative";
    auto pos = std::make_unique<RobotPos>();
    pos->key = "VAR_0";
    pos->ctype = 1;
    pos->data = {1.5, -2, 0.125};
    job->positions.insert(std::move(pos));
    job->intVariables["I001"] = 5;
    job->floatVariables["D003"] = 2.5;
    job->boolVariables["B002"] = false;
    for (int type = 0; type <= 219; ++type) {
        auto command = newLineCommand(type);
        if (!command)
            continue;
        const FieldAtoms &atoms = *commandFieldAtoms(type);
        const auto &forms = lineForms(type);
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            if (!forms.empty() && std::any_of(forms[0].pieces.begin(), forms[0].pieces.end(),
                                              [&](const LineForm::Piece &p) { return p.atom == int(i); }))
                fill(*command, atoms[i], 0);
        }
        job->insert(std::move(command));
    }
    return job;
}

const std::string kValidFile = "//DIR\n//JOB\n//NAME J\n//POS\n///NPOS 1,0,0,0,0,0\n///POSTYPE PULSE\n///PULSE\n"
                               "//INSTRUCTION\n///DATE d\nROBOTTYPE = [R6]\nDOUBLEROBOT = [Cooperative]\n"
                               "PROVERSION = [1.0.5]\nNOP\nTIMER T = 2\nEND\n";

} // namespace

class TestJobReader : public QObject
{
    Q_OBJECT

private slots:
    // Every form of every creatable code, each carried field changed from
    // its default: render -> parse -> render gives the same line, and the
    // fields survive (same JSON).
    void roundTrip_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("form");
        QTest::addColumn<bool>("disabled");
        for (int type = 0; type <= 219; ++type) {
            const auto &forms = lineForms(type);
            for (std::size_t f = 0; f < forms.size(); ++f)
                QTest::addRow("type %d form %zu", type, f) << type << int(f) << (f % 3 == 1);
        }
    }

    void roundTrip()
    {
        QFETCH(int, type);
        QFETCH(int, form);
        QFETCH(bool, disabled);
        const LineForm &lineForm = lineForms(type)[std::size_t(form)];
        const FieldAtoms &atoms = *commandFieldAtoms(type);
        auto command = newLineCommand(type);
        for (const LineForm::Choice &choice : lineForm.choices)
            applyChoice(*command, atoms, choice);
        int variant = 0;
        for (const LineForm::Piece &piece : lineForm.pieces) {
            if (piece.atom >= 0)
                fill(*command, atoms[std::size_t(piece.atom)], variant++);
        }
        command->logout = disabled;
        const std::string line = command->toString();
        auto back = parse(line);
        QVERIFY2(back, line.c_str());
        QCOMPARE(QString::fromStdString(back->toString()), QString::fromStdString(line));
        // The first form of a type is never shadowed by another: every field
        // its line carries survives. (Later forms may render the same line as
        // an earlier one, e.g. a target named by position or by variable.)
        if (form == 0) {
            QCOMPARE(back->type, type);
            QCOMPARE(QString::fromStdString(Json::FastWriter().write(back->toJson())),
                     QString::fromStdString(Json::FastWriter().write(command->toJson())));
        }
    }

    // Hand-written lines of the main families and the fields they carry.
    void lines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("movj %") << "MOVJ P0001 VJ = 50 % PL = 0 ACC = 0 DEC = 0 0" << 1 << "ParaV.data" << "50";
        QTest::newRow("movl variable speed") << "MOVL P0001 V = GV1 PL = 3 ACC = 10 DEC = 20 T1" << 2 << "ParaV.varname" << "GV1";
        QTest::newRow("movl variable time") << "MOVL P0001 V = GV1 PL = 3 ACC = 10 DEC = 20 T1" << 2 << "ParaTIME.varname" << "T1";
        QTest::newRow("cm/s writes no speed") << "MOVJ P0001 PL = 0 ACC = 0 DEC = 0 0" << 1 << "ParaV.m_vUnit" << "0";
        QTest::newRow("movj disabled") << "MOVJ P0001 V = 100 mm/s PL = 0 ACC = 0 DEC = 0 0 DISABLE" << 1 << "logout" << "true";
        QTest::newRow("timer") << "TIMER T = 2.5" << 7 << "duration" << "2.5";
        QTest::newRow("if condition") << "IF {(I001 >= 5) OR (B002 == 1)} AND {(D003 <> 2.5)}" << 9 << "ifconditionArrayFINAL.logic" << "[0]";
        QTest::newRow("else") << "ELSE" << 10 << "type" << "10";
        QTest::newRow("call") << "CALL [$SUB1$]" << 15 << "jobName" << "SUB1";
        QTest::newRow("int declaration") << "INT I9 = 4" << 35 << "key" << "I9";
        QTest::newRow("label") << "LABEL L1" << 53 << "label" << "L1";
        QTest::newRow("lua") << "CALL_LUAFILE [$a.lua$]" << 215 << "luafileName" << "a.lua";
        QTest::newRow("window, count 2") << "WINDOW [$Ask$] GI001 2 [$Yes$] 5 [$No$] 6" << 208 << "count" << "2";
        QTest::newRow("window, value after count") << "WINDOW [$Ask$] GI001 2 [$Yes$] 5 [$No$] 6" << 208 << "value2" << "6";
        QTest::newRow("window, no texts") << "WINDOW [$Ask$] GI001 0" << 208 << "variable" << "GI001";
        QTest::newRow("window, count beyond three") << "WINDOW [$A$] V 7 [$a$] 1 [$b$] 2 [$c$] 3" << 208 << "count" << "7";
        QTest::newRow("thread state, main program") << "PTHREAD_STATE  MainProgram GI002" << 209 << "jobName" << "";
        QTest::newRow("thread state, main program variable") << "PTHREAD_STATE  MainProgram GI002" << 209
                                                              << "m_VariableValue" << "GI002";
        QTest::newRow("thread state, job") << "PTHREAD_STATE [$SUB$] GLOBAL GI002" << 209 << "localOrGlobal" << "1";
        QTest::newRow("end all threads") << "PTHREAD_ENDALL" << 114 << "type" << "114";
    }

    void lines()
    {
        QFETCH(QString, line);
        QFETCH(int, type);
        QFETCH(QString, key);
        QFETCH(QString, value);
        auto command = parse(line.toStdString());
        QVERIFY(command);
        QCOMPARE(command->type, type);
        QCOMPARE(QString::fromStdString(command->toString()), line);
        Json::Value json = command->toJson();
        for (const QString &part : key.split('.'))
            json = json[part.toStdString()];
        QString text = json.isString() ? QString::fromStdString(json.asString())
                                       : QString::fromStdString(Json::FastWriter().write(json)).trimmed();
        if (json.isDouble())
            text = QString::number(json.asDouble());
        QCOMPARE(text, value);
    }

    // A line the writer would not produce but whose slots convert is read,
    // and written again in the writer's form.
    void otherNumberTextsAreWrittenCanonically_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("written");
        QTest::newRow("trailing zero") << "TIMER T = 2.50" << "TIMER T = 2.5";
        QTest::newRow("leading zero speed") << "MOVJ P0001 VJ = 050 % PL = 0 ACC = 0 DEC = 0 0"
                                            << "MOVJ P0001 VJ = 50 % PL = 0 ACC = 0 DEC = 0 0";
        QTest::newRow("exponent") << "TIMER T = 1e1" << "TIMER T = 10";
    }

    void otherNumberTextsAreWrittenCanonically()
    {
        QFETCH(QString, line);
        QFETCH(QString, written);
        auto command = parse(line.toStdString());
        QVERIFY(command);
        QCOMPARE(QString::fromStdString(command->toString()), written);
        auto again = parse(written.toStdString());
        QVERIFY(again);
        QCOMPARE(QString::fromStdString(again->toString()), written);
    }

    void unknownLinesDoNotParse_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("unknown keyword") << "FOO 1";
        QTest::newRow("known keyword, other fields") << "TIMER X = 2";
        QTest::newRow("number where a number is due") << "MOVJ P1 V = 1 mm/s PL = 0 ACC = 0 DEC = 0 0 9";
        QTest::newRow("empty") << "";
    }

    void unknownLinesDoNotParse()
    {
        QFETCH(QString, line);
        QVERIFY(!parse(line.toStdString()));
    }

    // The table's keywords are the words the rendering starts with.
    void tableMatchesRendering()
    {
        for (int type = 0; type <= 219; ++type) {
            for (const LineForm &form : lineForms(type)) {
                QVERIFY(!form.pieces.empty() && form.pieces[0].atom < 0);
                const auto &types = typesOfLine(form.pieces[0].literal);
                QVERIFY2(std::find(types.begin(), types.end(), type) != types.end(), form.pieces[0].literal.c_str());
            }
        }
        for (const InstructionEntry &entry : instructionTable())
            QCOMPARE(QString(commandClassName(entry.type)), QString(entry.className));
    }

    // write -> read -> write is a fixed point for a file with every code.
    void everyCodeFixedPoint()
    {
        auto job = everyCode();
        const std::string text = job->text(kDate);
        std::ostringstream out;
        JobReadDriver driver(out);
        auto back = driver.read(text);
        QVERIFY2(back, out.str().c_str());
        QCOMPARE(back->instructions.size(), job->instructions.size());
        QCOMPARE(QString::fromStdString(back->text(kDate)), QString::fromStdString(text));
        auto *move = dynamic_cast<MoveCommand *>(back->instructions[1].get());
        QVERIFY(move);
        QCOMPARE(move->position(), back->positions.find("VAR_0")); // shared with the table
    }

    void badInput_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        const std::string valid = kValidFile;
        QTest::newRow("empty") << QByteArray() << "[KVRSM]Parse error:syntax error at line no: 0\n";
        QTest::newRow("binary") << QByteArray("\x00\x01\xff\xfe\x7f garbage", 13) << "[KVRSM]Parse error:syntax error at line no: 0\n";
        QTest::newRow("truncated") << QByteArray::fromStdString(valid.substr(0, valid.size() / 2)) << "[KVRSM]Parse error:syntax error at line no: ";
        std::string huge = valid;
        huge.insert(huge.find("TIMER"), std::string(10 * 1024 * 1024, 'A') + "\n");
        QTest::newRow("10 MB line") << QByteArray::fromStdString(huge) << "[KVRSM]Parse error:syntax error at line no: 13\n";
        std::string utf8 = valid;
        utf8.insert(utf8.find("TIMER"), "CALL [$\xc3\x28\xff$]\n");
        QTest::newRow("invalid UTF-8 reads as bytes") << QByteArray::fromStdString(utf8) << "";
        std::string noEnd = valid.substr(0, valid.find("END\n"));
        QTest::newRow("no END") << QByteArray::fromStdString(noEnd) << "[KVRSM]Parse error:syntax error at line no: 14\n";
        std::string shortRecord = valid;
        std::string record = "P1 = 0.0";
        for (int i = 1; i < 20; ++i)
            record += ",0.0";
        shortRecord.insert(shortRecord.find("//INSTRUCTION"), record + "\n");
        QTest::newRow("20 coordinates") << QByteArray::fromStdString(shortRecord)
                                        << "[KVRSM]Parse error:position P1 has 20 coordinates, not 21 at line no: 7\n";
        std::string unknown = valid;
        unknown.insert(unknown.find("TIMER"), "FOO 1\n");
        QTest::newRow("unknown keyword") << QByteArray::fromStdString(unknown)
                                         << "[KVRSM]Parse error:syntax error at line no: 13\ntext : FOO 1\n";
        QTest::newRow("no header") << QByteArray("NOP\nEND\n") << "[KVRSM]Parse error:syntax error at line no: 0\ntext : NOP\n";
    }

    void badInput()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        const QString path = writeFile(dir, "BAD.JBR", content.toStdString());
        std::ostringstream out;
        auto job = loadJobFile(path.toStdString(), "R6", "Cooperative", "", out);
        const QString text = QString::fromStdString(out.str());
        if (expected.isEmpty()) { // bytes that are not UTF-8 are names like any other
            QVERIFY2(job, out.str().c_str());
            return;
        }
        QVERIFY(!job);
        QVERIFY2(text.startsWith(expected), qPrintable(text.left(300)));
        QVERIFY(text.endsWith("Open and parse file fail: pro" + path + "\n"));
        QCOMPARE(readAll(path), content.toStdString()); // never rewritten
    }

    void missingFile()
    {
        std::ostringstream out;
        QVERIFY(!loadJobFile("/nonexistent/X.JBR", "R6", "", "", out));
        QCOMPARE(QString::fromStdString(out.str()), QString("打开作业文件 /nonexistent/X.JBR 失败\n"));
        QCOMPARE(openJobFile("/nonexistent/X.JBR", "R6", "", ""), 0);
    }

    void undeclaredPositionIsReported()
    {
        std::string text = kValidFile;
        text.replace(text.find("TIMER T = 2"), 11, "MOVJ P9 V = 1 mm/s PL = 0 ACC = 0 DEC = 0 0");
        std::ostringstream out;
        JobReadDriver driver(out);
        auto job = driver.read(text);
        QVERIFY(job);
        QCOMPARE(QString::fromStdString(out.str()), QString("P9] NOT FOUND!\n"));
        QCOMPARE(driver.missingPositions().size(), std::size_t(1));
        QCOMPARE(driver.missingPositions()[0].first, 13);
    }

    // The version chain from each version: the steps and the rewritten file.
    void upgradeChain_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("doubleRobot");
        QTest::addColumn<QString>("expectedDouble");
        QTest::newRow("1.0.3 rewritten twice") << "1.0.3" << QStringList{"1.0.4", "1.0.5"} << "Cooperative" << "";
        QTest::newRow("empty from the start") << "" << QStringList{"1.0.0", "1.0.1", "1.0.2", "1.0.3", "1.0.4", "1.0.5"}
                                              << "Cooperative" << "Cooperative";
        QTest::newRow("caller's empty double robot") << "1.0.1" << QStringList{"1.0.2", "1.0.3", "1.0.4", "1.0.5"}
                                                     << "" << "NoCooperative";
        QTest::newRow("current") << "1.0.5" << QStringList{} << "Cooperative" << "";
        QTest::newRow("unknown version stays") << "2.0" << QStringList{} << "Cooperative" << "";
    }

    void upgradeChain()
    {
        QFETCH(QString, version);
        QFETCH(QStringList, steps);
        QFETCH(QString, doubleRobot);
        QFETCH(QString, expectedDouble);
        std::string text = kValidFile;
        text.replace(text.find("PROVERSION = [1.0.5]"), 20, "PROVERSION = [" + version.toStdString() + "]");
        text.replace(text.find("DOUBLEROBOT = [Cooperative]"), 27, "DOUBLEROBOT = []");
        QTemporaryDir dir;
        const QString path = writeFile(dir, "UP.JBR", text);
        std::ostringstream out;
        JobLoadReport report;
        std::streambuf *old = std::cout.rdbuf(out.rdbuf()); // the writer's "Job file:" lines
        auto job = loadJobFile(path.toStdString(), "R6", doubleRobot.toStdString(), "x", out, &report);
        std::cout.rdbuf(old);
        QVERIFY(job);
        QStringList reached;
        for (const std::string &step : report.upgrades)
            reached << QString::fromStdString(step);
        QCOMPARE(reached, steps);
        const QString expectedVersion = steps.isEmpty() ? version : steps.last();
        QCOMPARE(QString::fromStdString(job->version), expectedVersion);
        const QString finalDouble = expectedDouble.isEmpty() ? "NoCooperative" : expectedDouble;
        QCOMPARE(QString::fromStdString(job->doubleRobot), finalDouble);
        const QString written = QString::fromStdString(readAll(path));
        QVERIFY(written.contains("PROVERSION = [" + expectedVersion + "]\n"));
        QVERIFY(written.contains("DOUBLEROBOT = [" + finalDouble + "]\n"));
        QVERIFY(QRegularExpression("///DATE \\d{4}\\.\\d\\d\\.\\d\\d \\d\\d:\\d\\d:\\d\\d\n").match(written).hasMatch());
        // One "Job file:" line per rewrite; filling an empty double-robot
        // value is one more.
        const int rewrites = QString::fromStdString(out.str()).count("Job file:" + path + "|\n");
        QCOMPARE(rewrites, steps.size() + (finalDouble == "NoCooperative" ? 1 : 0));
    }

    void robotTypeMismatchWarns()
    {
        QTemporaryDir dir;
        const QString path = writeFile(dir, "RT.JBR", kValidFile);
        std::ostringstream out;
        JobLoadReport report;
        QVERIFY(loadJobFile(path.toStdString(), "R4", "Cooperative", "", out, &report));
        QVERIFY(report.robotTypeMismatch);
        QCOMPARE(QString::fromStdString(out.str()), "Open and parse file success:" + path + "\n"
                 "作业中的机器人类型与当前机器人类型不一致 文件名：" + path + "\n");
        QCOMPARE(readAll(path), kValidFile); // nothing to upgrade
    }

    void openJobFileKeepsTheProgram()
    {
        QTemporaryDir dir;
        const QString path = writeFile(dir, "OK.JBR", kValidFile);
        QCOMPARE(openJobFile(path.toStdString(), "R6", "Cooperative", ""), 1);
        QVERIFY(currentJobProgram());
        QCOMPARE(currentJobProgram()->instructionCount(), std::size_t(1));
    }

    void onlyBracketsPass()
    {
        std::string text = kValidFile;
        text.erase(text.find("TIMER T = 2\n"), 12);
        std::ostringstream out;
        JobReadDriver driver(out);
        auto job = driver.read(text);
        QVERIFY(job);
        QCOMPARE(job->instructions.size(), std::size_t(2));
    }

    void twoThreadsReadAtOnce()
    {
        const std::string first = everyCode()->text(kDate);
        std::string second = kValidFile;
        second.insert(second.find("TIMER"), "FOO\n");
        bool firstOk = false;
        bool secondOk = true;
        std::thread a([&] {
            for (int i = 0; i < 20; ++i) {
                std::ostringstream out;
                firstOk = JobReadDriver(out).read(first) != nullptr;
            }
        });
        std::thread b([&] {
            for (int i = 0; i < 200; ++i) {
                std::ostringstream out;
                secondOk = secondOk && !JobReadDriver(out).read(second)
                    && out.str().find("at line no: 13\n") != std::string::npos;
            }
        });
        a.join();
        b.join();
        QVERIFY(firstOk);
        QVERIFY(secondOk);
    }
};

QTEST_APPLESS_MAIN(TestJobReader)
#include "tst_jobreader.moc"
