#include "sim/commands/JobFiles.h"

#include "job/JobReadDriver.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace qrxsim {

namespace {

constexpr char kSuffix[] = ".JBR";

bool endsWith(const std::string &text, const std::string &tail)
{
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

} // namespace

std::string jobFilePath(const std::string &folder, int robot, const std::string &name)
{
    if (folder.empty() || name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos
        || name.find('\\') != std::string::npos || robot < 1 || robot > 4)
        return {};
    return folder + "/R" + std::to_string(robot) + '/' + (endsWith(name, kSuffix) ? name : name + kSuffix);
}

JobFileSteps readJobFile(const std::string &path)
{
    JobFileSteps result;
    std::ifstream file(path, std::ios::binary);
    if (path.empty() || !file)
        return result;
    result.found = true;
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::ostringstream diagnostics;
    qrx::JobReadDriver reader(diagnostics);
    const auto program = reader.read(text);
    if (!program) {
        result.problem = "job file does not read: " + reader.errorMessage() + " at line "
            + std::to_string(reader.errorLine() + 1);
        return result;
    }
    // The first and last instructions are the NOP and END brackets.
    for (std::size_t i = 1; i + 1 < program->instructions.size(); ++i)
        result.steps.push_back(program->instructions[i]->toJson());
    return result;
}

} // namespace qrxsim
