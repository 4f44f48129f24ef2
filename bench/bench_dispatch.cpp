// Decode plus dispatch of a mixed stream of status frames, in frames per
// second, beside decoding alone over the same stream in the same run:
//  - BM_DecodeOnly: the frame decoder, each frame handed to a counter;
//  - BM_DecodeAndDispatch: the same, each frame through onReceivedData with
//    a listener connected directly to every notification (what the link
//    thread does per frame before any queued delivery);
//  - BM_DispatchOnly: onReceivedData over already-cut frames;
//  - BM_Lookup: the code-to-row lookup alone, over every code of the mix.
// The mix: servo, mode, speed and position reports (JSON), the one-byte test
// mode, job status (two notifications), IO and an unlisted code.

#include "common/CompactJson.h"
#include "link/DispatchTable.h"
#include "link/FrameCodec.h"
#include "link/LinkNotifications.h"

#include <QByteArray>
#include <QMetaMethod>
#include <QVector>
#include <benchmark/benchmark.h>
#include <json/value.h>

namespace {

constexpr int kRepeats = 500; // times the mix is repeated in the stream

struct Message
{
    quint16 code;
    QByteArray payload;
};

QByteArray json(std::initializer_list<std::pair<const char *, Json::Value>> members)
{
    Json::Value v(Json::objectValue);
    for (const auto &m : members)
        v[m.first] = m.second;
    return qrx::jsonPayload(v);
}

const QVector<Message> &mix()
{
    static const QVector<Message> messages = [] {
        Json::Value pos(Json::arrayValue);
        for (double d : {12.5, -30.25, 45.0, 0.0, 90.0, -180.0, 7.125})
            pos.append(d);
        return QVector<Message>{
            {0x2003, json({{"mode", 1}, {"robot", 1}, {"status", 3}})},
            {0x2103, json({{"mode", 2}})},
            {0x2203, json({{"coord", 1}, {"robot", 1}})},
            {0x2603, json({{"robot", 1}, {"speed", 50}})},
            {0x2703, QByteArray(1, char(1))},
            {0x2A03, json({{"configuration", 0}, {"coord", 1}, {"posDeg", pos}, {"robot", 1}})},
            {0x2F08, json({{"coord", 1}, {"pos", pos}, {"posDeg", pos}, {"robot", 1}})},
            {0x3606, json({{"status", "0101010100000000"}})},
            {0x3D03, json({{"robot", 1}, {"status", 2}})},
            {0x9103, json({{"continueRun", 0}, {"robot", 1}, {"status", 2}})},
            {0x1234, json({{"x", 1}})},
        };
    }();
    return messages;
}

const QByteArray &stream()
{
    static const QByteArray bytes = [] {
        QByteArray b;
        for (int i = 0; i < kRepeats; ++i) {
            for (const Message &m : mix())
                b.append(qrx::encodeFrame(m.code, m.payload));
        }
        return b;
    }();
    return bytes;
}

int framesInStream()
{
    return kRepeats * mix().size();
}

// Counts every notification, connected directly (same thread).
class Listener : public QObject
{
    Q_OBJECT
public:
    qint64 count = 0;

    void attach(LinkNotifications &link)
    {
        const QMetaObject *mo = link.metaObject();
        for (int i = QObject::staticMetaObject.methodCount(); i < mo->methodCount(); ++i) {
            const QMetaMethod signal = mo->method(i);
            if (signal.methodType() != QMetaMethod::Signal)
                continue;
            const QByteArray slot = signal.parameterCount() == 1 && signal.parameterType(0) == QMetaType::QByteArray
                                        ? "onPayload(QByteArray)"
                                        : signal.name() == "receivedTestMode"   ? "onTestMode(signed char)"
                                          : signal.name() == "receivedPosition" ? "onPosition(QVector<double>,int,int,int)"
                                          : signal.name() == "receivedData"     ? "onData(ushort,QByteArray)"
                                                                                : "";
            const int index = metaObject()->indexOfSlot(slot.constData());
            if (index >= 0)
                connect(&link, signal, this, metaObject()->method(index), Qt::DirectConnection);
        }
    }

public Q_SLOTS:
    void onPayload(const QByteArray &data) { count += data.size() > 0; }
    void onTestMode(signed char) { ++count; }
    void onPosition(const QVector<double> &p, int, int, int) { count += !p.isEmpty(); }
    void onData(quint16, const QByteArray &) { ++count; }
};

void BM_DecodeOnly(benchmark::State &state)
{
    const QByteArray &bytes = stream();
    for (auto _ : state) {
        qrx::FrameDecoder decoder;
        int frames = 0;
        decoder.feed(bytes, [&frames](quint16 code, const QByteArray &payload) {
            benchmark::DoNotOptimize(code);
            benchmark::DoNotOptimize(payload.constData());
            ++frames;
        });
        if (frames != framesInStream())
            state.SkipWithError("frames lost");
    }
    state.SetItemsProcessed(state.iterations() * framesInStream());
}
BENCHMARK(BM_DecodeOnly);

void BM_DecodeAndDispatch(benchmark::State &state)
{
    const QByteArray &bytes = stream();
    LinkNotifications link;
    Listener listener;
    listener.attach(link);
    for (auto _ : state) {
        qrx::FrameDecoder decoder;
        decoder.feed(bytes, [&link](quint16 code, const QByteArray &payload) { link.onReceivedData(code, payload); });
    }
    // Eleven frames of the mix give twelve notifications (0x9103 gives two).
    if (listener.count != state.iterations() * kRepeats * (mix().size() + 1))
        state.SkipWithError("notifications lost");
    state.SetItemsProcessed(state.iterations() * framesInStream());
}
BENCHMARK(BM_DecodeAndDispatch);

void BM_DispatchOnly(benchmark::State &state)
{
    QVector<qrx::Frame> frames = qrx::FrameDecoder().feed(stream());
    LinkNotifications link;
    Listener listener;
    listener.attach(link);
    for (auto _ : state) {
        for (const qrx::Frame &f : frames)
            link.onReceivedData(f.command, f.payload);
    }
    state.SetItemsProcessed(state.iterations() * frames.size());
}
BENCHMARK(BM_DispatchOnly);

void BM_Lookup(benchmark::State &state)
{
    QVector<quint16> codes;
    for (const Message &m : mix())
        codes << m.code;
    for (auto _ : state) {
        for (quint16 code : codes)
            benchmark::DoNotOptimize(qrx::findDispatchRow(code));
    }
    state.SetItemsProcessed(state.iterations() * codes.size());
}
BENCHMARK(BM_Lookup);

} // namespace

BENCHMARK_MAIN();
#include "bench_dispatch.moc"
