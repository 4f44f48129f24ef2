// job: open, run, step, pause, continue, stop, delete, line.

#include "Bound.h"
#include "Commands.h"
#include "Controller.h"
#include "Link.h"
#include "qrx_host.h"

namespace qrxcli {

namespace {

const char *kSynopsis = "job open|run|delete NAME | job step NAME LINE | job pause|continue|stop|line";

// run_job and step_job send nothing while a job runs or the servo is off:
// say so instead of reporting success.
void requireRunnable()
{
    if (readRunning() == kJobRunning)
        fail(ExitRefused, "refused: a job is already running");
    if (readServo() == 0)
        fail(ExitRefused, "refused: the servo is off; try \"qrx servo on\"");
}

void showState()
{
    const int running = readRunning();
    print(Report().coded("running", running, nameOf(running, runningNames())));
}

} // namespace

void runJob(const Args &args)
{
    const std::string verb = args.word(0, "what to do with the job");
    const bool named = verb == "open" || verb == "run" || verb == "delete";
    if (named) {
        args.expect(2, 2, kSynopsis);
        const std::string name = args.word(1, "NAME");
        goOnline();
        if (verb == "open") {
            if (readRunning() == kJobRunning)
                fail(ExitRefused, "refused: a job is running");
            sendChecked([name] { open_job(name.c_str()); });
        } else if (verb == "run") {
            requireRunnable();
            sendChecked([name] { run_job(name.c_str()); });
        } else {
            sendChecked([name] { delete_job(name.c_str()); });
        }
        showState();
    } else if (verb == "step") {
        args.expect(3, 3, kSynopsis);
        const std::string name = args.word(1, "NAME");
        const long line = Args::toInteger(args.word(2, "LINE"), "LINE");
        goOnline();
        requireRunnable();
        sendChecked([name, line] { step_job(name.c_str(), int(line)); });
        showState();
    } else if (verb == "pause" || verb == "stop") {
        args.expect(1, 1, kSynopsis);
        goOnline();
        sendChecked(verb == "pause" ? pause_job : stop_job);
        showState();
    } else if (verb == "continue") {
        args.expect(1, 1, kSynopsis);
        goOnline();
        expectAnswer();
        const int result = bounded<int>("the operation mode", [] { return continue_job(); });
        if (result == 1)
            fail(ExitRefused, "refused: the controller is not in run mode; try \"qrx mode run\"");
        if (result == 2)
            fail(ExitRefused, "refused: the servo is not ready");
        settle();
        failIfRefused();
        showState();
    } else if (verb == "line") {
        args.expect(1, 1, kSynopsis);
        goOnline();
        print(Report().integer("line", readJobLine()));
    } else {
        fail(ExitUsage, std::string("usage: qrx ") + kSynopsis);
    }
}

} // namespace qrxcli
