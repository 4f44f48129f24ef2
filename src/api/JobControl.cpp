// Job control: open, run, step, pause, continue, stop and delete jobs, the
// number of runs, the running line and the cycle figures.
//
// The controller tells the run requests of 0x2501 apart by the types of
// their members: "continueRun" is an integer in run_job and continue_job but
// a boolean in continue_run. Keep them so.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/Logging.h"
#include "protocol/Codes.h"

#include <QString>

using namespace qrx::api;

namespace code = qrx::protocol::code;

namespace {

constexpr int kJobRunning = 2;
constexpr int kServoOff = 0;
constexpr int kRunMode = 2;
constexpr int kServoReady = 1;
constexpr char kJobSuffix[] = ".JBR";

// run_job and step_job send nothing while a job runs or the servo is off.
bool mayRun(const Robot *robot)
{
    return robot->runningStatus != kJobRunning && robot->servoStatus != kServoOff;
}

} // namespace

extern "C" {

void open_job(const char *name)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (robot->runningStatus == kJobRunning)
        return;
    // Always robot 1, whichever robot is addressed.
    robot->send(code::OpenJob, payloadOf(withRobot(1, {{"jobName", latin1Name(name)}, {"suffixname", kJobSuffix}})));
}

void run_job(const char *name)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!mayRun(robot))
        return;
    const Json::Value v = withCurrentRobot(
        robot, {{"jobname", latin1Name(name)}, {"line", 1}, {"continueRun", 0}, {"startOver", true}});
    robot->send(code::RunJob, payloadOf(v));
}

void step_job(const char *name, int line)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!mayRun(robot))
        return;
    robot->send(code::RunJob, payloadOf(withCurrentRobot(robot, {{"jobname", latin1Name(name)}, {"line", line}})));
}

void pause_job(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::PauseJob, payloadOf(withRobot(robot->overrideRobot(), {{"type", 1}})));
}

void stop_job(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::StopJob, payloadOf(withRobot(robot->overrideRobot())));
}

int continue_job(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    get_current_mode();
    if (robot->operationMode != kRunMode)
        return 1;
    if (robot->servoStatus != kServoReady)
        return 2;
    robot->send(code::RunJob, payloadOf(withCurrentRobot(robot, {{"continueRun", 1}, {"line", 1}, {"startOver", false}})));
    return 0;
}

void continue_run(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    const Json::Value v = withCurrentRobot(robot, {{"index", 1},
                                                   {"callerName", "moveToPos"},
                                                   {"continueRun", true},
                                                   {"onFileRun", true},
                                                   {"startOver", false}});
    robot->send(code::RunJob, payloadOf(v));
}

void delete_job(const char *name)
{
    QRX_ROBOT_OR_RETURN(robot);
    const Json::Value v = withCurrentRobot(robot, {{"jobfilename", latin1Name(name)}, {"suffixname", kJobSuffix}});
    robot->send(code::DeleteJob, payloadOf(v));
}

void set_runs(int count)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(code::SetCycleCount, payloadOf(withRobot(robot->overrideRobot(), {{"index", count}})));
}

int get_job_running_lines(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    // The line held before this query is answered: a host polls it.
    const int line = robot->currentRunLine;
    robot->send(code::GetRunningLine, payloadOf(withCurrentRobot(robot)));
    return line;
}

void get_single_cycle(double *out)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, code::GetSingleCycle, payloadOf(withCurrentRobot(robot)));
    double values[7];
    copyOut(robot, robot->singleCycle, 7, values);
    for (int i = 0; i < 7; ++i) {
        const double value = values[i];
        qCDebug(lcApi).noquote() << QString::number(value);
        if (out)
            out[i] = value;
    }
}

} // extern "C"
