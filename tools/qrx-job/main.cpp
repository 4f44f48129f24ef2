// qrx-job: check, format, upgrade and convert job files without a
// controller.
//
//   qrx-job check FILE... [--robot-type T] [--double-robot D] [--werror]
//   qrx-job fmt FILE [-i]
//   qrx-job upgrade FILE... [--double-robot D]
//   qrx-job to-json FILE [--pretty]
//   qrx-job from-json JSON -o FILE
//
// Diagnostics go to standard error, one per problem, as
// "FILE:LINE: error|warning: text" (LINE from 1), in line order. The reader's
// own texts (the "[KVRSM]Parse error:..." and "Open and parse file ..."
// lines that the library's loader writes to standard output) are not shown:
// the tool says the same once, in this form. Exit status 0 when every file
// reads (with --werror: and nothing is warned), 1 otherwise, 2 for a wrong
// command line.

#include "JobChecks.h"
#include "JobJson.h"

#include "common/CompactJson.h"
#include "job/JobFileLoader.h"
#include "job/JobReadDriver.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>
#include <algorithm>
#include <fstream>
#include <iostream>
#include <json/reader.h>
#include <json/writer.h>
#include <map>
#include <sstream>

namespace {

const std::map<std::string, const char *> kHelp = {
    {"", "usage: qrx-job <command> [options]\n"
         "Check, format, upgrade and convert job files of the controller's job language.\n\n"
         "commands:\n"
         "  check FILE...        read each file (never modified) and report what fails\n"
         "  fmt FILE [-i]        write the file back through the writer (-i: in place)\n"
         "  upgrade FILE...      bring files to the current version in place\n"
         "  to-json FILE         the whole program as one JSON document\n"
         "  from-json JSON -o FILE  a job file from such a document\n\n"
         "qrx-job <command> --help describes a command.\n"},
    {"check", "usage: qrx-job check FILE... [--robot-type TYPE] [--double-robot VALUE] [--werror]\n"
              "Reads each file on a temporary copy (the upgrade chain runs there) and prints on\n"
              "standard error FILE:LINE: error: ... for a file that does not read,\n"
              "FILE:LINE: warning: ... for blocks that do not close, jumps to missing labels,\n"
              "labels defined twice and positions that are not declared. --robot-type warns\n"
              "when the job is of another robot type. Exit status 0 when every file reads,\n"
              "1 otherwise; --werror makes a warning fail too (for CI).\n"},
    {"fmt", "usage: qrx-job fmt FILE [-i]\n"
            "Reads FILE and writes it through the job file writer to standard output, or with\n"
            "-i back into FILE atomically (a crash never leaves half a file). The date line\n"
            "and the version are kept.\n"},
    {"upgrade", "usage: qrx-job upgrade FILE... [--double-robot VALUE]\n"
                "Runs the version upgrade chain on each file in place and reports each step.\n"
                "--double-robot is the value set at the 1.0.2 step (default NoCooperative).\n"},
    {"to-json", "usage: qrx-job to-json FILE [--pretty]\n"
                "Prints the program (header values, positions, variables, instructions) as one\n"
                "JSON document; --pretty indents it.\n"},
    {"from-json", "usage: qrx-job from-json JSON -o FILE\n"
                  "Writes the job file of a document printed by to-json.\n"},
};

int usage(const std::string &command, int status)
{
    (status == 0 ? std::cout : std::cerr) << kHelp.at(command);
    return status;
}

struct Args
{
    std::vector<std::string> files;
    std::map<std::string, std::string> options; // --robot-type, --double-robot, -o
    bool inPlace = false;
    bool pretty = false;
    bool werror = false;
    bool help = false;
    std::string error;
};

Args parseArgs(const QStringList &list)
{
    Args args;
    for (int i = 2; i < list.size(); ++i) {
        const std::string arg = list[i].toStdString();
        if (arg == "--help" || arg == "-h") {
            args.help = true;
        } else if (arg == "-i") {
            args.inPlace = true;
        } else if (arg == "--pretty") {
            args.pretty = true;
        } else if (arg == "--werror") {
            args.werror = true;
        } else if (arg == "--robot-type" || arg == "--double-robot" || arg == "-o") {
            if (i + 1 >= list.size()) {
                args.error = arg + " needs a value";
                return args;
            }
            args.options[arg] = list[++i].toStdString();
        } else if (arg.size() > 1 && arg[0] == '-') {
            args.error = "unknown option " + arg;
            return args;
        } else {
            args.files.push_back(arg);
        }
    }
    return args;
}

bool readText(const std::string &fileName, std::string &text)
{
    std::ifstream in(fileName, std::ios::binary);
    if (!in)
        return false;
    text.assign(std::istreambuf_iterator<char>(in), {});
    return true;
}

// The file line (from 1) of the first line that starts with `start` after
// `//INSTRUCTION`; 1 when there is none.
int instructionSectionLine(const std::string &text, const std::string &start)
{
    std::istringstream in(text);
    std::string line;
    bool instructions = false;
    for (int n = 1; std::getline(in, line); ++n) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line == "//INSTRUCTION")
            instructions = true;
        else if (instructions && line.compare(0, start.size(), start) == 0)
            return n;
    }
    return 1;
}

