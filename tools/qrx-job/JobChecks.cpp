#include "JobChecks.h"

#include "job/Instructions.h"

#include <map>
#include <set>

namespace qrxjob {

namespace {

// Block instructions: opening code -> closing code; the middle codes of IF.
struct Block
{
    int open;
    int close;
    const char *name;
};
const Block kBlocks[] = {{9, 12, "IF"}, {13, 14, "WHILE"}, {87, 88, "UNTIL"}};

} // namespace

std::vector<Finding> checkProgram(const qrx::JobProgram &program, int firstLine)
{
    std::vector<Finding> findings;
    std::vector<std::pair<const Block *, int>> open; // block, line
    std::map<std::string, int> labels;
    std::vector<std::pair<std::string, int>> jumps;
    for (std::size_t i = 0; i < program.instructions.size(); ++i) {
        const qrx::Command &command = *program.instructions[i];
        const int line = firstLine + int(i);
        for (const Block &block : kBlocks) {
            if (command.type == block.open) {
                open.emplace_back(&block, line);
            } else if (command.type == block.close) {
                if (open.empty() || open.back().first != &block) {
                    findings.push_back({line, std::string("END") + block.name + " without " + block.name});
                } else {
                    open.pop_back();
                }
            }
        }
        if ((command.type == 10 || command.type == 11) && (open.empty() || open.back().first->open != 9))
            findings.push_back({line, "ELSE or ELSEIF outside IF"});
        if (const auto *jump = dynamic_cast<const qrx::JUMPCommand *>(&command)) {
            if (command.type == 53) {
                if (!labels.emplace(jump->label, line).second)
                    findings.push_back({line, "LABEL " + jump->label + " defined twice (first at line "
                                                  + std::to_string(labels[jump->label]) + ")"});
            } else {
                jumps.emplace_back(jump->label, line);
            }
        }
    }
    for (const auto &[block, line] : open)
        findings.push_back({line, std::string(block->name) + " block does not close"});
    for (const auto &[label, line] : jumps) {
        if (!labels.count(label))
            findings.push_back({line, "JUMP to LABEL " + label + " that does not exist"});
    }
    return findings;
}

} // namespace qrxjob
