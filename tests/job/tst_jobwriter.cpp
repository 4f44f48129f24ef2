// The job file writer: the whole file byte for byte, the position filter,
// the default version, the silent failure.

#include "job/Instructions.h"
#include "job/JobProgram.h"

#include <QTemporaryDir>
#include <QtTest>
#include <fstream>
#include <iostream>
#include <sstream>

using namespace qrx;

namespace {

std::unique_ptr<RobotPos> position(const char *name, int ctype, double first)
{
    auto pos = std::make_unique<RobotPos>();
    pos->key = name;
    pos->ctype = ctype;
    pos->data[0] = first;
    return pos;
}

std::string readAll(const QString &path)
{
    std::ifstream in(path.toStdString(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Standard output of a call.
template <class F>
std::string captureStdout(F call)
{
    std::ostringstream captured;
    std::streambuf *old = std::cout.rdbuf(captured.rdbuf());
    call();
    std::cout.rdbuf(old);
    return captured.str();
}

} // namespace

class TestJobWriter : public QObject
{
    Q_OBJECT

private slots:
    void wholeFile()
    {
        JobProgram job;
        job.name = "WELD01";
        job.robotType = "R6";
        job.doubleRobot = "NoCooperative";
        job.version = "1.0.5";
        auto p1 = position("P0001", 1, 1.5);
        p1->data[1] = 2;
        p1->data[2] = 0.125;
        p1->data[3] = -0.5;
        p1->paraVarData[4] = std::make_unique<ParaVarCommand>();
        p1->paraVarData[4]->varname = "GP1";
        job.positions.insert(std::move(p1));
        job.positions.insert(position("P0002", 0, 7)); // not written
        job.namedValues["N1"] = "4";
        job.intVariables["I1"] = -3;
        job.floatVariables["F1"] = 2.5;
        job.boolVariables["B1"] = true;
        auto move = std::make_unique<MoveCommand>(1);
        move->m_positionId = "P0001";
        move->paraV->data = 50;
        move->paraV->m_vUnit = 2;
        job.insert(std::move(move));
        job.insert(std::make_unique<TimerCommand>(7))->logout = true;

        const std::string zeros16 = ",0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0";
        const std::string expected = "//DIR\n//JOB\n//NAME WELD01\n//POS\n///NPOS 2,0,0,0,0,0\n"
                                     "///POSTYPE PULSE\n///PULSE\n"
                                     "P0001 = 1.50,2.0,0.1250,-0.50,GP1" + zeros16 + "\n"
                                     "N1 = 4\nINTV I1 = -3\nFLOATV F1 = 2.5\nBOOLV B1 = 1\n"
                                     "//INSTRUCTION\n///DATE 2026.11.22 10:00:00\n"
                                     "ROBOTTYPE = [R6]\nDOUBLEROBOT = [NoCooperative]\nPROVERSION = [1.0.5]\n"
                                     "NOP\nMOVJ P0001 VJ = 50 % PL = 0 ACC = 0 DEC = 0 0\nTIMER T = 0 DISABLE\nEND\n";
        QCOMPARE(QString::fromStdString(job.text("2026.11.22 10:00:00")), QString::fromStdString(expected));

        QTemporaryDir dir;
        const QString path = dir.filePath("WELD01.JBR");
        const std::string out = captureStdout([&] { job.writeJobFile(path.toStdString(), "2026.11.22 10:00:00"); });
        QCOMPARE(QString::fromStdString(out), "Job file:" + path + "|\n");
        QCOMPARE(QString::fromStdString(readAll(path)), QString::fromStdString(expected));
    }

    void positionFilter_data()
    {
        QTest::addColumn<int>("ctype");
        QTest::addColumn<bool>("written");
        for (int ctype = 0; ctype <= 7; ++ctype)
            QTest::addRow("ctype %d", ctype) << ctype << (ctype != 0 && ctype != 5 && ctype != 6);
    }

    void positionFilter()
    {
        QFETCH(int, ctype);
        QFETCH(bool, written);
        JobProgram job;
        job.positions.insert(position("P7", ctype, 1));
        const std::string text = job.text("d");
        QCOMPARE(text.find("\nP7 = 1.0,") != std::string::npos, written);
        QVERIFY(job.positions.find("P7")); // stays in the program
    }

    void headerWithoutInstructions()
    {
        JobProgram job;
        job.instructions.clear();
        const std::string text = job.text("D");
        QCOMPARE(QString::fromStdString(text),
                 QString("//DIR\n//JOB\n//NAME \n//POS\n///NPOS -2,0,0,0,0,0\n///POSTYPE PULSE\n///PULSE\n"
                         "//INSTRUCTION\n///DATE D\nROBOTTYPE = []\nDOUBLEROBOT = []\nPROVERSION = [1.0.5]\n"));
    }

    void version_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("written");
        QTest::newRow("empty") << "" << "PROVERSION = [1.0.5]\n";
        QTest::newRow("old") << "1.0.3" << "PROVERSION = [1.0.3]\n";
        QTest::newRow("other") << "9.9" << "PROVERSION = [9.9]\n";
    }

    void version()
    {
        QFETCH(QString, version);
        QFETCH(QString, written);
        JobProgram job;
        job.version = version.toStdString();
        QVERIFY(QString::fromStdString(job.text("d")).contains("\n" + written + "NOP\nEND\n"));
    }

    void bracketsPrintTheirText()
    {
        JobProgram job;
        QCOMPARE(job.instructionCount(), std::size_t(0));
        job.instructions.front()->text = "NOP";
        job.insert(std::make_unique<DummyCommand>(31)); // no stored text: its rendering
        QVERIFY(job.text("d").find("\nNOP\n#UNKNOWN COMMAND!!\nEND\n") != std::string::npos);
        QVERIFY(job.text("d").find("///NPOS 1,0,0,0,0,0\n") != std::string::npos);
    }

    void unopenableFileIsSilent()
    {
        QTemporaryDir dir;
        const std::string path = dir.filePath("missing/dir/JOB.JBR").toStdString();
        JobProgram job;
        job.name = "X";
        const std::string out = captureStdout([&] { job.writeJobFile(path, "d"); });
        QCOMPARE(QString::fromStdString(out), QString::fromStdString("Job file:" + path + "|\n"));
        QVERIFY(!QFile::exists(QString::fromStdString(path)));
        QCOMPARE(job.instructions.size(), std::size_t(2));
        QCOMPARE(QString::fromStdString(job.name), QString("X"));
    }
};

QTEST_APPLESS_MAIN(TestJobWriter)
#include "tst_jobwriter.moc"
