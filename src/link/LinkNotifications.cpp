#include "link/LinkNotifications.h"

#include "common/Payload.h"
#include "link/DispatchTable.h"
#include "link/LinkTypes.h"
#include "link/PositionReport.h"

#include <QMetaMethod>

#include <json/value.h>

#include <vector>

namespace {

bool isJson(const QByteArray &data)
{
    Json::Value ignored;
    return qrx::parsePayload(data, ignored);
}

// The catalogue names each notification; the signal of that name taking the
// payload, looked up once, by the row's place among the incoming rows.
struct NamedSignals
{
    std::vector<QMetaMethod> first;
    std::vector<QMetaMethod> second;

    static QMetaMethod payloadSignal(const char *name)
    {
        if (!name)
            return QMetaMethod();
        const QMetaObject &meta = LinkNotifications::staticMetaObject;
        const int index = meta.indexOfSignal(QByteArray(QByteArray(name) + "(QByteArray)").constData());
        return index >= 0 ? meta.method(index) : QMetaMethod();
    }

    NamedSignals()
    {
        for (const qrx::protocol::Message &row : qrx::protocol::incoming()) {
            first.push_back(payloadSignal(row.name));
            second.push_back(payloadSignal(row.secondName));
        }
    }
};

const NamedSignals &namedSignals()
{
    // Never destroyed: a link thread may still deliver a frame while the
    // process exits.
    static const NamedSignals *const table = new NamedSignals;
    return *table;
}

} // namespace

LinkNotifications::LinkNotifications(QObject *parent)
    : QObject(parent)
{
    qrx::registerLinkMetaTypes();
    namedSignals();
}

void LinkNotifications::onReceivedData(quint16 command, QByteArray data)
{
    const qrx::DispatchRow *row = qrx::findDispatchRow(command);
    if (!row) {
        if (m_frameSink)
            m_frameSink(command, data);
        Q_EMIT receivedData(command, data);
        return;
    }
    using Delivery = qrx::protocol::Delivery;
    if (row->delivery == Delivery::ForwardIfJson && !isJson(data))
        return;
    if (m_frameSink)
        m_frameSink(command, data);
    switch (row->delivery) {
    case Delivery::ForwardIfJson:
    case Delivery::Forward: {
        const std::size_t at = std::size_t(row - qrx::protocol::incoming().begin());
        const NamedSignals &named = namedSignals();
        named.first[at].invoke(this, Qt::DirectConnection, Q_ARG(QByteArray, data));
        if (named.second[at].isValid())
            named.second[at].invoke(this, Qt::DirectConnection, Q_ARG(QByteArray, data));
        return;
    }
    case Delivery::TestModeByte:
        if (data.size() == 1)
            Q_EMIT receivedTestMode(static_cast<signed char>(data.at(0)));
        return;
    case Delivery::Position: {
        qrx::PositionReport report;
        if (qrx::decodePositionReport(data, report))
            Q_EMIT receivedPosition(report.position, report.coord, report.robot, report.configuration);
        return;
    }
    case Delivery::NoArgument:
        Q_EMIT recvJobFileInfoFinish();
        return;
    case Delivery::Connection:
    case Delivery::None:
        return; // not delivered: findDispatchRow() never hands these out
    }
}
