// Instructions to and from their JSON objects: every type code, defaults,
// the flat-key fallback, positions and their owners, conditions.

#include "JobTestSupport.h"
#include "job/Instructions.h"

#include <QtTest>
#include <set>

using namespace qrx;
using jobtest::json;
using jobtest::text;

Q_DECLARE_METATYPE(std::string)

namespace {

const char *kPosition = R"({"key":"P0007","ctype":3,"noFile":true,
    "data":[1.5,2.5,3.5,4.5,5.5,6.5,7.5,8.5,9.5,10.5,11.5,12.5,13.5,14.5,15.5,16.5,17.5,18.5,19.5,20.5,21.5],
    "paraVarData":[null,null,{"value":1,"data":3.5,"varname":"D001","secondvalue":4},null,null,
                   {"value":2,"data":6.5,"varname":"GD002","secondvalue":0}]})";

const char *kCondition = R"({
    "conditionGroup":[[{"keyType":1,"key":"IN1","inNumLeft":2,"inNumRight":3,"logicType":1,"desType":1,
                        "desValue":"5","paramType":4,"paramName":"PN","soueceType":5,"soueceName":"SN"},
                       {"keyType":2,"key":"I001","inNumLeft":0,"inNumRight":1,"logicType":3,"desType":0,
                        "desValue":"7","paramType":0,"paramName":"","soueceType":0,"soueceName":""}],
                      [{"keyType":0,"key":"D002","inNumLeft":0,"inNumRight":0,"logicType":2,"desType":0,
                        "desValue":"2.5","paramType":0,"paramName":"","soueceType":0,"soueceName":""}]],
    "logicGroup":[[1],[]],
    "logic":[0]})";

// Every member of the default JSON object of an instruction changed to a
// value that differs from its default, so that a key that is not read or
// not written shows in the round trip.
Json::Value varied(const Json::Value &defaults)
{
    Json::Value out(Json::objectValue);
    int n = 0;
    for (const std::string &key : defaults.getMemberNames()) {
        const Json::Value &value = defaults[key];
        ++n;
        if (key == "type") {
            out[key] = value;
        } else if (key == "RobotPos") {
            const int type = defaults["type"].asInt();
            out[key] = type == 54 || type == 55 ? Json::Value() : json(kPosition);
        } else if (value.isObject() && value.isMember("conditionGroup")) {
            out[key] = json(kCondition);
        } else if (value.isObject()) { // a parameter object
            Json::Value para(Json::objectValue);
            para["value"] = 1;
            para["data"] = 2.5 + n;
            para["varname"] = "V" + key;
            if (value.isMember("m_vUnit"))
                para["m_vUnit"] = 2;
            out[key] = para;
        } else if (value.isBool()) {
            out[key] = true;
        } else if (value.type() == Json::realValue) {
            out[key] = 0.25 + n;
        } else if (value.type() == Json::intValue) {
            out[key] = 3 + n;
        } else if (value.isString()) {
            out[key] = "s_" + key;
        } else if (value.isNull()) { // carried unchanged
            out[key] = json(R"([1,"x",{"k":2}])");
        } else {
            out[key] = value;
        }
    }
    return out;
}

QList<int> creatableTypes()
{
    QList<int> types;
    for (int type = 1; type <= 219; ++type) {
        if (newCommand(type))
            types << type;
    }
    return types;
}

} // namespace

class TestJobJson : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void roundTrip_data();
    void roundTrip();
    void defaultsRoundTrip_data() { roundTrip_data(); }
    void defaultsRoundTrip();
    void createsNothing_data();
    void createsNothing();
    void familyKeys_data();
    void familyKeys();
    void partialObjectGivesDefaults();
    void flatKeyFallback_data();
    void flatKeyFallback();
    void objectKeyWinsOverFlatKey();
    void positionsSharedThroughTable();
    void positionOwnedWithNoFile();
    void positionNeedsTableWithoutNoFile();
    void circleExtensionCarriesNoPosition_data();
    void circleExtensionCarriesNoPosition();
    void positionOfEachFamily_data();
    void positionOfEachFamily();
    void positionJsonOfMove();
    void twentyOneData_data();
    void twentyOneData();
    void variableCoordinatesSparse();
    void conditionLayout();
    void conditionWithShortLogicArrays();
    void disabledKeepsAllKeys();
    void malformedValuesReadAsDefaults_data();
    void malformedValuesReadAsDefaults();
    void declarations_data();
    void declarations();
    void valueOfAnotherKind_data();
    void valueOfAnotherKind();
};

