// qrx-job: check, format, upgrade and convert job files without a
// controller.
//
//   qrx-job check FILE... [--robot-type T] [--double-robot D]
//   qrx-job fmt FILE [-i]
//   qrx-job upgrade FILE... [--double-robot D]
//   qrx-job to-json FILE [--pretty]
//   qrx-job from-json JSON -o FILE
//
// Diagnostics read "FILE:LINE: error: ..." (LINE from 1); exit status 0 when
// every file reads, 1 when one does not, 2 for a wrong command line.

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
    {"check", "usage: qrx-job check FILE... [--robot-type TYPE] [--double-robot VALUE]\n"
              "Reads each file on a temporary copy (the upgrade chain runs there) and prints\n"
              "FILE:LINE: error: ... for a file that does not read, FILE:LINE: warning: ... for\n"
              "blocks that do not close, jumps to missing labels, labels defined twice and\n"
              "positions that are not declared. --robot-type warns when the job is of another\n"
              "robot type. Exit status 0 when every file reads, 1 otherwise.\n"},
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

// The file line (from 1) of the NOP bracket.
int nopLine(const std::string &text)
{
    std::istringstream in(text);
    std::string line;
    bool instructions = false;
    for (int n = 1; std::getline(in, line); ++n) {
        if (line == "//INSTRUCTION")
            instructions = true;
        else if (instructions && (line == "NOP" || line == "NOP\r"))
            return n;
    }
    return 1;
}

// Reads a file without changing it; diagnostics on standard error in the
// editor form. Null when it does not read.
std::unique_ptr<qrx::JobProgram> readOnly(const std::string &fileName, std::string *text = nullptr)
{
    std::string content;
    if (!readText(fileName, content)) {
        std::cerr << fileName << ":1: error: cannot open the file\n";
        return nullptr;
    }
    std::ostringstream out;
    qrx::JobReadDriver driver(out);
    auto program = driver.read(content);
    if (!program) {
        std::cerr << out.str();
        std::cerr << fileName << ':' << driver.errorLine() + 1 << ": error: " << driver.errorMessage() << '\n';
        return nullptr;
    }
    if (text)
        *text = std::move(content);
    return program;
}

std::string replaceAll(std::string text, const std::string &from, const std::string &to)
{
    for (std::size_t at = text.find(from); !from.empty() && at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

int check(const Args &args)
{
    int status = 0;
    for (const std::string &fileName : args.files) {
        std::string text;
        if (!readText(fileName, text)) {
            std::cerr << fileName << ":1: error: cannot open the file\n";
            status = 1;
            continue;
        }
        QTemporaryDir dir;
        const std::string copy = QDir(dir.path()).filePath(QFileInfo(QString::fromStdString(fileName)).fileName()).toStdString();
        std::ofstream(copy, std::ios::binary) << text;
        std::ostringstream out;
        qrx::JobLoadReport report;
        const auto robotType = args.options.find("--robot-type");
        const auto doubleRobot = args.options.find("--double-robot");
        auto program = qrx::loadJobFile(copy, robotType == args.options.end() ? std::string() : robotType->second,
                                        doubleRobot == args.options.end() ? std::string() : doubleRobot->second,
                                        std::string(), out, &report);
        std::string texts = replaceAll(out.str(), copy, fileName);
        if (robotType == args.options.end()) // no robot given: nothing to compare with
            texts = replaceAll(texts, "作业中的机器人类型与当前机器人类型不一致 文件名：" + fileName + "\n", "");
        texts = replaceAll(texts, "Job file:" + fileName + "|\n", "");
        std::cout << texts;
        if (!program) {
            std::cerr << fileName << ':' << report.errorLine + 1 << ": error: " << report.errorMessage << '\n';
            status = 1;
            continue;
        }
        const int first = nopLine(text);
        for (const auto &[line, name] : report.missingPositions)
            std::cerr << fileName << ':' << line + 1 << ": warning: position " << name << " is not declared\n";
        if (robotType != args.options.end() && report.robotTypeMismatch)
            std::cerr << fileName << ":1: warning: the job is for robot type " << program->robotType << ", not "
                      << robotType->second << '\n';
        for (const qrxjob::Finding &finding : qrxjob::checkProgram(*program, first))
            std::cerr << fileName << ':' << finding.line << ": warning: " << finding.message << '\n';
    }
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
        std::ostringstream ignored;
        std::streambuf *old = std::cout.rdbuf(ignored.rdbuf()); // the writer's "Job file:" lines
        const auto steps = qrx::upgradeJobProgram(
            *program, fileName, doubleRobot == args.options.end() ? "NoCooperative" : doubleRobot->second);
        std::cout.rdbuf(old);
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
