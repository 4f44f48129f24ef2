// Which reply answers which query, for matched replies: read from the
// protocol catalogue, where each request names the reply the controller
// answers it with (0x2F07 -> 0x2F08). A waiting function whose query has no
// reply there ends its wait on any waking reply, matched or not.

#include "api/Extensions.h"
#include "protocol/Catalogue.h"

namespace qrx::api {

quint16 replyCodeFor(quint16 query)
{
    return protocol::replyTo(query);
}

QVector<quint16> answeringReplyCodes()
{
    QVector<quint16> codes;
    for (const protocol::Message &request : protocol::outgoing()) {
        if (request.pairedWith && !codes.contains(request.pairedWith))
            codes.append(request.pairedWith);
    }
    return codes;
}

} // namespace qrx::api
