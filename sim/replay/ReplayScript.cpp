#include "sim/replay/ReplayScript.h"

#include "protocol/Catalogue.h"

namespace qrxsim::replay {

namespace {

using qrx::pcap::RecordedFrame;
using qrx::pcap::Sender;

// A connection while it is being read.
struct Building
{
    Script script;
    qint64 startUs = 0;
    int latestRequest = -1;
    qint64 latestRequestUs = 0;
    QVector<bool> pairedAnswered; // per request: a catalogue reply has come
};

using StreamKey = QPair<quint64, quint64>; // host, controller: address and port

StreamKey streamKey(const RecordedFrame &f)
{
    return {(quint64(f.host.ipv4) << 16) | f.host.port, (quint64(f.controller.ipv4) << 16) | f.controller.port};
}

void answer(Building &b, int request, const Sent &sent, qint64 timeUs)
{
    Request &r = b.script.requests[request];
    if (r.answer.isEmpty())
        r.answeredAtUs = timeUs - b.startUs;
    r.answer.append(sent);
}

void add(Building &b, const RecordedFrame &f)
{
    Script &s = b.script;
    if (f.sender == Sender::Host) {
        s.byCode[f.code].append(s.requests.size());
        s.requests.append({f.code, f.payload, {}});
        b.pairedAnswered.append(false);
        b.latestRequest = s.requests.size() - 1;
        b.latestRequestUs = f.timeUs;
        return;
    }
    const Sent sent{f.code, f.payload};
    const qrx::protocol::Message *row =
        f.onFileConnection() ? nullptr : qrx::protocol::find(f.code, qrx::protocol::Direction::FromController);
    if (row && row->isReply()) {
        for (const int i : s.byCode.value(row->pairedWith)) {
            if (!b.pairedAnswered[i]) {
                b.pairedAnswered[i] = true;
                answer(b, i, sent, f.timeUs);
                return;
            }
        }
    }
    if (b.latestRequest >= 0 && f.timeUs - b.latestRequestUs <= kAnswerWindowUs) {
        answer(b, b.latestRequest, sent, f.timeUs);
        return;
    }
    s.reports.append({f.timeUs - b.startUs, sent});
}

} // namespace

Scripts build(const QVector<RecordedFrame> &frames)
{
    QVector<Building> connections;
    QVector<bool> onFileConnection;
    QHash<StreamKey, int> indexOf;
    for (const RecordedFrame &f : frames) {
        const StreamKey key = streamKey(f);
        auto it = indexOf.find(key);
        if (it == indexOf.end()) {
            it = indexOf.insert(key, connections.size());
            connections.append(Building{});
            connections.last().startUs = f.timeUs;
            onFileConnection.append(f.onFileConnection());
        }
        add(connections[*it], f);
    }
    Scripts scripts;
    for (int i = 0; i < connections.size(); ++i)
        (onFileConnection[i] ? scripts.fileConnection : scripts.mainLink).append(connections[i].script);
    return scripts;
}

} // namespace qrxsim::replay
