#pragma once
// The texts the bridge publishes, as compact JSON: a controller's state and
// messages, with the time in UTC ISO 8601 ("2026-11-24T19:38:07.123Z"), and
// the answers to requests. Pure.

#include <array>
#include <chrono>
#include <string>

namespace qrxbridge {

struct ControllerState
{
    bool link = false;
    int servo = 0, mode = 0, coord = 0, speed = 0, running = 0, line = 0, tool = 0, type = 0;
    std::array<double, 6> joints{}, cartesian{};

    bool operator==(const ControllerState &o) const
    {
        return link == o.link && servo == o.servo && mode == o.mode && coord == o.coord && speed == o.speed
               && running == o.running && line == o.line && tool == o.tool && type == o.type
               && joints == o.joints && cartesian == o.cartesian;
    }
    bool operator!=(const ControllerState &o) const { return !(*this == o); }
};

using WallClock = std::chrono::system_clock;

std::string isoTime(WallClock::time_point when);

// {"cartesian":[..6],"coord":..,"joints":[..6],"line":..,"link":true,...,"time":".."}
std::string stateJson(const ControllerState &state, WallClock::time_point when);

// Message levels as the library gives them: 0 error, 1 warning, 2 info.
// {"level":"error"|"warning"|"info","text":"..","time":".."}
std::string alarmJson(int level, const std::string &text, WallClock::time_point when);

// Answers to requests: {"ok":true}, or {"error":"..","ok":false}.
std::string okAnswer();
std::string errorAnswer(const std::string &error);

} // namespace qrxbridge
