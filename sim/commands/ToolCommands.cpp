// Tool selection: 0x380A {"curToolNum","robot"} makes that tool the current
// one and reports it with 0x380C {"curToolNum","robot"} to every client, as
// the answer to the tool query 0x380B does. (Tool parameters, user frames
// and calibrations are answered by RobotParamCommands.cpp.)

#include "sim/Session.h"
#include "sim/commands/Families.h"
#include "sim/commands/Refusal.h"

namespace qrxsim {

std::vector<CommandEntry> toolCommands()
{
    return {
        {code::SetCurrentTool,
         [](Session &s, const ReceivedFrame &frame) {
             const Json::Value request = requestObject(frame.payload);
             if (!request.isMember("curToolNum"))
                 return;
             s.model().currentTool = requestInt(request, "curToolNum");
             Json::Value v(Json::objectValue);
             v["curToolNum"] = s.model().currentTool;
             v["robot"] = requestInt(request, "robot", s.model().currentRobot);
             s.broadcastJson(replyTo(code::GetCurrentTool), v);
         }},
    };
}

} // namespace qrxsim
