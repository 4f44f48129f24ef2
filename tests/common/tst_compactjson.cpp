// The JSON text the controller reads: reals, key order, strings.

#include "common/CompactJson.h"
#include "common/Payload.h"

#include <QtTest>
#include <cmath>
#include <json/value.h>
#include <limits>

class TestCompactJson : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void reals_data();
    void reals();
    void realsParseBack_data();
    void realsParseBack();
    void integers();
    void keyOrderAndNesting();
    void strings_data();
    void strings();
    void payloadEndsWithOneLineFeed();
    void payloadReadUpToFirstNul();
    void notJson();
    void tooDeepIsNotJson_data();
    void tooDeepIsNotJson();
};

void TestCompactJson::reals_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("1.5") << 1.5 << "1.50";
    QTest::newRow("2") << 2.0 << "2.0";
    QTest::newRow("0.125") << 0.125 << "0.1250";
    QTest::newRow("-0.5") << -0.5 << "-0.50";
    QTest::newRow("zero") << 0.0 << "0.0";
    QTest::newRow("negative zero") << -0.0 << "-0.0";
    QTest::newRow("1e-13 rounds away") << 1e-13 << "0.0";
    QTest::newRow("1e-12 is the last place") << 1e-12 << "0.000000000001";
    QTest::newRow("10") << 10.0 << "10.0";
    QTest::newRow("-100.25") << -100.25 << "-100.250";
    QTest::newRow("123456.789 keeps its binary tail") << 123456.789 << "123456.789000000004";
    QTest::newRow("1e20") << 1e20 << "100000000000000000000.0";
    QTest::newRow("-1e20") << -1e20 << "-100000000000000000000.0";
    QTest::newRow("0.1") << 0.1 << "0.10";
    QTest::newRow("-3.14159") << -3.14159 << "-3.141590";
    QTest::newRow("nan stays printf's") << std::numeric_limits<double>::quiet_NaN() << "nan";
}

void TestCompactJson::reals()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(QString::fromStdString(qrx::formatReal(value)), text);
    QCOMPARE(QString::fromStdString(qrx::compactJson(Json::Value(value))), text);
}

void TestCompactJson::realsParseBack_data()
{
    QTest::addColumn<double>("value");
    for (double v : {0.0, 1.5, -0.5, 123456.789, 1e20, -42.125, 0.333333333333, 359.999})
        QTest::newRow(qPrintable(QString::number(v))) << v;
}

void TestCompactJson::realsParseBack()
{
    QFETCH(double, value);
    Json::Value object(Json::objectValue);
    object["v"] = value;
    Json::Value back;
    QVERIFY(qrx::parsePayload(qrx::jsonPayload(object), back));
    QVERIFY(back["v"].isDouble());
    QVERIFY(std::fabs(back["v"].asDouble() - value) <= 1e-12 * std::max(1.0, std::fabs(value)));
}

void TestCompactJson::integers()
{
    Json::Value v(Json::objectValue);
    v["i"] = -7;
    v["u"] = Json::UInt(4000000000u);
    v["big"] = Json::Int64(-9000000000LL);
    v["t"] = true;
    v["f"] = false;
    v["n"] = Json::Value();
    QCOMPARE(QString::fromStdString(qrx::compactJson(v)),
             QStringLiteral("{\"big\":-9000000000,\"f\":false,\"i\":-7,\"n\":null,\"t\":true,\"u\":4000000000}"));
}

void TestCompactJson::keyOrderAndNesting()
{
    Json::Value inner(Json::objectValue);
    inner["zeta"] = 1;
    inner["Alpha"] = 2; // upper case sorts before lower case
    inner["alpha"] = 3;
    Json::Value array(Json::arrayValue);
    array.append(1);
    array.append(2.5);
    array.append(inner);
    array.append(Json::Value(Json::arrayValue));
    Json::Value outer(Json::objectValue);
    outer["robot"] = 1;
    outer["data"] = array;
    outer["empty"] = Json::Value(Json::objectValue);
    const std::string text = qrx::compactJson(outer);
    QCOMPARE(QString::fromStdString(text),
             QStringLiteral("{\"data\":[1,2.50,{\"Alpha\":2,\"alpha\":3,\"zeta\":1},[]],\"empty\":{},\"robot\":1}"));

    Json::Value back;
    QVERIFY(qrx::parsePayload(QByteArray::fromStdString(text), back));
    QVERIFY(back == outer);
}

