// The job runner of the simulated controller.
//
// Commands:
//   0x3114 {"robot","jobName","suffixname"}  open a job (it must exist)
//   0x2501 run requests, told apart by their members:
//          {"jobname","line":1,"continueRun":0,"startOver":true}  run from line 1
//          {"jobname","line"}                                      step: that line only
//          {"continueRun":1 or true, ...}                          continue a paused run
//   0x2401 {"type","robot"}  pause      0x2503 {"robot"}  stop
//   0x3111 {"robot","jobfilename","suffixname"}  delete a job
//   0x5011 {"robot","index"}  number of runs of the next job
// Queries answered to the asking client:
//   0x3503 {"robot"} -> 0x3504 {"num"}: the line being executed (of the job,
//          or of the continuous-motion queue when that ran last)
//   0x3309 {"robot"} -> 0x330A {"value"[7]}: last cycle time (s), time in the
//          current cycle (s), cycles done since start-up, runs done, runs
//          wanted, line, lines of the job
// A job in the job folder ("<folder>/R<robot>/<name>.JBR", where the file
// service stores uploads) is read through the library's job reader when it
// is opened or run, and is preferred to a built-in job of the same name. Its
// line n is its n-th instruction after NOP: executed as the continuous-motion
// queue executes the same instruction (a move takes the time its axes need,
// a TIMER its time, an output is set at once), held while paused; what the
// simulator cannot execute is stepped over. A line lasts at least lineMs. An
// instruction that cannot run when its turn comes (a global position that
// does not exist) stops the job with an error message. While a job runs the
// queue is stopped, so the job's current instruction uses the queue's
// execution fields (phase, target, wait, pulse port).
// A paused job continues with the drives running, or with the servo ready
// while the drives come up (deadman on); it runs on once they are up.
// Every change of the running state (0 stopped, 1 paused, 2 running) goes to
// every client as 0x3D03 {"robot","status"}; the line is only reported when
// asked for, so a running job does not wake the host's waiting calls by
// itself. Refusals (job unknown, servo not running, a job or the queue
// already running) are error messages 0x2B03. Pause and stop act on a job
// only; the queue has its own suspend and stop.

#include "sim/Session.h"
#include "sim/Simulator.h"
#include "sim/commands/Families.h"
#include "sim/commands/JobFiles.h"
#include "sim/commands/QueueInstructions.h"
#include "sim/commands/Refusal.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace qrxsim {

