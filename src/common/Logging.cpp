#include "common/Logging.h"

// The events a user must see (link lost, reconnecting, manual stop and start,
// a refused queue) are logged at info or warning level; the per-call lines
// (every frame sent, every report taken) at debug level, which these
// categories print only when asked: QT_LOGGING_RULES="qrx.*.debug=true".
Q_LOGGING_CATEGORY(lcLink, "qrx.link", QtInfoMsg)
Q_LOGGING_CATEGORY(lcRobot, "qrx.robot", QtInfoMsg)
Q_LOGGING_CATEGORY(lcApi, "qrx.api", QtInfoMsg)
Q_LOGGING_CATEGORY(lcTransfer, "qrx.transfer")
Q_LOGGING_CATEGORY(lcJob, "qrx.job")
Q_LOGGING_CATEGORY(lcRecord, "qrx.record", QtInfoMsg)
