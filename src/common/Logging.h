#pragma once
// Logging categories of the library. Users filter them with
// QLoggingCategory::setFilterRules, e.g. "qrx.link.debug=false".

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcLink)     // "qrx.link": connection, heartbeat, codec
Q_DECLARE_LOGGING_CATEGORY(lcRobot)    // "qrx.robot": state model and handlers
Q_DECLARE_LOGGING_CATEGORY(lcApi)      // "qrx.api": exported functions
Q_DECLARE_LOGGING_CATEGORY(lcTransfer) // "qrx.transfer": file transfer
Q_DECLARE_LOGGING_CATEGORY(lcJob)      // "qrx.job": job program model
Q_DECLARE_LOGGING_CATEGORY(lcRecord)   // "qrx.record": session recording (QRX_RECORD)
