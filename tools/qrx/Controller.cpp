#include "Controller.h"

#include "Args.h"
#include "Bound.h"
#include "Link.h"
#include "qrx_host.h"

namespace qrxcli {

const std::vector<std::string> &servoNames()
{
    static const std::vector<std::string> names{"stopped", "ready", "alarm", "running"};
    return names;
}

const std::vector<std::string> &modeNames()
{
    static const std::vector<std::string> names{"teach", "remote", "run"};
    return names;
}

const std::vector<std::string> &coordNames()
{
    static const std::vector<std::string> names{"joint", "cartesian", "tool", "user"};
    return names;
}

const std::vector<std::string> &runningNames()
{
    static const std::vector<std::string> names{"stopped", "paused", "running"};
    return names;
}

int readMode()
{
    return answered<int>("the operation mode", [] { return get_current_mode(); });
}

int readCoord()
{
    return answered<int>("the coordinate system", [] { return get_current_coord(); });
}

int readSpeed()
{
    return answered<int>("the jog speed", [] { return get_jogging_speed(); });
}

int readRunning()
{
    return answered<int>("the running state", [] { return get_robot_running_state(); });
}

int readTool()
{
    return answered<int>("the current tool", [] { return get_current_tool_hand(); });
}

std::array<double, 6> readPosition(int coord)
{
    return answered<std::array<double, 6>>("the position", [coord] {
        std::array<double, 6> pos{};
        get_current_position(pos.data(), coord);
        return pos;
    });
}

int readServo()
{
    settle();
    return get_servo_state();
}

int readJobLine()
{
    get_job_running_lines();
    settle();
    return get_job_running_lines();
}

std::vector<double> toVector(const double *values, std::size_t count)
{
    return std::vector<double>(values, values + count);
}

Report statusReport()
{
    // The mode the controller reported (on link-up and on each change):
    // querying it would cost the mode reply's 200 ms pause.
    settle();
    const int mode = qrx_reported_mode();
    const int coord = readCoord();
    const int speed = readSpeed();
    const int tool = readTool();
    const std::array<double, 6> joints = readPosition(0);
    const std::array<double, 6> cartesian = readPosition(1);
    const int line = readJobLine();
    const int running = readRunning();
    const int servo = get_servo_state();
    // The model came with the start-up reports, before any answer above.
    char typeName[32] = {};
    const int type = qrx_robot_type(typeName, int(sizeof typeName));

    Report report;
    report.flag("link", connection_status() != 0)
        .coded("type", type, typeName)
        .coded("servo", servo, nameOf(servo, servoNames()))
        .coded("mode", mode, nameOf(mode, modeNames()))
        .coded("coord", coord, nameOf(coord, coordNames()))
        .integer("speed", speed)
        .numbers("joints", toVector(joints.data(), joints.size()))
        .numbers("cartesian", toVector(cartesian.data(), cartesian.size()))
        .coded("running", running, nameOf(running, runningNames()))
        .integer("line", line)
        .integer("tool", tool);
    return report;
}

} // namespace qrxcli