void TestJobJson::roundTrip_data()
{
    QTest::addColumn<int>("type");
    const QList<int> types = creatableTypes();
    // 219 codes less 0's neighbours that create nothing: 29, 31, 36, 38, 69, 100, 114.
    QCOMPARE(types.size(), 212);
    for (int type : types)
        QTest::addRow("type %d", type) << type;
}

void TestJobJson::roundTrip()
{
    QFETCH(int, type);
    const Json::Value input = varied(newCommand(type)->toJson());
    QCOMPARE(input["type"].asInt(), type);
    QCOMPARE(input["logout"].asBool(), true);

    const std::unique_ptr<Command> command = createCommand(input, nullptr);
    QVERIFY(command);
    QCOMPARE(command->type, type);
    QCOMPARE(command->logout, true);
    QCOMPARE(text(command->toJson()), text(input));

    // And once more through a position table.
    PositionTable table;
    const std::unique_ptr<Command> again = createCommand(command->toJson(), &table);
    QCOMPARE(text(again->toJson()), text(input));
}

void TestJobJson::defaultsRoundTrip()
{
    QFETCH(int, type);
    const std::unique_ptr<Command> built = newCommand(type);
    const Json::Value first = built->toJson();
    const std::unique_ptr<Command> read = createCommand(first, nullptr);
    QVERIFY(read);
    QCOMPARE(text(read->toJson()), text(first));
    QCOMPARE(read->toString(), built->toString());
}

void TestJobJson::createsNothing_data()
{
    QTest::addColumn<QString>("input");
    for (int type : {0, 29, 31, 36, 38, 69, 100, 114, 220, 221, 1000, -1})
        QTest::addRow("type %d", type) << QStringLiteral(R"({"type":%1,"logout":false})").arg(type);
    QTest::newRow("no type") << R"({"jobName":"A"})";
    QTest::newRow("type as text") << R"({"type":"1"})";
    QTest::newRow("array") << "[1,2]";
    QTest::newRow("number") << "15";
}

void TestJobJson::createsNothing()
{
    QFETCH(QString, input);
    const Json::Value value = json(input.toUtf8().constData());
    QVERIFY(!createCommand(value, nullptr));
    PositionTable table;
    QVERIFY(!createCommand(value, &table));
    QCOMPARE(table.size(), std::size_t(0));
}

void TestJobJson::familyKeys_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("keys");
    const QStringList base = {"type", "logout", "userParamInt", "userParamString"};
    QTest::newRow("MoveCommand") << 2 << base + QStringList{
        "velocity", "vUnit", "acc", "dec", "pl", "positionId", "para", "radius", "side", "length", "width",
        "margin", "spin", "imovecoord", "polish", "polishID", "polishAngle", "sync", "time", "ctype",
        "posidtype", "posidname", "ParaACC", "ParaV", "ParaDEC", "ParaPL", "ParaTIME", "ParaSPIN", "ParaSYNC",
        "RobotPos"};
    QTest::newRow("WaitCommand") << 8 << base + QStringList{
        "duration", "desType", "desValue", "paraTime", "waitConditionFinal", "now", "m_filterTime"};
    QTest::newRow("IOCommand") << 22 << base + QStringList{
        "ParaGroup", "group", "groupValue", "groupType", "portId", "portValue", "valueIsVariant", "varName",
        "varType", "rate", "sum", "time", "errorHanding"};
    QTest::newRow("SEARCHCommand") << 153 << base + QStringList{
        "position1Id", "position2Id", "position3Id", "position4Id", "position5Id", "position6Id",
        "positionOutId", "length", "ID", "tableID", "senseType", "pointEffet", "artifactType", "calculType",
        "coordNum", "searchParacoordinate", "velocity", "pl", "acc", "delay", "posidtype", "posidname",
        "ParaACC", "ParaPL", "ParaV", "RobotPos"};
    QTest::newRow("SWICHPAYLOADCommand") << 216 << base + QStringList{"intVar", "stringVar", "posIDType"};
    QTest::newRow("COPYPOSCommand") << 118 << base + QStringList{
        "cpposId", "cppostype", "cpposname", "cpdposId", "cpdpostype", "cpdposname", "cpaxletype", "cpaxles"};
    QTest::newRow("DummyCommand") << 31 << base;
}