struct Diagnostic
{
    int line; // from 1
    bool error;
    std::string text;
};

// Prints a file's diagnostics in line order; the number of warnings.
int printDiagnostics(const std::string &fileName, std::vector<Diagnostic> diagnostics)
{
    std::stable_sort(diagnostics.begin(), diagnostics.end(),
                     [](const Diagnostic &a, const Diagnostic &b) { return a.line < b.line; });
    int warnings = 0;
    for (const Diagnostic &diagnostic : diagnostics) {
        std::cerr << fileName << ':' << diagnostic.line << (diagnostic.error ? ": error: " : ": warning: ")
                  << diagnostic.text << '\n';
        warnings += diagnostic.error ? 0 : 1;
    }
    return warnings;
}

// Standard output taken away for a scope: the job file writer logs each
// rewrite there ("Job file:...|"), which the tool's output must not carry.
class QuietStandardOutput
{
public:
    QuietStandardOutput()
        : m_old(std::cout.rdbuf(m_sink.rdbuf()))
    {
    }
    ~QuietStandardOutput() { std::cout.rdbuf(m_old); }

private:
    std::ostringstream m_sink;
    std::streambuf *m_old;
};

// Reads a file without changing it; a failure is one diagnostic on standard
// error. Null when it does not read.
std::unique_ptr<qrx::JobProgram> readOnly(const std::string &fileName, std::string *text = nullptr)
{
    std::string content;
    if (!readText(fileName, content)) {
        printDiagnostics(fileName, {{1, true, "cannot open the file"}});
        return nullptr;
    }
    std::ostringstream loaderTexts; // the reader's own report, said once below
    qrx::JobReadDriver driver(loaderTexts);
    auto program = driver.read(content);
    if (!program) {
        printDiagnostics(fileName, {{driver.errorLine() + 1, true, driver.errorDescription()}});
        return nullptr;
    }
    if (text)
        *text = std::move(content);
    return program;
}

// Reads one file as the controller's loader does (the upgrade chain on a
// temporary copy), then looks for what would misrun. 0 when it reads and
// (with --werror) nothing is warned, 1 otherwise.
int checkFile(const Args &args, const std::string &fileName)
{
    std::string text;
    if (!readText(fileName, text)) {
        printDiagnostics(fileName, {{1, true, "cannot open the file"}});
        return 1;
    }
    QTemporaryDir dir;
    const std::string copy = QDir(dir.path()).filePath(QFileInfo(QString::fromStdString(fileName)).fileName()).toStdString();
    std::ofstream(copy, std::ios::binary) << text;
    const auto robotType = args.options.find("--robot-type");
    const auto doubleRobot = args.options.find("--double-robot");
    std::ostringstream loaderTexts; // the reader's own report, said once below
    qrx::JobLoadReport report;
    std::unique_ptr<qrx::JobProgram> program;
    {
        QuietStandardOutput quiet;
        program = qrx::loadJobFile(copy, robotType == args.options.end() ? std::string() : robotType->second,
                                   doubleRobot == args.options.end() ? std::string() : doubleRobot->second,
                                   std::string(), loaderTexts, &report);
    }
    if (!program) {
        printDiagnostics(fileName, {{report.errorLine + 1, true, report.errorDescription}});
        return 1;
    }
    std::vector<Diagnostic> diagnostics;
    for (const auto &[line, name] : report.missingPositions)
        diagnostics.push_back({line + 1, false, "position " + name + " is not declared"});
    if (robotType != args.options.end() && report.robotTypeMismatch)
        diagnostics.push_back({instructionSectionLine(text, "ROBOTTYPE = ["), false,
                               "the job is for robot type " + program->robotType + ", not " + robotType->second});
    for (const qrxjob::Finding &finding : qrxjob::checkProgram(*program, instructionSectionLine(text, "NOP")))
        diagnostics.push_back({finding.line, false, finding.message});
    const int warnings = printDiagnostics(fileName, std::move(diagnostics));
    return args.werror && warnings > 0 ? 1 : 0;
}

