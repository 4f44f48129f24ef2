// Job control: open, run, step, pause, continue, stop and delete jobs, the
// number of runs, the running line and the cycle figures.
//
// The controller tells the run requests of 0x2501 apart by the types of
// their members: "continueRun" is an integer in run_job and continue_job but
// a boolean in continue_run. Keep them so.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/Logging.h"

#include <QString>

using qrx::api::nameOrEmpty;
using qrx::api::payloadOf;
using qrx::api::requestAndWait;

namespace {

constexpr quint16 kRun = 0x2501;
constexpr int kJobRunning = 2;
constexpr int kServoOff = 0;
constexpr int kRunMode = 2;
constexpr int kServoReady = 1;
constexpr char kJobSuffix[] = ".JBR";

std::string jobName(const char *name)
{
    return QString::fromLatin1(nameOrEmpty(name)).toStdString();
}

Json::Value withRobot(int robot)
{
    Json::Value v(Json::objectValue);
    v["robot"] = robot;
    return v;
}

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
    Json::Value v = withRobot(1); // always robot 1, whichever robot is addressed
    v["jobName"] = jobName(name);
    v["suffixname"] = kJobSuffix;
    robot->send(0x3114, payloadOf(v));
}

void run_job(const char *name)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!mayRun(robot))
        return;
    Json::Value v = withRobot(robot->currentRobot());
    v["jobname"] = jobName(name);
    v["line"] = 1;
    v["continueRun"] = 0;
    v["startOver"] = true;
    robot->send(kRun, payloadOf(v));
}

void step_job(const char *name, int line)
{
    QRX_ROBOT_OR_RETURN(robot);
    if (!mayRun(robot))
        return;
    Json::Value v = withRobot(robot->currentRobot());
    v["jobname"] = jobName(name);
    v["line"] = line;
    robot->send(kRun, payloadOf(v));
}

void pause_job(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    Json::Value v = withRobot(robot->overrideRobot());
    v["type"] = 1;
    robot->send(0x2401, payloadOf(v));
}

void stop_job(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    robot->send(0x2503, payloadOf(withRobot(robot->overrideRobot())));
}

int continue_job(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    get_current_mode();
    if (robot->operationMode != kRunMode)
        return 1;
    if (robot->servoStatus != kServoReady)
        return 2;
    Json::Value v = withRobot(robot->currentRobot());
    v["continueRun"] = 1;
    v["line"] = 1;
    v["startOver"] = false;
    robot->send(kRun, payloadOf(v));
    return 0;
}

void continue_run(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    Json::Value v = withRobot(robot->currentRobot());
    v["index"] = 1;
    v["callerName"] = "moveToPos";
    v["continueRun"] = true;
    v["onFileRun"] = true;
    v["startOver"] = false;
    robot->send(kRun, payloadOf(v));
}

void delete_job(const char *name)
{
    QRX_ROBOT_OR_RETURN(robot);
    Json::Value v = withRobot(robot->currentRobot());
    v["jobfilename"] = jobName(name);
    v["suffixname"] = kJobSuffix;
    robot->send(0x3111, payloadOf(v));
}

void set_runs(int count)
{
    QRX_ROBOT_OR_RETURN(robot);
    Json::Value v = withRobot(robot->overrideRobot());
    v["index"] = count;
    robot->send(0x5011, payloadOf(v));
}

int get_job_running_lines(void)
{
    QRX_ROBOT_OR_RETURN(robot, 0);
    // The line held before this query is answered: a host polls it.
    const int line = robot->currentRunLine;
    robot->send(0x3503, payloadOf(withRobot(robot->currentRobot())));
    return line;
}

void get_single_cycle(double *out)
{
    QRX_ROBOT_OR_RETURN(robot);
    requestAndWait(robot, 0x3309, payloadOf(withRobot(robot->currentRobot())));
    for (int i = 0; i < 7; ++i) {
        const double value = robot->singleCycle[i];
        qCDebug(lcApi).noquote() << QString::number(value);
        if (out)
            out[i] = value;
    }
}

} // extern "C"