void TestJobJson::familyKeys()
{
    QFETCH(int, type);
    QFETCH(QStringList, keys);
    const std::unique_ptr<Command> command = type == 31 ? std::make_unique<DummyCommand>() : newCommand(type);
    QStringList written;
    for (const std::string &key : command->toJson().getMemberNames())
        written << QString::fromStdString(key);
    std::sort(keys.begin(), keys.end());
    QCOMPARE(written, keys); // jsoncpp keeps members in key order
}

void TestJobJson::partialObjectGivesDefaults()
{
    const std::unique_ptr<Command> command = createCommand(json(R"({"type":1,"positionId":"P0001"})"), nullptr);
    auto *move = dynamic_cast<MoveCommand *>(command.get());
    QVERIFY(move);
    QCOMPARE(move->positionId(), std::string("P0001"));
    QCOMPARE(move->logout, false);
    QCOMPARE(move->userParamInt, 0);
    QCOMPARE(move->userParamString, std::string());
    QCOMPARE(move->velocity, 0.0);
    QCOMPARE(move->posidtype, 0);
    QCOMPARE(move->imovecoord, std::string());
    QVERIFY(move->paraV && move->paraAcc && move->paraDec && move->paraPl && move->paraTime && move->paraSpin
            && move->paraSync);
    QCOMPARE(move->paraV->m_vUnit, 1);
    QCOMPARE(move->paraV->value, 0);
    QCOMPARE(move->paraV->data, 0.0);
    QCOMPARE(move->paraPl->varname, std::string());
    QVERIFY(!move->position());

    const std::unique_ptr<Command> wait = createCommand(json(R"({"type":8})"), nullptr);
    auto *waitCommand = dynamic_cast<WaitCommand *>(wait.get());
    QVERIFY(waitCommand);
    QCOMPARE(waitCommand->duration, 0.0);
    QCOMPARE(waitCommand->now, false);
    QVERIFY(waitCommand->waitConditionFinal.groups.empty());
    QVERIFY(waitCommand->waitConditionFinal.logics.empty());
}

void TestJobJson::flatKeyFallback_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("objectKey");
    QTest::addColumn<double>("data");
    QTest::newRow("velocity") << R"({"type":1,"velocity":25})" << "ParaV" << 25.0;
    QTest::newRow("acc") << R"({"type":2,"acc":30.5})" << "ParaACC" << 30.5;
    QTest::newRow("dec") << R"({"type":3,"dec":40})" << "ParaDEC" << 40.0;
    QTest::newRow("pl") << R"({"type":6,"pl":3})" << "ParaPL" << 3.0;
    QTest::newRow("time") << R"({"type":5,"time":12})" << "ParaTIME" << 12.0;
    QTest::newRow("spin") << R"({"type":4,"spin":2})" << "ParaSPIN" << 2.0;
    QTest::newRow("sync") << R"({"type":33,"sync":1})" << "ParaSYNC" << 1.0;
    QTest::newRow("PAL ACC") << R"({"type":74,"ACC":15})" << "ParaACC" << 15.0;
    QTest::newRow("MOVCOMM PL") << R"({"type":101,"PL":4})" << "ParaPL" << 4.0;
    QTest::newRow("SPRAY DEC") << R"({"type":125,"DEC":8})" << "ParaDEC" << 8.0;
    QTest::newRow("PAL velocity") << R"({"type":76,"velocity":12})" << "ParaV" << 12.0;
    QTest::newRow("MOVCOMM time") << R"({"type":101,"time":6})" << "ParaTIME" << 6.0;
    QTest::newRow("SPRAY PL") << R"({"type":125,"PL":2.5})" << "ParaPL" << 2.5;
    QTest::newRow("SEARCH velocity") << R"({"type":152,"velocity":9})" << "ParaV" << 9.0;
    QTest::newRow("CONVEYOR acc") << R"({"type":174,"acc":7})" << "ParaACC" << 7.0;
}

