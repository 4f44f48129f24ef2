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
#include "sim/commands/Refusal.h"

#include <algorithm>

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
    const auto it = job.jobs.find(name);
    return it != job.jobs.end() ? it->second : 0;
}

void openJob(Session &s, const ReceivedFrame &frame)
{
    const std::string name = requestObject(frame.payload).get("jobName", "").asString();
    if (linesOf(s.model().job, name) == 0) {
        refuse(s, Refusal::UnknownJob, "job not found: " + name);
        return;
    }
    s.model().job.opened = name;
}

void startRun(Session &s, const std::string &name, int line, bool stepOnly)
{
    ControllerModel &m = s.model();
    SimJobRunner &job = m.job;
    const int lines = linesOf(job, name);
    if (lines == 0) {
        refuse(s, Refusal::UnknownJob, "job not found: " + name);
        return;
    }
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
    job.running = name;
    job.line = std::clamp(line, 1, lines);
    job.stepOnly = stepOnly;
    job.runsDone = 0;
    job.sinceLineMs = 0;
    job.cycleStartMs = s.nowMs();
    m.lastRunner = ControllerModel::JobRunner;
    setRunStatus(s, kRunning);
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
    startRun(s, name, requestInt(request, "line", 1), !request.isMember("continueRun"));
}

void pause(Session &s, const ReceivedFrame &)
{
    if (s.model().runStatus == kRunning && jobRanLast(s.model()))
        setRunStatus(s, kPaused);
}

void stop(Session &s, const ReceivedFrame &)
{
    SimJobRunner &job = s.model().job;
    if (!jobRanLast(s.model()))
        return; // the queue has its own stop (0x50B9)
    job.line = 0;
    job.running.clear();
    if (s.model().runStatus != kStopped)
        setRunStatus(s, kStopped);
}

void deleteJob(Session &s, const ReceivedFrame &frame)
{
    const std::string name = requestObject(frame.payload).get("jobfilename", "").asString();
    SimJobRunner &job = s.model().job;
    if (linesOf(job, name) == 0) {
        refuse(s, Refusal::UnknownJob, "job not found: " + name);
        return;
    }
    if (job.running == name && s.model().runStatus != kStopped) {
        refuse(s, Refusal::Busy, "delete refused: the job is running");
        return;
    }
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
        m.runStatus = kPaused;
        reportRunStatus(m, broadcast);
        return;
    }
    job.sinceLineMs += elapsedMs;
    while (job.sinceLineMs >= SimJobRunner::lineMs) {
        job.sinceLineMs -= SimJobRunner::lineMs;
        if (job.stepOnly) {
            m.runStatus = kStopped;
            reportRunStatus(m, broadcast);
            return;
        }
        if (job.line < linesOf(job, job.running)) {
            ++job.line;
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
