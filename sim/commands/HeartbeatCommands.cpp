// The controller answers the host's heartbeat 0x7266 with 0x7267 and the very
// same payload; the host takes the answer as a sign of life.

#include "sim/Session.h"
#include "sim/Simulator.h"
#include "sim/commands/Families.h"

namespace qrxsim {

std::vector<CommandEntry> heartbeatCommands()
{
    return {
        {code::Heartbeat,
         [](Session &session, const ReceivedFrame &frame) {
             if (session.simulator().answersHeartbeats())
                 session.reply(replyTo(code::Heartbeat), frame.payload);
         }},
    };
}

} // namespace qrxsim