void TestJobJson::flatKeyFallback()
{
    QFETCH(QString, input);
    QFETCH(QString, objectKey);
    QFETCH(double, data);
    const std::unique_ptr<Command> command = createCommand(json(input.toUtf8().constData()), nullptr);
    QVERIFY(command);
    const Json::Value written = command->toJson();
    const Json::Value &object = written[objectKey.toStdString()];
    QVERIFY(object.isObject());
    QCOMPARE(object["data"].asDouble(), data);
    QCOMPARE(object["value"].asInt(), 0);
    QCOMPARE(object["varname"].asString(), std::string());
    if (objectKey == "ParaV")
        QCOMPARE(object["m_vUnit"].asInt(), 1);
}

void TestJobJson::objectKeyWinsOverFlatKey()
{
    const std::unique_ptr<Command> command = createCommand(
        json(R"({"type":1,"velocity":25,"ParaV":{"value":1,"data":7,"varname":"GD001","m_vUnit":2}})"), nullptr);
    auto *move = dynamic_cast<MoveCommand *>(command.get());
    QVERIFY(move);
    QCOMPARE(move->paraV->data, 7.0);
    QCOMPARE(move->paraV->value, 1);
    QCOMPARE(move->paraV->varname, std::string("GD001"));
    QCOMPARE(move->paraV->m_vUnit, 2);
    // Both forms are written: the flat key keeps its own value.
    const Json::Value written = move->toJson();
    QCOMPARE(written["velocity"].asDouble(), 25.0);
    QCOMPARE(written["ParaV"]["data"].asDouble(), 7.0);
}

void TestJobJson::positionsSharedThroughTable()
{
    PositionTable table;
    const auto first = createCommand(
        json(R"({"type":1,"positionId":"P0001","RobotPos":{"key":"P0001","ctype":1,"data":[1,2,3]}})"), &table);
    QCOMPARE(table.size(), std::size_t(1));
    RobotPos *held = table.find("P0001");
    QVERIFY(held);
    QCOMPARE(first->position(), held);
    QCOMPARE(held->data[2], 3.0);
    QCOMPARE(held->ctype, 1);

    // A second instruction naming P0001 shares the table's object; its own
    // copy of the values is not read.
    const auto second = createCommand(
        json(R"({"type":2,"positionId":"P0001","RobotPos":{"key":"P0001","ctype":9,"data":[7,7,7]}})"), &table);
    QCOMPARE(second->position(), held);
    QCOMPARE(table.size(), std::size_t(1));
    QCOMPARE(held->ctype, 1);
    QCOMPARE(second->toJson()["RobotPos"]["noFile"].asBool(), false);

    // Another name adds a position to the table.
    const auto third = createCommand(json(R"({"type":1,"RobotPos":{"key":"P0002","noFile":false}})"), &table);
    QCOMPARE(table.size(), std::size_t(2));
    QCOMPARE(third->position(), table.find("P0002"));
}

void TestJobJson::positionOwnedWithNoFile()
{
    PositionTable table;
    const char *input = R"({"type":1,"RobotPos":{"key":"P0003","noFile":true,"ctype":2,"data":[4,5]}})";
    auto first = createCommand(json(input), &table);
    auto second = createCommand(json(input), &table);
    QCOMPARE(table.size(), std::size_t(0));
    QVERIFY(first->position());
    QVERIFY(second->position());
    QVERIFY(first->position() != second->position());
    QCOMPARE(first->position()->data[1], 5.0);
    QCOMPARE(first->toJson()["RobotPos"]["noFile"].asBool(), true);
    // Without a table the owned position is read all the same.
    auto third = createCommand(json(input), nullptr);
    QVERIFY(third->position());
    QCOMPARE(third->position()->key, std::string("P0003"));
    first.reset(); // frees its own position only
    QCOMPARE(second->position()->ctype, 2);
}

