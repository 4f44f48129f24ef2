#include "link/LinkTypes.h"

#include <QVector>

namespace qrx {

void registerLinkMetaTypes()
{
    // A function-local static runs once, thread-safely.
    static const bool registered = [] {
        qRegisterMetaType<ServoStatus>("ServoStatus");
        qRegisterMetaType<OperationMode>("OperationMode");
        qRegisterMetaType<CoordinationMode>("CoordinationMode");
        qRegisterMetaType<ErrorList>("ErrorList");
        qRegisterMetaType<QVector<double>>("QVector<double>");
        qRegisterMetaType<quint16>("quint16");
        qRegisterMetaType<signed char>("signed char");
        qRegisterMetaType<uchar>("uchar");
        return true;
    }();
    Q_UNUSED(registered);
}

} // namespace qrx
