// The link as a host sees it through the extensions: the connection-event
// handler (the events themselves are the controller's: controller/
// Controller.cpp) and the last controller message as C text.

#include "api/ApiState.h"
#include "api/Extensions.h"
#include "api/qrx_host.h"

#include <algorithm>
#include <cstring>

namespace qrx::api {

static_assert(QRX_LINK_UP == kLinkUp && QRX_LINK_DROPPED == kLinkDropped && QRX_LINK_BACK == kLinkBack,
              "the events the controller says are the ones qrx_host.h names");
static_assert(QRX_LINK_REASON_NONE == kReasonNone && QRX_LINK_REASON_CLOSED_BY_HOST == kReasonClosedByHost &&
                  QRX_LINK_REASON_CONNECTION_LOST == kReasonConnectionLost &&
                  QRX_LINK_REASON_CONTROLLER_SILENT == kReasonControllerSilent,
              "the reasons the controller says are the ones qrx_host.h names");

int copyText(const std::string &text, char *buffer, int size)
{
    if (buffer && size > 0) {
        std::size_t n = std::min(text.size(), std::size_t(size - 1));
        // Never cut a UTF-8 character in two: back up to a lead byte.
        if (n < text.size()) {
            while (n > 0 && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80)
                --n;
        }
        std::memcpy(buffer, text.data(), n);
        buffer[n] = '\0';
    }
    return int(text.size());
}

} // namespace qrx::api

using namespace qrx::api;

extern "C" {

void qrx_set_link_event_handler(qrx_link_event_handler handler, void *user)
{
    QRX_CONTROLLER_OR_RETURN(controller);
    controller->setLinkEventHandler(handler, user);
}

int qrx_last_message(char *buffer, int size)
{
    return qrx::api::copyText(show_log(), buffer, size);
}

} // extern "C"