void TestJobJson::positionNeedsTableWithoutNoFile()
{
    const auto command = createCommand(json(R"({"type":1,"RobotPos":{"key":"P0001","data":[1]}})"), nullptr);
    QVERIFY(command);
    QVERIFY(!command->position());
    QVERIFY(command->toJson()["RobotPos"].isNull());
}

void TestJobJson::circleExtensionCarriesNoPosition_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("noFile");
    QTest::newRow("54 table") << 54 << false;
    QTest::newRow("54 noFile") << 54 << true;
    QTest::newRow("55 table") << 55 << false;
    QTest::newRow("55 noFile") << 55 << true;
}

void TestJobJson::circleExtensionCarriesNoPosition()
{
    QFETCH(int, type);
    QFETCH(bool, noFile);
    Json::Value input = json(R"({"RobotPos":{"key":"P0001","data":[1,2]}})");
    input["type"] = type;
    input["RobotPos"]["noFile"] = noFile;
    PositionTable table;
    const auto command = createCommand(input, &table);
    QVERIFY(command);
    QVERIFY(!command->position());
    QCOMPARE(table.size(), std::size_t(0));
}

void TestJobJson::positionOfEachFamily_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("name");
    QTest::newRow("ARC") << R"({"type":70,"positionId":"P1"})" << "P1";
    QTest::newRow("PUNCH") << R"({"type":160,"positionId":"P2"})" << "P2";
    QTest::newRow("NEWPUNCH") << R"({"type":183,"positionId":"P3"})" << "P3";
    QTest::newRow("SEARCH") << R"({"type":152,"position1Id":"P4"})" << "P4";
    QTest::newRow("Vision") << R"({"type":81,"m_positionId":"P5"})" << "P5";
    QTest::newRow("CONYTRACK") << R"({"type":174,"m_positionId":"P6"})" << "P6";
    QTest::newRow("Move") << R"({"type":3,"positionId":"P7"})" << "P7";
}

void TestJobJson::positionOfEachFamily()
{
    QFETCH(QString, input);
    QFETCH(QString, name);
    Json::Value value = json(input.toUtf8().constData());
    value["RobotPos"] = json(R"({"key":"X","noFile":true,"ctype":4})");
    const auto command = createCommand(value, nullptr);
    QVERIFY(command);
    QCOMPARE(QString::fromStdString(command->positionId()), name);
    QVERIFY(command->position());
    QCOMPARE(command->position()->ctype, 4);
    // Families without a position answer with the base operations.
    const auto call = createCommand(json(R"({"type":15,"jobName":"A"})"), nullptr);
    QVERIFY(!call->position());
    QCOMPARE(call->positionId(), std::string());
}

void TestJobJson::positionJsonOfMove()
{
    const auto with = createCommand(json(R"({"type":1,"RobotPos":{"key":"P9","noFile":true}})"), nullptr);
    const Json::Value object = static_cast<MoveCommand *>(with.get())->positionJson();
    QCOMPARE(object.getMemberNames(), std::vector<std::string>{"RobotPos"});
    QCOMPARE(object["RobotPos"]["key"].asString(), std::string("P9"));
    const auto without = newCommand(1);
    QCOMPARE(text(static_cast<MoveCommand *>(without.get())->positionJson()), QString("{}"));
}

void TestJobJson::twentyOneData_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("last");
    QTest::newRow("missing") << "null" << 0.0 << 0.0;
    QTest::newRow("three") << "[1,2,3]" << 1.0 << 0.0;
    QTest::newRow("thirty") << "[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30]"
                            << 1.0 << 21.0;
    QTest::newRow("not numbers") << R"(["a",true,{}])" << 0.0 << 0.0;
    QTest::newRow("not an array") << "5" << 0.0 << 0.0;
}

