#pragma once
// What a file transfer needs of the main link, and nothing more:
//  - address:   the controller's IP address (the file connection goes there,
//               port 5000);
//  - send:      one command on the main link (0x5532, 0x5542, 0x5061); false
//               when the link is down;
//  - noteAlive: the controller was heard on the file connection, so that a
//               long transfer keeps the main link from timing out;
//  - uploading: the controller's "an upload runs" flag: one upload at a time
//               to a controller (null: the transfer's own flag, so uploads
//               from different objects do not see each other).
// The main link's notifications about files (0x5533, 0x5534, 0x5535, 0x5543,
// 0x5546) go the other way: whoever owns the link hands them to the
// transfer's slots of the same names (TcpUpDownFile::recvJobFileSumList, …).
// Either function may be empty: nothing is sent, nothing is noted.

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>

namespace qrx::transfer {

struct MainLink
{
    QString address;
    std::function<bool(quint16 command, const QByteArray &payload)> send;
    std::function<void()> noteAlive;
    std::atomic<bool> *uploading = nullptr;
};

} // namespace qrx::transfer