namespace {

constexpr int kStopped = 0;
constexpr int kPaused = 1;
constexpr int kRunning = 2;
constexpr int kServoReady = 1;
constexpr int kServoRunning = 3;

// The running state belongs to the job runner, not to the queue.
bool jobRanLast(const ControllerModel &m)
{
    return m.lastRunner == ControllerModel::JobRunner;
}

// Servo ready with the deadman on: the drives are coming up.
bool drivesComingUp(const ControllerModel &m)
{
    return m.servoStatus == kServoReady && m.deadman == 1;
}

void reportRunStatus(ControllerModel &m, const std::function<void(quint16, const Json::Value &)> &send)
{
    send(replyTo(code::GetRunStatus), runStatusReport(m));
}

void setRunStatus(Session &s, int status)
{
    s.model().runStatus = status;
    reportRunStatus(s.model(), [&s](quint16 code, const Json::Value &v) { s.broadcastJson(code, v); });
}

int linesOf(const SimJobRunner &job, const std::string &name)
{
    if (job.fromFile && name == job.running)
        return int(job.steps.size());
    const auto it = job.jobs.find(name);
    return it != job.jobs.end() ? it->second : 0;
}

// The robot a request names, else the current one.
int robotOf(const ControllerModel &m, const Json::Value &request)
{
    return requestInt(request, "robot", m.currentRobot);
}

// Job `name` as a file of the job folder, else as a built-in job; refused
// (false) when neither holds it or its file does not read.
bool findJob(Session &s, const std::string &name, int robot, JobFileSteps &file)
{
    file = readJobFile(jobFilePath(s.model().job.folder, robot, name));
    if (file.found && !file.problem.empty()) {
        refuse(s, Refusal::NotExecutable, name + ": " + file.problem);
        return false;
    }
    if (!file.found && linesOf(s.model().job, name) == 0) {
        refuse(s, Refusal::UnknownJob, "job not found: " + name);
        return false;
    }
    return true;
}

// ---- the instruction of the current line (jobs read from their file) ------

void refuseAll(Simulator &sim, Refusal code, const std::string &text)
{
    sim.broadcastJson(0x2B03, refusalMessage(code, text));
}

// Ends the current line's instruction where it stands.
void dropStep(ControllerModel &m)
{
    ContinuousMotion &c = m.continuous;
    if (c.phase == ContinuousMotion::Moving)
        m.motion.waypoints.clear();
    if (c.phase == ContinuousMotion::Waiting)
        finishWaiting(m);
    c.phase = ContinuousMotion::Idle;
    m.motion.held = false;
}

// Starts the instruction of the current line; one the simulator cannot
// execute is stepped over. False when it cannot run now: the job is stopped
// with an error message.
bool startStep(Simulator &sim)
{
    ControllerModel &m = sim.model();
    SimJobRunner &job = m.job;
    m.continuous.phase = ContinuousMotion::Idle;
    if (!job.fromFile || job.line < 1 || job.line > int(job.steps.size()))
        return true;
    const Json::Value &step = job.steps[std::size_t(job.line - 1)];
    if (!notExecutable(step, m).empty())
        return true;
    const std::string problem = startInstruction(step, m, sim.nowMs());
    if (problem.empty())
        return true;
    refuseAll(sim, Refusal::NotExecutable, "job stopped at line " + std::to_string(job.line) + ": " + problem);
    dropStep(m);
    job.running.clear();
    job.line = 0;
    m.runStatus = kStopped;
    reportRunStatus(m, [&sim](quint16 code, const Json::Value &v) { sim.broadcastJson(code, v); });
    return false;
}

// Whether the current line's instruction is done: a move when the axes
// have arrived, a wait when its time is up.
bool stepDone(Simulator &sim)
{
    ControllerModel &m = sim.model();
    ContinuousMotion &c = m.continuous;
    if (c.phase == ContinuousMotion::Moving) {
        if (m.motion.busy())
            return false;
        c.phase = ContinuousMotion::Idle;
    } else if (c.phase == ContinuousMotion::Waiting) {
        if (sim.nowMs() < c.waitUntilMs)
            return false;
        finishWaiting(m);
    }
    return true;
}

// A pause holds the move where it is and keeps the time a wait still has.
void holdStep(ControllerModel &m, qint64 nowMs)
{
    ContinuousMotion &c = m.continuous;
    if (!m.job.fromFile)
        return;
    m.motion.held = c.phase == ContinuousMotion::Moving;
    if (c.phase == ContinuousMotion::Waiting)
        c.waitLeftMs = std::max<qint64>(0, c.waitUntilMs - nowMs);
}

void resumeStep(ControllerModel &m, qint64 nowMs)
{
    ContinuousMotion &c = m.continuous;
    if (!m.job.fromFile)
        return;
    m.motion.held = false;
    if (c.phase == ContinuousMotion::Moving) { // the drives may have dropped the target
        m.motion.waypoints.assign(1, c.target);
        m.motion.speedShare = c.speedShare;
    }
    if (c.phase == ContinuousMotion::Waiting)
        c.waitUntilMs = nowMs + c.waitLeftMs;
}

// ---- commands -----------------------------------------------------------------

void openJob(Session &s, const ReceivedFrame &frame)
{
    const Json::Value request = requestObject(frame.payload);
    const std::string name = request.get("jobName", "").asString();
    JobFileSteps file;
    if (findJob(s, name, robotOf(s.model(), request), file))
        s.model().job.opened = name;
}

void startRun(Session &s, const std::string &name, int robot, int line, bool stepOnly)
{
    ControllerModel &m = s.model();
    SimJobRunner &job = m.job;
    JobFileSteps file;
    if (!findJob(s, name, robot, file))
        return;
    if (m.servoStatus != kServoRunning) {
        refuse(s, Refusal::ServoOff, "job refused: the servo is not running");
        return;
    }
    if (m.runStatus == kRunning) {
        refuse(s, Refusal::Busy, "job refused: a job is running");
        return;
    }
    if (m.continuous.state != ContinuousMotion::Stopped) {
        refuse(s, Refusal::Busy, "job refused: the continuous-motion queue is running");
        return;
    }
    job.fromFile = file.found;
    job.steps = std::move(file.steps);
    job.running = name;
    job.line = std::clamp(line, 1, std::max(linesOf(job, name), 1));
    job.stepOnly = stepOnly;
    job.runsDone = 0;
    job.sinceLineMs = 0;
    job.cycleStartMs = s.nowMs();
    m.lastRunner = ControllerModel::JobRunner;
    setRunStatus(s, kRunning);
    startStep(s.simulator());
}

void continueRun(Session &s)
{
    ControllerModel &m = s.model();
    if (m.runStatus == kRunning)
        return;
    if (m.job.running.empty() || m.runStatus != kPaused || !jobRanLast(m)) {
        refuse(s, Refusal::NothingToDo, "continue refused: no paused job");
        return;
    }
    // The host continues only with the servo ready; the run goes on once
    // the drives are up.
    if (m.servoStatus != kServoRunning && !drivesComingUp(m)) {
        refuse(s, Refusal::ServoOff, "job refused: the servo is not running");
        return;
    }
    resumeStep(m, s.nowMs());
    setRunStatus(s, kRunning);
}

void runRequest(Session &s, const ReceivedFrame &frame)
{
    const Json::Value request = requestObject(frame.payload);
    const Json::Value continued = request.get("continueRun", Json::Value());
    const bool isContinue = (continued.isBool() && continued.asBool()) || (continued.isIntegral() && continued.asInt() != 0);
    if (isContinue) {
        continueRun(s);
        return;
    }
    const std::string name = request.get("jobname", "").asString();
    startRun(s, name, robotOf(s.model(), request), requestInt(request, "line", 1), !request.isMember("continueRun"));
}

void pause(Session &s, const ReceivedFrame &)
{
    if (s.model().runStatus == kRunning && jobRanLast(s.model())) {
        holdStep(s.model(), s.nowMs());
        setRunStatus(s, kPaused);
    }
}

void stop(Session &s, const ReceivedFrame &)
{
    SimJobRunner &job = s.model().job;
    if (!jobRanLast(s.model()))
        return; // the queue has its own stop (0x50B9)
    if (job.fromFile)
        dropStep(s.model());
    job.line = 0;
    job.running.clear();
    if (s.model().runStatus != kStopped)
        setRunStatus(s, kStopped);
}

void deleteJob(Session &s, const ReceivedFrame &frame)
{
    const Json::Value request = requestObject(frame.payload);
    const std::string name = request.get("jobfilename", "").asString();
    SimJobRunner &job = s.model().job;
    const std::string path = jobFilePath(job.folder, robotOf(s.model(), request), name);
    const bool isFile = !path.empty() && std::ifstream(path).good();
    if (!isFile && linesOf(job, name) == 0) {
        refuse(s, Refusal::UnknownJob, "job not found: " + name);
        return;
    }
    if (job.running == name && s.model().runStatus != kStopped) {
        refuse(s, Refusal::Busy, "delete refused: the job is running");
        return;
    }
    if (isFile)
        std::remove(path.c_str());
    job.jobs.erase(name);
    if (job.opened == name)
        job.opened.clear();
}

void runningLine(Session &s, const ReceivedFrame &)
{
    const ControllerModel &m = s.model();
    Json::Value v(Json::objectValue);
    v["num"] = m.lastRunner == ControllerModel::QueueRunner ? m.continuous.line : m.job.line;
    s.replyJson(report::JobLine, v);
}

void singleCycle(Session &s, const ReceivedFrame &)
{
    const ControllerModel &m = s.model();
    const SimJobRunner &job = m.job;
    const double inCycle = m.runStatus == kRunning ? (s.nowMs() - job.cycleStartMs) / 1000.0 : 0.0;
    const double values[7] = {job.lastCycleSeconds, inCycle, double(job.cyclesDone), double(job.runsDone),
                              double(job.runsWanted), double(job.line), double(linesOf(job, job.running))};
    Json::Value list(Json::arrayValue);
    for (double value : values)
        list.append(value);
    Json::Value v(Json::objectValue);
    v["value"] = list;
    s.replyJson(replyTo(code::GetSingleCycle), v);
}

// Advances the running job one line per SimJobRunner::lineMs.
void tickJob(Simulator &sim, qint64 elapsedMs)
{
    ControllerModel &m = sim.model();
    SimJobRunner &job = m.job;
    if (m.runStatus != kRunning || !jobRanLast(m))
        return;
    auto broadcast = [&sim](quint16 code, const Json::Value &v) { sim.broadcastJson(code, v); };
    if (drivesComingUp(m))
        return; // a continued run waits for the drives
    if (m.servoStatus != kServoRunning) { // the drives went off: the job pauses
        holdStep(m, sim.nowMs());
        m.runStatus = kPaused;
        reportRunStatus(m, broadcast);
        return;
    }
    job.sinceLineMs += elapsedMs;
    while (job.sinceLineMs >= SimJobRunner::lineMs && stepDone(sim)) {
        // A line of a job file starts its time afresh: it lasted as long as
        // its instruction needed.
        job.sinceLineMs = job.fromFile ? 0 : job.sinceLineMs - SimJobRunner::lineMs;
        if (job.stepOnly) {
            m.runStatus = kStopped;
            reportRunStatus(m, broadcast);
            return;
        }
        if (job.line < linesOf(job, job.running)) {
            ++job.line;
            if (!startStep(sim))
                return;
            continue;
        }
        // End of the job: one cycle done.
        job.lastCycleSeconds = (sim.nowMs() - job.cycleStartMs) / 1000.0;
        job.cycleStartMs = sim.nowMs();
        ++job.cyclesDone;
        ++job.runsDone;
        if (job.runsDone >= std::max(job.runsWanted, 1)) {
            m.runStatus = kStopped;
            reportRunStatus(m, broadcast);
            return;
        }
        job.line = 1;
        if (!startStep(sim))
            return;
    }
}

} // namespace

std::vector<CommandEntry> jobCommands()
{
    return {
        {code::OpenJob, openJob},
        {code::RunJob, runRequest},
        {code::PauseJob, pause},
        {code::StopJob, stop},
        {code::DeleteJob, deleteJob},
        {code::SetCycleCount, [](Session &s, const ReceivedFrame &frame) {
             s.model().job.runsWanted = requestInt(requestObject(frame.payload), "index", 1);
         }},
        {code::GetRunningLine, runningLine},
        {code::GetSingleCycle, singleCycle},
    };
}

std::vector<TickEntry> jobTicks()
{
    return {{"job runner", tickJob,
             [](const ControllerModel &m) { return m.runStatus == kRunning && jobRanLast(m); }}};
}

} // namespace qrxsim