void TestJobJson::twentyOneData()
{
    QFETCH(QString, data);
    QFETCH(double, first);
    QFETCH(double, last);
    Json::Value input = json(R"({"type":1,"RobotPos":{"key":"P1","noFile":true}})");
    input["RobotPos"]["data"] = json(data.toUtf8().constData());
    const auto command = createCommand(input, nullptr);
    const Json::Value written = command->toJson()["RobotPos"]["data"];
    QVERIFY(written.isArray());
    QCOMPARE(written.size(), 21u);
    QCOMPARE(written[0].asDouble(), first);
    QCOMPARE(written[20].asDouble(), last);
}

void TestJobJson::variableCoordinatesSparse()
{
    RobotPos position;
    position.key = "P0001";
    position.ctype = 1;
    position.data[2] = 3.5;
    position.data[4] = -1.25;
    position.paraVarData[2] = std::make_unique<ParaVarCommand>();
    position.paraVarData[2]->value = 1;
    position.paraVarData[2]->varname = "GD001";
    position.paraVarData[4] = std::make_unique<ParaVarCommand>();
    position.paraVarData[4]->varname = "GD002";
    position.paraVarData[4]->secondvalue = 2;
    // Each variable carries its coordinate's value; indices without one stay
    // empty, and the array ends with the last variable.
    QCOMPARE(text(position.toJson()["paraVarData"]),
             QString(R"([null,null,{"data":3.50,"secondvalue":0,"value":1,"varname":"GD001"},null,)"
                     R"({"data":-1.250,"secondvalue":2,"value":0,"varname":"GD002"}])"));
    QCOMPARE(position.paraVarData[2]->data, 0.0); // writing leaves the object as it is

    RobotPos read;
    read.fromJson(position.toJson());
    QVERIFY(!read.paraVarData[0] && !read.paraVarData[3] && !read.paraVarData[5]);
    QVERIFY(read.paraVarData[2] && read.paraVarData[4]);
    QCOMPARE(read.paraVarData[4]->secondvalue, 2);
    QCOMPARE(read.paraVarData[2]->data, 3.5);
    QCOMPARE(text(read.toJson()), text(position.toJson()));
}

void TestJobJson::conditionLayout()
{
    Json::Value input = json(R"({"type":9})");
    input["ifconditionArrayFINAL"] = json(kCondition);
    const auto command = createCommand(input, nullptr);
    auto *ifCommand = dynamic_cast<IFCommand *>(command.get());
    QVERIFY(ifCommand);
    const CommandConditionFINAL &tree = ifCommand->ifconditionArrayFINAL;
    QCOMPARE(tree.groups.size(), std::size_t(2));
    QCOMPARE(tree.groups[0].conditions.size(), std::size_t(2));
    QCOMPARE(tree.groups[0].logics.size(), std::size_t(1));
    QCOMPARE(tree.groups[0].logics[0].logic, 1);
    QCOMPARE(tree.groups[1].conditions[0].key, std::string("D002"));
    QCOMPARE(tree.groups[0].conditions[0].soueceName, std::string("SN"));
    QCOMPARE(tree.logics.size(), std::size_t(1));
    QCOMPARE(text(command->toJson()["ifconditionArrayFINAL"]), text(json(kCondition)));
}

void TestJobJson::conditionWithShortLogicArrays()
{
    // Logic arrays shorter than the groups: nothing is read beyond them.
    const auto command = createCommand(json(R"({"type":13,"whileconditionArrayFINAL":{
        "conditionGroup":[[{"key":"A"},{"key":"B"}],[{"key":"C"}],"junk"],
        "logicGroup":[[]],"logic":[]}})"), nullptr);
    auto *loop = dynamic_cast<WHILECommand *>(command.get());
    QVERIFY(loop);
    QCOMPARE(loop->whileconditionArrayFINAL.groups.size(), std::size_t(3));
    QVERIFY(loop->whileconditionArrayFINAL.groups[1].logics.empty());
    QVERIFY(loop->whileconditionArrayFINAL.groups[2].conditions.empty());
    QCOMPARE(QString::fromStdString(loop->toString()), QString("WHILE {(A == )(B == )}{(C == )}{}"));
}

