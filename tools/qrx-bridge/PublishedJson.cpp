#include "PublishedJson.h"

#include "common/CompactJson.h"

#include <ctime>
#include <json/value.h>

namespace qrxbridge {

namespace {

Json::Value reals(const std::array<double, 6> &values)
{
    Json::Value array(Json::arrayValue);
    for (const double v : values)
        array.append(v);
    return array;
}

} // namespace

std::string isoTime(WallClock::time_point when)
{
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(when.time_since_epoch()).count();
    const std::time_t seconds = std::time_t(ms / 1000 - (ms % 1000 < 0 ? 1 : 0));
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[40];
    const int n = int(std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc));
    std::snprintf(text + n, sizeof text - n, ".%03dZ", int((ms % 1000 + 1000) % 1000));
    return text;
}

std::string stateJson(const ControllerState &state, WallClock::time_point when)
{
    Json::Value v(Json::objectValue);
    v["link"] = state.link;
    v["servo"] = state.servo;
    v["mode"] = state.mode;
    v["coord"] = state.coord;
    v["speed"] = state.speed;
    v["running"] = state.running;
    v["line"] = state.line;
    v["tool"] = state.tool;
    v["type"] = state.type;
    v["joints"] = reals(state.joints);
    v["cartesian"] = reals(state.cartesian);
    v["time"] = isoTime(when);
    return qrx::compactJson(v);
}

std::string alarmJson(int level, const std::string &text, WallClock::time_point when)
{
    static const char *const kLevels[] = {"error", "warning", "info"};
    Json::Value v(Json::objectValue);
    v["level"] = level >= 0 && level <= 2 ? kLevels[level] : "info";
    v["text"] = text;
    v["time"] = isoTime(when);
    return qrx::compactJson(v);
}

std::string okAnswer()
{
    Json::Value v(Json::objectValue);
    v["ok"] = true;
    return qrx::compactJson(v);
}

std::string errorAnswer(const std::string &error)
{
    Json::Value v(Json::objectValue);
    v["ok"] = false;
    v["error"] = error;
    return qrx::compactJson(v);
}

} // namespace qrxbridge
