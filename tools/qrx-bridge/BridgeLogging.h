#pragma once
// The bridge's log category, "qrx.bridge".

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcBridge)