void TestJobJson::disabledKeepsAllKeys()
{
    for (int type : {1, 15, 23, 144}) {
        const auto enabled = newCommand(type);
        const auto disabled = newCommand(type);
        disabled->logout = true;
        const Json::Value written = disabled->toJson();
        QCOMPARE(written["logout"].asBool(), true);
        QCOMPARE(written.getMemberNames(), enabled->toJson().getMemberNames());
    }
}

void TestJobJson::malformedValuesReadAsDefaults_data()
{
    QTest::addColumn<QString>("input");
    QTest::newRow("kinds swapped") << R"({"type":1,"velocity":"fast","posidtype":"x","positionId":5,
        "ParaV":7,"RobotPos":[1,2],"logout":"yes","userParamInt":{}})";
    QTest::newRow("position of another kind") << R"({"type":1,"RobotPos":{"key":3,"noFile":true,
        "data":{"a":1},"paraVarData":[1,"x",{"value":"v"}]}})";
    QTest::newRow("condition of another kind") << R"({"type":9,"ifconditionArrayFINAL":[1,2]})";
    QTest::newRow("condition groups of another kind") << R"({"type":8,"waitConditionFinal":
        {"conditionGroup":{"a":1},"logicGroup":5,"logic":"x"}})";
    QTest::newRow("huge numbers") << R"({"type":7,"duration":1e300,"desType":1e20})";
}

void TestJobJson::malformedValuesReadAsDefaults()
{
    QFETCH(QString, input);
    PositionTable table;
    const auto command = createCommand(json(input.toUtf8().constData()), &table);
    QVERIFY(command);
    const Json::Value written = command->toJson();
    QCOMPARE(written["logout"].asBool(), false);
    QCOMPARE(written["userParamInt"].asInt(), 0);
    if (command->type == 1) {
        QCOMPARE(written["velocity"].asDouble(), 0.0);
        QCOMPARE(written["posidtype"].asInt(), 0);
        QCOMPARE(written["ParaV"]["m_vUnit"].asInt(), 1);
    }
    QVERIFY(!command->toString().empty());
}

void TestJobJson::declarations_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("declaration");
    QTest::newRow("INT") << 35 << true;
    QTest::newRow("DOUBLE") << 37 << true;
    QTest::newRow("BOOLEAN") << 39 << true;
    QTest::newRow("SETINT") << 40 << false;
    QTest::newRow("SETBOOL") << 42 << false;
    QTest::newRow("MOVJ") << 1 << false;
    QTest::newRow("ADD") << 44 << false;
}

void TestJobJson::declarations()
{
    QFETCH(int, type);
    QFETCH(bool, declaration);
    QCOMPARE(newCommand(type)->isDeclaration(), declaration);
}

void TestJobJson::valueOfAnotherKind_data()
{
    QTest::addColumn<QString>("input");
    QTest::newRow("array") << R"([1,{"type":1}])";
    QTest::newRow("string") << R"("MOVJ")";
    QTest::newRow("null") << "null";
    QTest::newRow("number") << "3.5";
}

void TestJobJson::valueOfAnotherKind()
{
    // fromJson called directly with something that is not an object: every
    // class reads its defaults and throws nothing.
    QFETCH(QString, input);
    const Json::Value value = json(input.toUtf8().constData());
    PositionTable table;
    for (int type : creatableTypes()) {
        const std::unique_ptr<Command> command = newCommand(type);
        const QString before = text(command->toJson());
        command->fromJson(value, &table);
        QCOMPARE(text(command->toJson()), before);
    }
    QCOMPARE(table.size(), std::size_t(0));
}

QTEST_APPLESS_MAIN(TestJobJson)
#include "tst_jobjson.moc"
