#pragma once
// A job program: its name, instruction list, positions, variables and header
// values, and the writer of its job file.
//
// A new program's instruction list holds the NOP and END brackets (type 31);
// instructions go between them (insert()). The position table owns the
// positions that instructions share, so it is declared before the list: the
// instructions are destroyed first.

#include "job/Command.h"
#include "job/RobotPos.h"

#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace qrx {

class JobProgram
{
public:
    JobProgram();
    ~JobProgram();
    JobProgram(const JobProgram &) = delete;
    JobProgram &operator=(const JobProgram &) = delete;

    std::string name;
    PositionTable positions;
    std::vector<std::unique_ptr<Command>> instructions; // NOP ... END
    std::map<std::string, std::string> namedValues;     // written before the variables
    std::map<std::string, int> intVariables;
    std::map<std::string, double> floatVariables;
    std::map<std::string, bool> boolVariables;
    std::string version;     // "PROVERSION = [...]"; empty writes "1.0.5"
    std::string robotType;   // "ROBOTTYPE = [...]"
    std::string doubleRobot; // "DOUBLEROBOT = [...]"
    std::string date;        // "///DATE ..." of the file read; the writer takes its own

    // Puts an instruction just before END and returns it.
    Command *insert(std::unique_ptr<Command> command);
    // The instructions between the brackets.
    std::size_t instructionCount() const;

    // Writes the job file, `date` after "///DATE ". Logs "Job file:<name>|"
    // on standard output first. A file that cannot be opened writes nothing,
    // silently.
    void writeJobFile(const std::string &fileName, const std::string &date) const;
    // The job file text.
    void write(std::ostream &out, const std::string &date) const;
    std::string text(const std::string &date) const;

    static const char *const kCurrentVersion; // "1.0.5"
};

} // namespace qrx
