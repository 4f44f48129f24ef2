#include "BridgeLogging.h"

Q_LOGGING_CATEGORY(lcBridge, "qrx.bridge")
