#include "Commands.h"

namespace qrxcli {

const std::vector<Command> &commands()
{
    static const std::vector<Command> table{
        {"status", "status", "one screen of the controller's state",
         "Shows the link, the robot model, servo state, operation mode, coordinate\n"
         "system, jog speed,\n"
         "joint and Cartesian positions, running state and line, and the tool.\n",
         {}, {}, true, runStatus},
        {"watch", "watch [--interval SECONDS]", "the status screen, refreshed until Ctrl-C",
         "Refreshes the status screen in place every SECONDS (default 1) until Ctrl-C\n"
         "or SIGTERM. When the output is not a terminal each refresh is a new block\n"
         "(a new line with --json).\n",
         {"interval"}, {}, true, runWatch},
        {"servo", "servo on|off", "switch the servo power",
         "on: asks for servo power and the deadman and waits until the drives run.\n"
         "off: switches the deadman off and waits until the drives stop.\n",
         {}, {}, true, runServo},
        {"mode", "mode [teach|remote|run]", "show or set the operation mode",
         "Without an argument shows the mode; with one sets it and waits until the\n"
         "controller reports it.\n",
         {}, {}, true, runMode},
        {"coord", "coord [joint|cartesian|tool|user]", "show or set the coordinate system",
         "Without an argument shows the coordinate system; with one sets it and waits\n"
         "until the controller reports it.\n",
         {}, {}, true, runCoord},
        {"speed", "speed [PERCENT]", "show or set the jog speed",
         "Without an argument shows the jog speed; with one (0..100, or 101..103 for\n"
         "single jog steps) sets it and waits until the controller reports it.\n",
         {}, {}, true, runSpeed},
        {"tool", "tool [NUMBER]", "show or select the tool",
         "Without an argument shows the current tool; with one selects it and waits\n"
         "until the controller reports it.\n",
         {}, {}, true, runTool},
        {"jog", "jog AXIS +|- [--for SECONDS]", "jog one axis for a while",
         "Jogs AXIS (1..7) in the positive or negative direction for SECONDS\n"
         "(default 1), then stops it and shows the joint position. The servo must be\n"
         "running and the controller in teach mode.\n",
         {"for"}, {}, true, runJog},
        {"move", "move joint|linear X1 .. X6 [--speed V] [--coord C] [--acc A] [--dec D] [--tolerance T] [--no-wait]",
         "move to a target and wait until it is reached",
         "Sends a joint (robot_movj) or linear (robot_movl) move to the six values and\n"
         "waits until every axis is within T (default 0.01) of them. --speed is the\n"
         "velocity percent (default 20), --coord the coordinate system of the target\n"
         "(default joint for joint moves, cartesian for linear), --acc and --dec\n"
         "default 50. The wait ends with \"timed out\" when the robot stops moving\n"
         "for longer than --timeout before it arrives. --no-wait only sends.\n",
         {"speed", "coord", "acc", "dec", "tolerance"}, {"no-wait"}, true, runMove},
        {"io", "io get dout|din|aout|ain | io set dout PORT 0|1 | io set aout PORT VALUE",
         "read or write digital and analog IO",
         "get shows the 16 values of one kind; set writes one output (port 1..16)\n"
         "and shows the outputs read back.\n",
         {}, {}, true, runIo},
        {"var", "var get NAME | var set NAME VALUE", "read or write a global variable",
         "NAME is GIxxx (integer), GDxxx (real) or GBxxx (boolean), e.g. GI001.\n"
         "set writes the value and shows it read back.\n",
         {}, {}, true, runVar},
        {"pos", "pos get NAME | pos set NAME X1 .. X7 [S1 .. S7] [--coord C]", "read or write a global position",
         "get shows the 14 values of the global position NAME (robot axes, then\n"
         "synchronous axes); set writes 7 robot-axis values and up to 7 synchronous\n"
         "ones (missing ones are 0) in coordinate system C (default joint).\n",
         {"coord"}, {}, true, runPos},
        {"job", "job open|run|delete NAME | job step NAME LINE | job pause|continue|stop|line",
         "control job programs",
         "open, run, step (one line), pause, continue, stop and delete a job (names\n"
         "without \".JBR\"); line shows the line being executed. run and step need\n"
         "the servo on and no job running.\n",
         {}, {}, true, runJob},
        {"upload", "upload [--root DIR] [--pause MS]", "send the local job files to the controller",
         "Uploads every job file of DIR/robotJob/R1..R4 (DIR: --root, else $QRX_JOB_ROOT,\n"
         "else the current folder), with a progress bar on a terminal and one line per\n"
         "file otherwise. Fails with \"timed out\" when nothing moves for --timeout.\n"
         "--pause: ms between two files (1000 by default, as the controller expects;\n"
         "0 for a controller that stores files as they come).\n",
         {"root", "pause"}, {}, true, runUpload},
        {"download", "download [--root DIR]", "fetch the controller's job files that differ",
         "Fetches the controller's job files whose MD5 differs from the local copy in\n"
         "DIR/robotJob/R1..R4 (DIR as for upload).\n",
         {"root"}, {}, true, runDownload},
        {"export", "export logs|eni|config DIR", "copy the controller's log, ENI or configuration files",
         "Copies the controller's files of that kind into DIR (created if missing).\n",
         {}, {}, true, runExport},
        {"import", "import config FILE", "send a configuration file to the controller",
         "Uploads one configuration file to the controller.\n",
         {}, {}, true, runImport},
    };
    return table;
}

const Command *findCommand(const std::string &name)
{
    for (const Command &c : commands())
        if (name == c.name)
            return &c;
    return nullptr;
}

} // namespace qrxcli