void TestCompactJson::strings_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << "abc" << "\"abc\"";
    QTest::newRow("chinese stays raw") << QString::fromUtf8("机器人2") << QString::fromUtf8("\"机器人2\"");
    QTest::newRow("quote and backslash") << "a\"b\\c" << "\"a\\\"b\\\\c\"";
    QTest::newRow("named controls") << "\b\f\n\r\t" << "\"\\b\\f\\n\\r\\t\"";
    QTest::newRow("other controls") << QString(QChar(0x01)) + QChar(0x1F) << "\"\\u0001\\u001f\"";
    QTest::newRow("slash untouched") << "a/b" << "\"a/b\"";
    QTest::newRow("delete untouched") << QString(QChar(0x7F)) << QString("\"") + QChar(0x7F) + "\"";
}

void TestCompactJson::strings()
{
    QFETCH(QString, value);
    QFETCH(QString, text);
    const Json::Value v(value.toStdString());
    const std::string written = qrx::compactJson(v);
    QCOMPARE(QString::fromStdString(written), text);
    Json::Value back;
    QVERIFY(qrx::parsePayload(QByteArray::fromStdString(written), back));
    QCOMPARE(QString::fromStdString(back.asString()), value);
}

void TestCompactJson::payloadEndsWithOneLineFeed()
{
    Json::Value v(Json::objectValue);
    v["time"] = Json::UInt(1700000000u);
    QCOMPARE(qrx::jsonPayload(v), QByteArray("{\"time\":1700000000}\n"));
}

void TestCompactJson::payloadReadUpToFirstNul()
{
    QByteArray payload("{\"robot\":2}\n");
    payload.append('\0');
    payload.append("garbage{");
    Json::Value v;
    QVERIFY(qrx::parsePayload(payload, v));
    QCOMPARE(v["robot"].asInt(), 2);
}

void TestCompactJson::notJson()
{
    Json::Value v;
    QVERIFY(!qrx::parsePayload("{\"robot\":", v));
    QVERIFY(v.isNull());
    QVERIFY(!qrx::parsePayload(QByteArray(), v));
    QVERIFY(!qrx::parsePayload("{\"robot\":1,}\n", v));
    QVERIFY(v.isNull());
    QVERIFY(!qrx::parsePayload("[1,2,]\n", v));
}

// jsoncpp gives up on nesting deeper than its stack limit by throwing; a
// controller payload like that is malformed and must read as not JSON, since
// the link thread parses it.
void TestCompactJson::tooDeepIsNotJson_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("5000 open brackets") << QByteArray(5000, '[');
    QTest::newRow("2000 closed brackets") << QByteArray(2000, '[') + QByteArray(2000, ']') + "\n";
    QByteArray objects;
    for (int i = 0; i < 1500; ++i)
        objects += "{\"a\":";
    QTest::newRow("1500 nested objects") << objects + "1" + QByteArray(1500, '}') + "\n";
    QTest::newRow("deep inside a valid member")
        << QByteArray("{\"robot\":1,\"x\":") + QByteArray(60000, '[') + QByteArray(60000, ']') + "}\n";
}

void TestCompactJson::tooDeepIsNotJson()
{
    QFETCH(QByteArray, payload);
    Json::Value v(42);
    bool parsed = true;
    try {
        parsed = qrx::parsePayload(payload, v);
    } catch (const std::exception &e) {
        QFAIL(qPrintable(QStringLiteral("parsePayload threw: %1").arg(QString::fromLocal8Bit(e.what()))));
    }
    QVERIFY(!parsed);
    QVERIFY(v.isNull());
}

QTEST_APPLESS_MAIN(TestCompactJson)
#include "tst_compactjson.moc"
