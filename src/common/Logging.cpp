#include "common/Logging.h"

Q_LOGGING_CATEGORY(lcLink, "qrx.link")
Q_LOGGING_CATEGORY(lcRobot, "qrx.robot")
Q_LOGGING_CATEGORY(lcApi, "qrx.api")
Q_LOGGING_CATEGORY(lcTransfer, "qrx.transfer")
Q_LOGGING_CATEGORY(lcJob, "qrx.job")
