// The session commands of the host: the post-connection request and the
// farewell (continuous motion is in ContinuousCommands.cpp).
//
//  - 0x5052 post-connection request -> 0x5053 {"controlNumber","robot"}: the
//    report of the same family, carrying the controller's number.
//  - 0x7277 (farewell) is answered with nothing; it is counted.

#include "sim/Session.h"
#include "sim/commands/Families.h"

namespace qrxsim {

std::vector<CommandEntry> sessionCommands()
{
    return {
        {code::PostConnection,
         [](Session &session, const ReceivedFrame &) {
             ++session.model().postConnectionRequests;
             Json::Value report(Json::objectValue);
             report["controlNumber"] = "QRX-SIM-0001";
             report["robot"] = session.model().currentRobot;
             session.replyJson(report::ControlNumber, report);
         }},
        {code::Farewell, [](Session &session, const ReceivedFrame &) { ++session.model().farewells; }},
    };
}

} // namespace qrxsim
