#pragma once
// The subcommands of qrx: one row each, with what --help shows. A new
// subcommand is one row here and one function in the file of its family.

#include "Args.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace qrxcli {

struct Command
{
    const char *name;
    const char *synopsis; // after "qrx "
    const char *summary;  // one line for the overview
    const char *details;  // the rest of "qrx NAME --help"
    std::set<std::string> valueOptions;
    std::set<std::string> flags;
    std::function<void(const Args &)> run;
};

const std::vector<Command> &commands();
const Command *findCommand(const std::string &name);

// Families (one file each).
void runStatus(const Args &args);
void runWatch(const Args &args);
void runServo(const Args &args);
void runMode(const Args &args);
void runCoord(const Args &args);
void runSpeed(const Args &args);
void runTool(const Args &args);
void runJog(const Args &args);
void runMove(const Args &args);
void runIo(const Args &args);
void runVar(const Args &args);
void runPos(const Args &args);
void runJob(const Args &args);
void runUpload(const Args &args);
void runDownload(const Args &args);
void runExport(const Args &args);
void runImport(const Args &args);

// Sends with send(), then reads the value back until it is want; refused
// when the controller answers with an error or keeps another value until
// the bound runs out. Prints what it reads last.
void setAndConfirm(const std::string &what, const std::function<void()> &send, const std::function<int()> &read,
                   int want);
// Sends, lets the controller answer, and fails when it refused.
void sendChecked(const std::function<void()> &send);

} // namespace qrxcli
