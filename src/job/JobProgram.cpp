#include "job/JobProgram.h"

#include "common/CompactJson.h"
#include "job/TextFormat.h"

#include <fstream>
#include <iostream>
#include <sstream>

namespace qrx {

const char *const JobProgram::kCurrentVersion = "1.0.5";

namespace {

// Positions of these coordinate types stay in the program but are not
// written to the file.
bool writesPosition(const RobotPos &position)
{
    return position.ctype != 0 && position.ctype != 5 && position.ctype != 6;
}

void writePosition(std::ostream &out, const std::string &name, const RobotPos &position)
{
    out << name << " = ";
    for (int i = 0; i < RobotPos::kCoordinates; ++i) {
        if (i > 0)
            out << ',';
        const auto &variable = position.paraVarData[std::size_t(i)];
        if (variable)
            out << variable->varname;
        else
            out << formatReal(position.data[std::size_t(i)]);
    }
    out << '\n';
}

} // namespace

JobProgram::JobProgram()
{
    instructions.push_back(std::make_unique<DummyCommand>(31, "NOP"));
    instructions.push_back(std::make_unique<DummyCommand>(31, "END"));
}

JobProgram::~JobProgram()
{
    instructions.clear(); // before the positions they share
}

Command *JobProgram::insert(std::unique_ptr<Command> command)
{
    Command *raw = command.get();
    const auto at = instructions.empty() ? instructions.end() : instructions.end() - 1;
    instructions.insert(at, std::move(command));
    return raw;
}

std::size_t JobProgram::instructionCount() const
{
    return instructions.size() >= 2 ? instructions.size() - 2 : 0;
}

void JobProgram::write(std::ostream &out, const std::string &date) const
{
    out << "//DIR\n//JOB\n";
    out << "//NAME " << name << '\n';
    out << "//POS\n";
    // The count is of instructions, not positions; the zeros are constant.
    out << "///NPOS " << (long long)(instructions.size()) - 2 << ",0,0,0,0,0\n";
    out << "///POSTYPE PULSE\n///PULSE\n";
    for (const auto &[positionName, position] : positions.positions()) {
        if (position && writesPosition(*position))
            writePosition(out, positionName, *position);
    }
    for (const auto &[key, value] : namedValues)
        out << key << " = " << value << '\n';
    for (const auto &[key, value] : intVariables)
        out << "INTV " << key << " = " << num(value) << '\n';
    for (const auto &[key, value] : floatVariables)
        out << "FLOATV " << key << " = " << num(value) << '\n';
    for (const auto &[key, value] : boolVariables)
        out << "BOOLV " << key << " = " << num(value) << '\n';
    out << "//INSTRUCTION\n";
    out << "///DATE " << date << '\n';
    out << "ROBOTTYPE = [" << robotType << "]\n";
    out << "DOUBLEROBOT = [" << doubleRobot << "]\n";
    out << "PROVERSION = [" << (version.empty() ? kCurrentVersion : version) << "]\n";
    for (const auto &command : instructions) {
        // The brackets print their stored text.
        out << (command->type == 31 && !command->text.empty() ? command->text : command->toString()) << '\n';
    }
}

std::string JobProgram::text(const std::string &date) const
{
    std::ostringstream out;
    write(out, date);
    return out.str();
}

void JobProgram::writeJobFile(const std::string &fileName, const std::string &date) const
{
    std::cout << "Job file:" << fileName << "|" << std::endl;
    std::ofstream out(fileName, std::ios::out | std::ios::trunc | std::ios::binary);
    write(out, date); // a stream that failed to open ignores every write
}

} // namespace qrx
