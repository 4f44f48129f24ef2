#pragma once
// The send slots of the controller link for the basic status commands.
// Each builds its payload and hands it to sendData(), which the connection
// (TcpConnectModule) implements.
//
// (Skeleton: the send slots are filled by the senders work.)

#include "link/LinkNotifications.h"

class LinkSenders : public LinkNotifications
{
    Q_OBJECT
public:
    using LinkNotifications::LinkNotifications;

    // Frames and writes the command if the link is up; false otherwise.
    virtual bool sendData(quint16 command, QByteArray payload) = 0;
};