int check(const Args &args)
{
    int status = 0;
    for (const std::string &fileName : args.files)
        status |= checkFile(args, fileName);
    return status;
}

int fmt(const Args &args)
{
    if (args.files.size() != 1)
        return usage("fmt", 2);
    const std::string &fileName = args.files.front();
    auto program = readOnly(fileName);
    if (!program)
        return 1;
    const std::string text = program->text(program->date);
    if (!args.inPlace) {
        std::cout << text;
        return 0;
    }
    QSaveFile file(QString::fromStdString(fileName));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), qint64(text.size())) != qint64(text.size())
        || !file.commit()) {
        std::cerr << fileName << ":1: error: cannot write the file: " << file.errorString().toStdString() << '\n';
        return 1;
    }
    return 0;
}

int upgrade(const Args &args)
{
    int status = 0;
    const auto doubleRobot = args.options.find("--double-robot");
    for (const std::string &fileName : args.files) {
        auto program = readOnly(fileName);
        if (!program) {
            status = 1;
            continue;
        }
        const std::string from = program->version;
        std::vector<std::string> steps;
        {
            QuietStandardOutput quiet;
            steps = qrx::upgradeJobProgram(*program, fileName,
                                           doubleRobot == args.options.end() ? "NoCooperative" : doubleRobot->second);
        }
        std::string previous = from.empty() ? "(none)" : from;
        for (const std::string &step : steps) {
            std::cout << fileName << ": " << previous << " -> " << step << '\n';
            previous = step;
        }
        if (steps.empty())
            std::cout << fileName << ": " << previous << ", nothing to upgrade\n";
    }
    return status;
}

int toJson(const Args &args)
{
    if (args.files.size() != 1)
        return usage("to-json", 2);
    auto program = readOnly(args.files.front());
    if (!program)
        return 1;
    const Json::Value json = qrxjob::programToJson(*program);
    std::cout << (args.pretty ? Json::StyledWriter().write(json) : qrx::compactJson(json) + "\n");
    return 0;
}

int fromJson(const Args &args)
{
    const auto output = args.options.find("-o");
    if (args.files.size() != 1 || output == args.options.end())
        return usage("from-json", 2);
    std::string text;
    if (!readText(args.files.front(), text)) {
        std::cerr << args.files.front() << ":1: error: cannot open the file\n";
        return 1;
    }
    Json::Value json;
    Json::Reader reader;
    if (!reader.parse(text, json)) {
        std::cerr << args.files.front() << ":1: error: not JSON: " << reader.getFormattedErrorMessages();
        return 1;
    }
    std::string error;
    auto program = qrxjob::programFromJson(json, error);
    if (!program) {
        std::cerr << args.files.front() << ":1: error: " << error << '\n';
        return 1;
    }
    const std::string jobText = program->text(program->date.empty() ? qrx::jobFileDate() : program->date);
    QSaveFile file(QString::fromStdString(output->second));
    if (!file.open(QIODevice::WriteOnly) || file.write(jobText.data(), qint64(jobText.size())) != qint64(jobText.size())
        || !file.commit()) {
        std::cerr << output->second << ":1: error: cannot write the file\n";
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList list = app.arguments();
    if (list.size() < 2)
        return usage("", 2);
    const std::string command = list[1].toStdString();
    if (command == "--help" || command == "-h" || command == "help")
        return usage("", 0);
    if (!kHelp.count(command) || command.empty()) {
        std::cerr << "qrx-job: unknown command " << command << "\n";
        return usage("", 2);
    }
    const Args args = parseArgs(list);
    if (args.help)
        return usage(command, 0);
    if (!args.error.empty()) {
        std::cerr << "qrx-job " << command << ": " << args.error << "\n";
        return usage(command, 2);
    }
    if (args.files.empty())
        return usage(command, 2);
    if (command == "check")
        return check(args);
    if (command == "fmt")
        return fmt(args);
    if (command == "upgrade")
        return upgrade(args);
    if (command == "to-json")
        return toJson(args);
    return fromJson(args);
}
