// The one tolerant JSON reader (robot handlers, instruction JSON, the
// simulator's requests) and the global-variable name parser: one data
// table each, including the integer cases the three former readers did not
// agree on.

#include "common/GlobalVarName.h"
#include "common/JsonRead.h"
#include "job/JsonRead.h"

#include <QtTest>

#include <climits>
#include <json/reader.h>

namespace {

Json::Value parse(const char *text)
{
    Json::Value v;
    Json::Reader().parse(text, v);
    return v;
}

} // namespace

class tst_JsonRead : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void members_data()
    {
        QTest::addColumn<QByteArray>("json");     // an object with member "v" (or none)
        QTest::addColumn<int>("asInt");
        QTest::addColumn<double>("asReal");
        QTest::addColumn<bool>("asBool");
        QTest::addColumn<QByteArray>("asText");
        QTest::addColumn<int>("intOr");          // fallback 42

        QTest::newRow("int") << QByteArray(R"({"v":7})") << 7 << 7.0 << true << QByteArray("7") << 7;
        QTest::newRow("negative real truncates") << QByteArray(R"({"v":-2.7})") << -2 << -2.7 << true
                                                 << QByteArray("-2.7000000000000002") << -2;
        QTest::newRow("real truncates") << QByteArray(R"({"v":2.7})") << 2 << 2.7 << true
                                        << QByteArray("2.7000000000000002") << 2;
        QTest::newRow("above int clamps") << QByteArray(R"({"v":1e12})") << INT_MAX << 1e12 << true
                                          << QByteArray("1000000000000.0") << INT_MAX;
        QTest::newRow("below int clamps") << QByteArray(R"({"v":-1e12})") << INT_MIN << -1e12 << true
                                          << QByteArray("-1000000000000.0") << INT_MIN;
        QTest::newRow("half is false") << QByteArray(R"({"v":0.5})") << 0 << 0.5 << false
                                       << QByteArray("0.5") << 0;
        QTest::newRow("true") << QByteArray(R"({"v":true})") << 1 << 1.0 << true << QByteArray("true") << 1;
        QTest::newRow("false") << QByteArray(R"({"v":false})") << 0 << 0.0 << false << QByteArray("false") << 0;
        QTest::newRow("numeric string") << QByteArray(R"({"v":"5"})") << 0 << 0.0 << false << QByteArray("5") << 42;
        QTest::newRow("null") << QByteArray(R"({"v":null})") << 0 << 0.0 << false << QByteArray() << 42;
        QTest::newRow("array") << QByteArray(R"({"v":[1]})") << 0 << 0.0 << false << QByteArray() << 42;
        QTest::newRow("missing") << QByteArray(R"({"w":1})") << 0 << 0.0 << false << QByteArray() << 42;
        QTest::newRow("not an object") << QByteArray(R"([1,2])") << 0 << 0.0 << false << QByteArray() << 42;
    }

    // The library's names and the job model's names read alike.
    void members()
    {
        QFETCH(QByteArray, json);
        QFETCH(int, asInt);
        QFETCH(double, asReal);
        QFETCH(bool, asBool);
        QFETCH(QByteArray, asText);
        QFETCH(int, intOr);
        const Json::Value root = parse(json.constData());

        QCOMPARE(qrx::jsonInt(root, "v"), asInt);
        QCOMPARE(qrx::jsonReal(root, "v"), asReal);
        QCOMPARE(qrx::jsonBool(root, "v"), asBool);
        QCOMPARE(qrx::jsonIntOr(root, "v", 42), intOr);
        QCOMPARE(QByteArray::fromStdString(qrx::jsonText(qrx::jsonMember(root, "v"))), asText);

        QCOMPARE(qrx::jsonread::readInt(root, "v"), asInt);
        QCOMPARE(qrx::jsonread::readDouble(root, "v"), asReal);
        QCOMPARE(qrx::jsonread::readBool(root, "v"), asBool);
        QCOMPARE(QByteArray::fromStdString(qrx::jsonread::readString(root, "v")), asText);
    }

    void globalNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("valid");
        QTest::newRow("bool") << "GB001" << int(qrx::GlobalVarName::Bool) << 1 << true;
        QTest::newRow("int") << "GI012" << int(qrx::GlobalVarName::Int) << 12 << true;
        QTest::newRow("real") << "GD999" << int(qrx::GlobalVarName::Real) << 999 << true;
        QTest::newRow("other type") << "GP005" << int(qrx::GlobalVarName::Other) << 5 << true;
        QTest::newRow("no digits") << "GIabc" << int(qrx::GlobalVarName::Int) << 0 << false;
        QTest::newRow("short") << "GI" << int(qrx::GlobalVarName::Int) << 0 << false;
        QTest::newRow("empty") << "" << int(qrx::GlobalVarName::Other) << 0 << false;
    }

    void globalNames()
    {
        QFETCH(QString, name);
        QFETCH(int, type);
        QFETCH(int, index);
        QFETCH(bool, valid);
        const qrx::GlobalVarName parsed = qrx::GlobalVarName::parse(name);
        QCOMPARE(int(parsed.type), type);
        QCOMPARE(parsed.index, index);
        QCOMPARE(parsed.indexValid, valid);
    }
};

QTEST_GUILESS_MAIN(tst_JsonRead)
#include "tst_jsonread.moc"
