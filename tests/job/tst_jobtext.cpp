// The job-file line of every instruction: keywords, labels, fields in their
// order, numbers in the stream's default form, " DISABLE" last.

#include "JobTestSupport.h"
#include "job/Instructions.h"

#include <QtTest>

using namespace qrx;
using jobtest::json;

namespace {

// IN1 == 1 AND IN2 <> 0, one group.
#define COND1 R"({"conditionGroup":[[{"key":"IN1","logicType":0,"desValue":"1"},{"key":"IN2","logicType":1,"desValue":"0"}]],"logicGroup":[[0]],"logic":[]})"
// Two groups joined by OR; the right operand of the second is a parameter.
#define COND2 R"({"conditionGroup":[[{"key":"I001","logicType":2,"desValue":"5"}],[{"key":"D001","logicType":5,"desType":2,"paramName":"D002","desValue":"x"}]],"logicGroup":[[],[]],"logic":[1]})"
// Every operator and joiner.
#define COND3 R"({"conditionGroup":[[{"key":"A","logicType":3,"desValue":"1"},{"key":"B","logicType":4,"desType":3,"soueceName":"S1"},{"key":"C","logicType":9,"desValue":"2"}]],"logicGroup":[[2,7]],"logic":[]})"

} // namespace

class TestJobText : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void lines_data();
    void lines();
    void unknownSubtypes_data();
    void unknownSubtypes();
    void plainBlendingWithoutParameterObject();
    void parameterTexts_data();
    void parameterTexts();
    void extmovBlockText();
    void disableEndsEveryLine_data();
    void disableEndsEveryLine();
};

void TestJobText::lines_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("line");
    auto row = [](const char *name, const char *input, const char *line) {
        QTest::newRow(name) << QString::fromUtf8(input) << QString::fromUtf8(line);
    };

    // Motion family.
    row("MOVJ VJ = 50 %", R"({"type":1,"positionId":"P0001","ParaV":{"data":50,"m_vUnit":2}})",
        "MOVJ P0001 VJ = 50 % PL = 0 ACC = 0 DEC = 0 0");
    row("MOVL with tails", R"({"type":2,"positionId":"P0002","ParaV":{"data":100,"m_vUnit":1},
        "ParaPL":{"data":3},"ParaACC":{"data":80},"ParaDEC":{"data":70},"ParaTIME":{"data":1.5}})",
        "MOVL P0002 V = 100 mm/s PL = 3 ACC = 80 DEC = 70 1.5");
    row("speed variable without unit", R"({"type":2,"positionId":"P1","ParaV":{"value":1,"varname":"GD001","m_vUnit":1}})",
        "MOVL P1 V = GD001 PL = 0 ACC = 0 DEC = 0 0");
    row("speed in cm/s writes nothing", R"({"type":3,"positionId":"P3","ParaV":{"data":30,"m_vUnit":0}})",
        "MOVC P3 PL = 0 ACC = 0 DEC = 0 0");
    row("parameter variables", R"({"type":2,"positionId":"P1","ParaV":{"data":10,"m_vUnit":1},
        "ParaPL":{"value":1,"varname":"I001"},"ParaACC":{"value":2,"varname":"I002"},
        "ParaDEC":{"value":1,"varname":"I003"},"ParaTIME":{"value":1,"varname":"D004"}})",
        "MOVL P1 V = 10 mm/s PL = I001 ACC = I002 DEC = I003 D004");
    row("MOVCA spin", R"({"type":4,"positionId":"P4","ParaV":{"data":20,"m_vUnit":1},"ParaSPIN":{"data":1}})",
        "MOVCA P4 V = 20 mm/s PL = 0 ACC = 0 DEC = 0 SPIN = 1 0");
    row("IMOV coordinate", R"({"type":5,"positionId":"P5","imovecoord":"USER","ParaV":{"data":10,"m_vUnit":1}})",
        "IMOV P5 V = 10 mm/sUSER PL = 0 ACC = 0 DEC = 0 0");
    row("IMOV coordinate after a speed in cm/s", R"({"type":5,"positionId":"P5","imovecoord":" TOOL","ParaV":{"data":10,"m_vUnit":0}})",
        "IMOV P5 TOOL PL = 0 ACC = 0 DEC = 0 0");
    row("MOVS", R"({"type":6,"positionId":"P6","ParaV":{"data":10,"m_vUnit":1}})",
        "MOVS P6 V = 10 mm/s PL = 0 ACC = 0 DEC = 0 0");
    row("CIL ID", R"({"type":28,"positionId":"P7","para":3,"ParaV":{"data":5,"m_vUnit":1}})",
        "CIL P7 V = 5 mm/s PL = 0 ACC = 0 DEC = 0 ID = 3 0");
    row("MOVJEXT", R"({"type":32,"positionId":"P8","ParaV":{"data":10,"m_vUnit":2}})",
        "MOVJEXT P8 VJ = 10 % PL = 0 ACC = 0 DEC = 0 0");
    row("MOVLEXT sync", R"({"type":33,"positionId":"P9","ParaV":{"data":10,"m_vUnit":1},"ParaSYNC":{"data":1}})",
        "MOVLEXT P9 V = 10 mm/s PL = 0 ACC = 0 DEC = 0 SYNC = 1 0");
    row("MOVCEXT sync variable", R"({"type":34,"positionId":"P9","ParaV":{"data":10,"m_vUnit":1},
        "ParaSYNC":{"value":1,"varname":"I001"}})",
        "MOVCEXT P9 V = 10 mm/s PL = 0 ACC = 0 DEC = 0 SYNC = I001 0");
    row("CILEXT_BEGIN", R"({"type":54,"positionId":"P10","para":2,"ParaV":{"data":5,"m_vUnit":1},
        "ParaACC":{"data":1},"ParaDEC":{"data":2},"ParaPL":{"data":9},"ParaTIME":{"data":9}})",
        "CILEXT_BEGIN P10 V = 5 mm/s ACC = 1 DEC = 2 ID = 2");
    row("CILEXT_MOVE", R"({"type":55,"positionId":"P11","para":2,"ParaV":{"data":5,"m_vUnit":1}})",
        "CILEXT_MOVE P11 V = 5 mm/s ACC = 0 DEC = 0");
    row("MOVJDOUBLE", R"({"type":56,"positionId":"P1","ParaV":{"data":5,"m_vUnit":2}})",
        "MOVJDOUBLE P1 VJ = 5 % PL = 0 ACC = 0 DEC = 0 0");
    row("MOVLDOUBLE", R"({"type":57,"positionId":"P1","ParaV":{"data":5,"m_vUnit":1}})",
        "MOVLDOUBLE P1 V = 5 mm/s PL = 0 ACC = 0 DEC = 0 0");
    row("MOVCDOUBLE", R"({"type":58,"positionId":"P1","ParaV":{"data":5,"m_vUnit":1}})",
        "MOVCDOUBLE P1 V = 5 mm/s PL = 0 ACC = 0 DEC = 0 0");
    row("MOVCADOUBLE spin", R"({"type":59,"positionId":"P1","ParaV":{"data":5,"m_vUnit":1},"ParaSPIN":{"value":1,"varname":"I009"}})",
        "MOVCADOUBLE P1 V = 5 mm/s PL = 0 ACC = 0 DEC = 0 SPIN = I009 0");
    row("SAMOV", R"({"type":60,"positionId":"P1","ParaV":{"data":5,"m_vUnit":1}})",
        "SAMOV P1 V = 5 mm/s PL = 0 ACC = 0 DEC = 0 0");
    row("LASER_CIRCLE", R"({"type":63,"positionId":"P12","radius":2.5,"margin":1,"ParaV":{"data":20,"m_vUnit":1},
        "ParaTIME":{"data":3}})",
        "LASER_CIRCLE P12 R = 2.5 V = 20 mm/s ACC = 0 DEC = 0 M = 1 3");
    row("LASER_RECTANGLE", R"({"type":64,"positionId":"P13","length":10,"width":5,"ParaV":{"data":20,"m_vUnit":1}})",
        "LASER_RECTANGLE P13 LENGTH = 10 WIDTH = 5 V = 20 mm/s ACC = 0 DEC = 0");
    row("LASER_MIDDLEHOLE", R"({"type":65,"positionId":"P14","length":8,"width":0.25,"ParaV":{"data":20,"m_vUnit":1}})",
        "LASER_MIDDLEHOLE P14 LENGTH = 8 WIDTH = 0.25 V = 20 mm/s ACC = 0 DEC = 0");
    row("LASER_HEX", R"({"type":66,"positionId":"P15","side":4,"ParaV":{"data":20,"m_vUnit":1}})",
        "LASER_HEX P15 SIDE = 4 V = 20 mm/s ACC = 0 DEC = 0");
    row("POLISH_EDGE", R"({"type":109,"positionId":"P16","polish":2,"polishID":3,"polishAngle":45.5,
        "ParaV":{"data":20,"m_vUnit":1}})",
        "POLISH_EDGE P16 V = 20 mm/s PL = 0 ACC = 0 DEC = 0 T = 2 ID = 3 ANGLE = 45.5 0");
    row("target through a variable", R"({"type":1,"posidtype":1,"posidname":"GP001","positionId":"P1",
        "ParaV":{"data":50,"m_vUnit":2}})", "MOVJ GP001 VJ = 50 % PL = 0 ACC = 0 DEC = 0 0");
    row("unknown target kind", R"({"type":1,"posidtype":2,"positionId":"P1","ParaV":{"data":50,"m_vUnit":2}})",
        "/// PL = 0 ACC = 0 DEC = 0 0");
    row("DISABLE last", R"({"type":1,"logout":true,"positionId":"P0001","ParaV":{"data":50,"m_vUnit":2}})",
        "MOVJ P0001 VJ = 50 % PL = 0 ACC = 0 DEC = 0 0 DISABLE");
    row("six significant digits", R"({"type":2,"positionId":"P1","ParaV":{"data":1234567,"m_vUnit":1},
        "ParaPL":{"data":0.1},"ParaACC":{"data":123456789},"ParaDEC":{"data":-0.5},"ParaTIME":{"data":3.14159265}})",
        "MOVL P1 V = 1.23457e+06 mm/s PL = 0.1 ACC = 1.23457e+08 DEC = -0.5 3.14159");

    // Program flow.
    row("TIMER", R"({"type":7,"duration":2.5})", "TIMER T = 2.5");
    row("TIMER variable", R"({"type":7,"desType":1,"desValue":"D001","duration":4})", "TIMER T = D001");
    row("WAIT", R"({"type":8,"waitConditionFinal":)" COND1 R"(,"duration":3,"m_filterTime":0.5,"now":true})",
        "WAIT {(IN1 == 1) AND (IN2 <> 0)}  T = 3  F = 0.5 NOW = 1");
    row("IF", R"({"type":9,"ifconditionArrayFINAL":)" COND1 "}", "IF {(IN1 == 1) AND (IN2 <> 0)}");
    row("ELSE", R"({"type":10})", "ELSE");
    row("ELSEIF", R"({"type":11,"ifconditionArrayFINAL":)" COND2 "}", "ELSEIF {(I001 > 5)} OR {(D001 <= D002)}");
    row("ENDIF", R"({"type":12})", "ENDIF");
    row("WHILE", R"({"type":13,"whileconditionArrayFINAL":)" COND3 "}",
        "WHILE {(A >= 1) NOT (B < S1)(C  2)}");
    row("ENDWHILE", R"({"type":14})", "ENDWHILE");
    row("UNTIL", R"({"type":87,"untilconditionArrayFINAL":)" COND1 "}", "UNTIL {(IN1 == 1) AND (IN2 <> 0)}");
    row("ENDUNTIL", R"({"type":88})", "ENDUNTIL");
    row("JUMP", R"({"type":52,"label":"L1","jumpCondition":)" COND1 "}", "JUMP L1");
    row("JUMP WHEN", R"({"type":52,"label":"L1","jumpConditionFlag":true,"jumpCondition":)" COND1 "}",
        "JUMP L1  WHEN {(IN1 == 1) AND (IN2 <> 0)}");
    row("LABEL", R"({"type":53,"label":"L1"})", "LABEL L1");
    row("CALL", R"({"type":15,"jobName":"SUB1","lineNoToCall":3})", "CALL [$SUB1$]");
    row("CALL_LUAFILE", R"({"type":215,"luafileName":"a.lua"})", "CALL_LUAFILE [$a.lua$]");
    row("PTHREAD_START", R"({"type":90,"jobName":"T1"})", "PTHREAD_START [$T1$] LOCAL");
    row("PTHREAD_END", R"({"type":91,"jobName":"T1","localOrGlobal":1})", "PTHREAD_END [$T1$] GLOBAL");
    row("PTHREAD_STATE", R"({"type":209,"jobName":"T1","m_VariableValue":"I001"})", "PTHREAD_STATE [$T1$] LOCAL I001");
    row("PTHREAD_STATE global", R"({"type":209,"jobName":"T2","localOrGlobal":1,"m_VariableValue":"I001"})",
        "PTHREAD_STATE [$T2$] GLOBAL I001");
    row("PTHREAD_STATE main", R"({"type":209,"m_VariableValue":"I002"})", "PTHREAD_STATE  MainProgram I002");
    row("STOPRUN", R"({"type":111})", "STOPRUN");
    row("RESTARTRUN", R"({"type":112})", "RESTARTRUN");
    row("PAUSERUN", R"({"type":113,"jobname":"JOB2"})", "PAUSERUN JOB2");
    row("PAUSERUN ALL", R"({"type":113,"programtype":1})", "PAUSERUN ALL");
    row("PAUSERUN MAIN", R"({"type":113,"programtype":2})", "PAUSERUN MAIN");
    row("CONTINUERUN", R"({"type":119,"jobname":"JOB2"})", "CONTINUERUN JOB2");
    row("CONTINUERUN MAIN", R"({"type":119,"programtype":2})", "CONTINUERUN MAIN");
    row("SPEED", R"({"type":30,"D_speed":50,"sUnit":2})", "SPEED = 50 %");
    row("CRAFTLINE", R"({"type":89,"line":3})", "CRAFTLINE 3");
    row("note", R"({"type":127,"note":"open the gate"})", "#open the gate");
    row("USERDEFINE", R"({"type":171,"id":4})", "USERDEFINE ID = 4");
    row("WINDOW", R"({"type":208,"text1":"Go?","variable":"I001","count":2,"text2":"Yes","value1":1,
        "text3":"No","value2":0,"text4":"unused","value3":9})", "WINDOW [$Go?$] I001 2 [$Yes$] 1 [$No$] 0");
    row("PRINTMSG 0", R"({"type":120,"printChar":"hello"})", "PRINTMSG 0 hello");
    row("PRINTMSG 1", R"({"type":120,"printType":1,"printChar":"S001"})", "PRINTMSG 1 S001");
    row("PRINTMSG 2", R"({"type":120,"printType":2,"printChar":"x"})", "PRINTMSG 2 x");

    // IO, variables, messages.
    row("DOUT", R"({"type":16,"portId":3,"portValue":1})", "DOUT 3 1");
    row("DOUT group", R"({"type":16,"group":1,"portId":2,"groupValue":5,"portValue":1})", "DOUT (2) 5");
    row("DOUT variable", R"({"type":16,"portId":4,"valueIsVariant":true,"varName":"B001"})", "DOUT 4 B001");
    row("DIN", R"({"type":17,"varName":"B002","portId":5})", "DIN B002 5");
    row("READ_DOUT", R"({"type":99,"varName":"B003","portId":6})", "READ_DOUT B003 6");
    row("AIN", R"({"type":20,"varName":"D001","portId":1})", "AIN D001 AIN1");
    row("AOUT", R"({"type":21,"portId":2,"portValue":5})", "AOUT AOUT2 5");
    row("PULSEOUT", R"({"type":22,"rate":0.5,"sum":10,"time":2,"portId":7})", "PULSEOUT RATE = 0.5 SUM = 10 T = 2 7");
    row("AITOON", R"({"type":18,"ain":1,"aout":2,"para1":0.5,"para2":1,"para3":2})", "AITOON AIN1 AOUT2 0.5 1 2");
    row("AITOOFF", R"({"type":19,"ain":1})", "AITOOFF");
    row("INT", R"({"type":35,"key":"I001","strValue":"5","intValue":5})", "INT I001 = 5");
    row("DOUBLE", R"({"type":37,"key":"D001","strValue":"2.5"})", "DOUBLE D001 = 2.5");
    row("BOOLEAN", R"({"type":39,"key":"B001","strValue":"1"})", "BOOLEAN B001 = 1");
    row("SETINT", R"({"type":40,"key":"I001","strValue":"I002"})", "SETINT I001 = I002");
    row("SETDOUBLE", R"({"type":41,"key":"D001","strValue":"0.5"})", "SETDOUBLE D001 = 0.5");
    row("SETBOOL", R"({"type":42,"key":"B001","strValue":"0"})", "SETBOOL B001 = 0");
    row("FORCESET", R"({"type":43,"gVarName":"GI001"})", "FORCESET GI001");
    row("ADD", R"({"type":44,"key":"I001","desValue":"5"})", "ADD I001 5");
    row("SUB", R"({"type":45,"key":"I001","desValue":"I002"})", "SUB I001 I002");
    row("MUL", R"({"type":46,"key":"D001","desValue":"2"})", "MUL D001 2");
    row("DIV", R"({"type":47,"key":"D001","desValue":"4"})", "DIV D001 4");
    row("MOD", R"({"type":48,"key":"I001","desValue":"3"})", "MOD I001 3");
    row("SIN", R"({"type":102,"key":"D001","desValue":"D002"})", "SIN D001 D002");
    row("COS", R"({"type":103,"key":"D001","desValue":"30"})", "COS D001 30");
    row("ATAN", R"({"type":104,"key":"D001","desValue":"D003"})", "ATAN D001 D003");
    row("LOGICAL_OP AND", R"({"type":121,"answerName":"B001","firstName":"B002","secondName":"B003"})",
        "LOGICAL_OP B001 B002 AND B003");
    row("LOGICAL_OP OR", R"({"type":121,"answerName":"B001","firstName":"B002","secondName":"B003","logicalType":1})",
        "LOGICAL_OP B001 B002 OR B003");
    row("LOGICAL_OP NOT", R"({"type":121,"answerName":"B001","firstName":"B002","logicalType":2})",
        "LOGICAL_OP B001 NOT B002");
    row("MODBUS_OPEN", R"({"type":210,"ID":1})", "MODBUS_OPEN");
    row("MODBUS_CLOSE", R"({"type":211,"ID":1})", "MODBUS_CLOSE");
    row("MODBUS_CONNECTION_STATUS", R"({"type":212,"ID":1})", "MODBUS_CONNECTION_STATUS ID = 1");
    row("MODBUS_READ", R"({"type":213,"ID":1,"m_addressType":3,"m_firstAddress":100,"m_variableValue":"I001"})",
        "MODBUS_READ ID = 1 3 100 I001");
    row("MODBUS_WRITE", R"({"type":214,"ID":1,"m_addressType":3,"m_firstAddress":100,"m_addressNum":2,
        "m_variableValue":"I001"})", "MODBUS_WRITE ID = 1 3 100 2 I001");
    row("SENDMSG", R"({"type":94,"ID":1,"sendChar":"hello"})", "SENDMSG ID = 1 hello");
    row("MSG_CONN_ST", R"({"type":95,"ID":2,"m_valueName":"B001"})", "MSG_CONN_ST 2 B001");
    row("PARSEMSG", R"({"type":96,"ID":1,"explainValue":"S001","clearCache":true})", "PARSEMSG ID = 1 S001 CLEARCACHE = 1");
    row("OPENMSG", R"({"type":115,"ID":2})", "OPENMSG ID = 2");
    row("CLOSEMSG", R"({"type":116,"ID":2})", "CLOSEMSG ID = 2");
    row("READCOMM EHTERNET", R"({"type":110,"ID":1,"m_varname":"I001","positionId":"P0001"})",
        "READCOMM ID = 1 EHTERNET I001 P0001");
    row("READCOMM MODBUS", R"({"type":110,"ID":1,"commType":1,"m_varname":"I001","positionId":"P0001"})",
        "READCOMM ID = 1 MODBUS I001 P0001");
    row("CLKSTART", R"({"type":128,"ID":1})", "CLKSTART ID = 1");
    row("CLKSTOP", R"({"type":129,"ID":1,"m_varname":"D001"})", "CLKSTOP ID = 1 D001");
    row("CLKRESET", R"({"type":130,"ID":1})", "CLKRESET ID = 1");

    // Welding and processes.
    row("ARCON", R"({"type":23,"arcParameterId":2,"useTemp":true})", "ARCON ID=2 TEMP=1");
    row("ARCOFF", R"({"type":24,"arcParameterId":2})", "ARCOFF ID=2 TEMP=0");
    row("ARCSET", R"({"type":25,"voltage":18.5,"current":120,"arcsetTime_ms":300})", "ARCSET V= 18.5 A= 120 T = 300");
    row("WVON", R"({"type":26,"arcParameterId":3})", "WVON #3");
    row("WVOFF", R"({"type":27,"arcParameterId":3})", "WVOFF 3");
    row("REFP", R"({"type":70,"refpPointNum":1,"positionId":"P0001"})", "REFP 1 P0001");
    row("FEEDWIRE", R"({"type":176,"feedtime":0.5})", "FEEDWIRE T = 0.5");
    row("SPOTWELD", R"({"type":177,"arcParameterId":4})", "SPOTWELD ID = 4");
    row("TIGWELDON lengths", R"({"type":67,"l1":1.5,"l2":2})", "TIGWELDON L1 = 1.5 L2 = 2");
    row("TIGWELDON time", R"({"type":67,"typeOFTIG":1,"timeOFTIG":3})", "TIGWELDON T = 3");
    row("TIGWELDOFF", R"({"type":68})", "TIGWELDOFF");
    row("LASER_ON", R"({"type":61,"ID":1})", "LASER_ON ID = 1");
    row("LASER_OFF", R"({"type":62,"ID":1})", "LASER_OFF");
    row("ARCTRACKON", R"({"type":158,"ID":1})", "ARCTRACKON ID = 1");
    row("ARCVTRACKON", R"({"type":158,"ID":1,"isArcTracking":1})", "ARCVTRACKON ID = 1");
    row("ARCTRACKOFF", R"({"type":159,"ID":1})", "ARCTRACKOFF ID = 1");
    row("ARCBUILTIN", R"({"type":170,"ID":2,"Value":0.75})", "ARCBUILTIN ID = 2 0.75");
    row("LASERTRACK_ON", R"({"type":85,"ID":1})", "LASERTRACK_ON ID = 1");
    row("LASERTRACK_OFF", R"({"type":86,"ID":1})", "LASERTRACK_OFF ID = 1");
    row("SEARCH_INITIALIZE", R"({"type":134,"m_searchNetID":1,"m_searchProID":2,"m_searchCorrect":3})",
        "SEARCH_INITIALIZE ID = 1 PRO = 2 CORR = 3");
    row("SEARCH_MEASURE", R"({"type":135,"m_searchNetID":1,"m_searchFeaturePA":4,"m_searchWorkPieNum":5,"m_searchtaskNum":6})",
        "SEARCH_MEASURE ID = 1 POINT = 4 PART = 5 TASK = 6");
    row("SEARCH_CORR", R"({"type":136,"m_searchNetID":1,"m_searchFeaturePA":4,"m_searchFeaturePB":5,"m_searchFeaturePC":6})",
        "SEARCH_CORR ID = 1 POINTA = 4 POINTB = 5 POINTC = 6");
    row("SEARCH_CANCELCORR", R"({"type":137,"m_searchNetID":1,"m_searchUserCoord":2})", "SEARCH_CANCELCORR ID = 1 USER = 2");
    row("SEARCH_CALBR", R"({"type":138,"m_searchNetID":1,"m_searchToolCoord":3})", "SEARCH_CALBR ID = 1 TOOL = 3");
    row("SEARCH_OFF", R"({"type":139,"m_searchNetID":1})", "SEARCH_OFF ID = 1");
    row("SEARCH_START", R"({"type":151,"ID":1})", "SEARCH_START ID = 1");
    row("SEARCH_STATIC", R"({"type":152,"ID":1,"position1Id":"P1","ParaV":{"data":10,"m_vUnit":1},"ParaACC":{"data":50}})",
        "SEARCH_STATIC ID = 1 P1 V = 10 mm/s PL = 0 ACC = 50");
    row("SEARCH_DYNAMIC", R"({"type":153,"ID":2,"position1Id":"P2","senseType":1,"ParaV":{"data":5,"m_vUnit":1}})",
        "SEARCH_DYNAMIC P2 TYPE = 1 ID = 2 V = 5 mm/s PL = 0 ACC = 0");
    row("SEARCH_OFFSET", R"({"type":154,"positionOutId":"P9"})", "SEARCH_OFFSET P9");
    row("SEARCH_OFFSETEND", R"({"type":155})", "SEARCH_OFFSETEND");
    row("SEARCH_CALC", R"({"type":156,"artifactType":2,"positionOutId":"P9"})", "SEARCH_CALC PART = 2 P9");
    row("SEARCH_END", R"({"type":157,"ID":1})", "SEARCH_END ID = 1");
    row("WELDPATHSTART", R"({"type":178})", "WELDPATHSTART");
    row("WELDPATHSTOP", R"({"type":179})", "WELDPATHSTOP");
    row("WELDPATHCOUNT", R"({"type":180,"varName":"I001"})", "WELDPATHCOUNT I001");
    row("WELDPATHOFFSET", R"({"type":181,"initialPath":1,"targetPath":2,"xOffset":0.5,"yOffset":1,"zOffset":-2,
        "aOffset":0,"bOffset":0,"cOffset":90})", "WELDPATHOFFSET WELDPATH1 WELDPATH2 0.5 1 -2 0 0 90");
    row("STARTOFFSETWELD", R"({"type":182})", "STARTOFFSETWELD");
    row("SCREW TIGHT", R"({"type":143,"screwID":1,"varName":"I001","maxSpinTime":5})", "SCREW ID = 1 TIGHT I001 5");
    row("SCREW UNSCREW", R"({"type":143,"screwID":1,"screwType":1,"varName":"I001","maxSpinTime":5})",
        "SCREW ID = 1 UNSCREW I001 5");
    row("SCREW FREE", R"({"type":143,"screwID":1,"screwType":2,"varName":"I001","maxSpinTime":5})",
        "SCREW ID = 1 FREE I001 5");
    row("POLISH_CONTINUE", R"({"type":131,"polishID":1,"times":3,"angle":30,"time":2.5})",
        "POLISH_CONTINUE ID = 1 TIMES = 3 ANGLE = 30 2.5");
    row("POLISH_OFF", R"({"type":132,"polishID":1})", "POLISH_OFF ID = 1");

    // Handling.
    row("PALON", R"({"type":71,"ID":1,"MULTIPAL":2})", "PALON ID = 1 MULTI = 2");
    row("PALOFF", R"({"type":72,"ID":1})", "PALOFF 1");
    row("PALLET", R"({"type":73,"ID":1,"STACKTYPE":2,"NUM":10})", "PALLET 1 TYPE = 2 NUM = 10");
    row("PALENTER MovJ", R"({"type":74,"ID":1,"ParaV":{"data":30,"m_vUnit":2}})", "PALENTER 1 MovJ  VJ = 30 % PL = 0 ACC = 0 DEC = 0 0");
    row("PALSHIFT", R"({"type":75,"ID":1})", "PALSHIFT 1");
    row("PALREAL MovL", R"({"type":76,"ID":1,"moveType":1,"ParaV":{"data":100,"m_vUnit":1},"PL":2})",
        "PALREAL 1 MovL  V = 100 mm/s PL = 2 ACC = 0 DEC = 0 0");
    row("PALREAL MovC", R"({"type":76,"ID":1,"moveType":2,"ParaV":{"data":100,"m_vUnit":1}})",
        "PALREAL 1 MovC  V = 100 mm/s PL = 0 ACC = 0 DEC = 0 0");
    row("PALENTER knows no MovS", R"({"type":74,"ID":1,"moveType":3})", "#UNKNOWN COMMAND!!");
    row("PALREAL knows no MovS", R"({"type":76,"ID":1,"moveType":3})", "#UNKNOWN COMMAND!!");
    row("PALCLEAR", R"({"type":77,"ID":1})", "PALCLEAR 1");
    row("PALLET_POS", R"({"type":78,"ID":1,"pointVariableName":"GP001"})", "PALLET_POS 1 GP001");
    row("PAL_SET_EXAMPLE", R"({"type":203,"ID":1,"variableData":"I005"})", "PAL_SET_EXAMPLE 1 I005");
    row("PALGRIPPER ON", R"({"type":204,"ID":1,"NUM":2,"tool":1})", "PALGRIPPER ID = 1 GRIPPERS = 2 ON ");
    row("PALGRIPPER OFF", R"({"type":204,"ID":1,"NUM":2})", "PALGRIPPER ID = 1 GRIPPERS = 2 OFF ");
    row("PH_PALON", R"({"type":218,"ID":3})", "PH_PALON ID = 3");
    row("PH_PALOFF", R"({"type":219,"ID":3})", "PH_PALOFF 3");
    row("SPRAY_ON", R"({"type":122,"gunID":1})", "SPRAY_ON G = 1");
    row("SPRAY_OFF", R"({"type":123,"gunID":1})", "SPRAY_OFF G = 1");
    row("SPRAY_CHANGE", R"({"type":124,"gunID":1,"traID":2,"anaID":3,"colorID":4})", "SPRAY_CHANGE G = 1 T = 2 AO = 3 COLOR = 4");
    row("SPRAY_MOVE", R"({"type":125,"seqID":2,"ParaV":{"data":300,"m_vUnit":1},"ParaTIME":{"data":1}})",
        "SPRAY_MOVE ID = 2 V = 300 mm/s PL = 0 ACC = 0 DEC = 0 1");
    row("SPRAY_STARTPOS", R"({"type":126,"seqID":2,"point":5})", "SPRAY_STARTPOS ID = 2 POINT = 5");
    row("PUNCH", R"({"type":160,"positionId":"P1"})", "PUNCH P1");
    row("PUNCH_MOVE", R"({"type":161,"positionId":"P1","moveType":1})", "PUNCH_MOVE MovL P1");
    row("PUNCH_MOVE knows no MovC", R"({"type":161,"positionId":"P1","moveType":2})", "#UNKNOWN COMMAND!!");
    row("PUNCH_PICK", R"({"type":162,"positionId":"P2"})", "PUNCH_PICK P2");
    row("PUNCH_PICKSAFEPOS", R"({"type":163,"positionId":"P3"})", "PUNCH_PICKSAFEPOS MovJ P3");
    row("PUNCH_PICKUPPERPOS", R"({"type":164,"positionId":"P3"})", "PUNCH_PICKUPPERPOS MovJ P3");
    row("PUNCH_PICKPOS", R"({"type":165,"positionId":"P3","moveType":1})", "PUNCH_PICKPOS MovL P3");
    row("PUNCH_LAY", R"({"type":166,"positionId":"P4"})", "PUNCH_LAY P4");
    row("PUNCH_LAYSAFEPOS", R"({"type":167,"positionId":"P4"})", "PUNCH_LAYSAFEPOS MovJ P4");
    row("PUNCH_LAYUPPERPOS", R"({"type":168,"positionId":"P4"})", "PUNCH_LAYUPPERPOS MovJ P4");
    row("PUNCH_LAYPOS", R"({"type":169,"positionId":"P4"})", "PUNCH_LAYPOS MovJ P4");
    row("PH_TOPREVSAFEPOS", R"({"type":183,"positionId":"P1","vUnit":50,"pl":1,"sync":0,"notice":1})",
        "PH_TOPREVSAFEPOS P1 MovJ VJ = 50 PL = 1 SYNC = 0 NOTICE PREV");
    row("PH_REPREVSAFEPOS", R"({"type":184,"positionId":"P1","moveType":1,"vUnit":200,"workstation":1})",
        "PH_REPREVSAFEPOS P1 MovL V = 200 PL = 0 SYNC = 0 UNNOTICE LOCAL");
    row("PH_TOLOCALSAFEPOS", R"({"type":185,"positionId":"P1"})", "PH_TOLOCALSAFEPOS P1 MovJ VJ = 0 PL = 0 SYNC = 0 UNNOTICE PREV");
    row("PH_RELOCALSAFEPOS", R"({"type":186,"positionId":"P1"})", "PH_RELOCALSAFEPOS P1 MovJ VJ = 0 PL = 0 SYNC = 0 UNNOTICE PREV");
    row("PH_TOPREVUPPOS", R"({"type":187,"positionId":"P1"})", "PH_TOPREVUPPOS P1 MovJ VJ = 0 PL = 0 SYNC = 0 UNNOTICE PREV");
    row("PH_REPREVUPPOS", R"({"type":188,"positionId":"P1"})", "PH_REPREVUPPOS P1 MovJ VJ = 0 PL = 0 SYNC = 0 UNNOTICE PREV");
    row("PH_TOLOCALUPPOS", R"({"type":189,"positionId":"P1"})", "PH_TOLOCALUPPOS P1 MovJ VJ = 0 PL = 0 SYNC = 0 UNNOTICE PREV");
    row("PH_RELOCALUPPOS", R"({"type":190,"positionId":"P1"})", "PH_RELOCALUPPOS P1 MovJ VJ = 0 PL = 0 SYNC = 0 UNNOTICE PREV");
    row("PH_REACHPICKPOS", R"({"type":191,"positionId":"P1","sync":1})", "PH_REACHPICKPOS P1 MovJ VJ = 0 PL = 0 SYNC = 1 UNNOTICE PREV");
    row("PH_REACHDROPPOS", R"({"type":192,"positionId":"P1"})", "PH_REACHDROPPOS P1 MovJ VJ = 0 PL = 0 SYNC = 0 UNNOTICE PREV");
    row("PH_DEALBEFOREPICK", R"({"type":193})", "PH_DEALBEFOREPICK");
    row("PH_DEALBEFOREDROP", R"({"type":194})", "PH_DEALBEFOREDROP");
    row("PH_DEALAFTERPICK", R"({"type":195})", "PH_DEALAFTERPICK");
    row("PH_DEALAFTERDROP", R"({"type":196})", "PH_DEALAFTERDROP");
    row("PH_FIXTUREOPEN", R"({"type":197,"fixture":2})", "PH_FIXTUREOPEN FIXTURE_ID = 2");
    row("PH_FIXTURECLOSE", R"({"type":198,"fixture":2})", "PH_FIXTURECLOSE FIXTURE_ID = 2");
    row("PH_STARTPUNCH", R"({"type":199})", "PH_STARTPUNCH");
    row("PH_WAITPUNCHDONE", R"({"type":200})", "PH_WAITPUNCHDONE");
    row("PH_WAITDIN", R"({"type":201,"waitInValue":3,"waitInState":1})", "PH_WAITDIN 3 1");
    row("PH_DOUT", R"({"type":202,"outValue":4,"outState":0})", "PH_DOUT 4 0");
    row("PH_MULTIPLEPUNON", R"({"type":205,"ID":1})", "PH_MULTIPLEPUNON ID = 1");
    row("PH_MULTIPLEPUNOFF", R"({"type":206,"ID":1})", "PH_MULTIPLEPUNOFF ID = 1");
    row("VISION_RUN", R"({"type":79,"ID":1})", "VISION_RUN ID = 1");
    row("VISION_TRG", R"({"type":80,"ID":1})", "VISION_TRG ID = 1");
    row("VISION_POS", R"({"type":81,"ID":1,"m_positionId":"GP001"})", "VISION_POS ID = 1 GP001");
    row("VISION_POSNUM", R"({"type":82,"ID":1,"M_STRPOSNUM":"I001"})", "VISION_POSNUM ID = 1 I001");
    row("VISION_END", R"({"type":83,"ID":1})", "VISION_END ID = 1");
    row("VISION_CLEAR", R"({"type":84,"ID":1})", "VISION_CLEAR ID = 1");
    row("CONVEYOR_ON", R"({"type":105,"ID":1})", "CONVEYOR_ON 1");
    row("CONVEYOR_OFF", R"({"type":106,"ID":1})", "CONVEYOR_OFF 1");
    row("CONVEYOR_CHECKPOS", R"({"type":107,"ID":1})", "CONVEYOR_CHECKPOS 1");
    row("CONVEYOR_CHECKEND", R"({"type":108,"ID":1})", "CONVEYOR_CHECKEND 1");
    row("CONVEYOR_POS", R"({"type":174,"ID":1,"m_positionId":"P1","ParaV":{"data":100,"m_vUnit":1},"ParaACC":{"data":20}})",
        "CONVEYOR_POS P1 ID = 1 V = 100 mm/s ACC = 20");
    row("CONVEYOR_REMOVE", R"({"type":217,"ID":1,"posidtype":1,"posidname":"GP002","ParaV":{"data":100,"m_vUnit":1}})",
        "CONVEYOR_REMOVE GP002 ID = 1 V = 100 mm/s ACC = 0");
    row("CONVEYOR_REMOVE OUTP", R"({"type":217,"ID":1,"removeType":1,"m_positionId":"P1","ParaV":{"data":100,"m_vUnit":1}})",
        "CONVEYOR_REMOVE OUTP ID = 1 V = 100 mm/s ACC = 0");

    // Axes and the general move.
    row("MOVCOMM MovJ", R"({"type":101,"ParaV":{"data":50,"m_vUnit":2}})", "MOVCOMM  MovJ  VJ = 50 % PL = 0 ACC = 0 DEC = 0 0");
    row("MOVCOMM MovL", R"({"type":101,"moveType":1,"ParaV":{"data":50,"m_vUnit":1}})", "MOVCOMM  MovL  V = 50 mm/s PL = 0 ACC = 0 DEC = 0 0");
    row("MOVCOMM MovC", R"({"type":101,"moveType":2,"ParaV":{"data":50,"m_vUnit":1}})", "MOVCOMM  MovC  V = 50 mm/s PL = 0 ACC = 0 DEC = 0 0");
    row("MOVCOMM MovS", R"({"type":101,"moveType":3,"ParaV":{"data":50,"m_vUnit":1}})", "MOVCOMM  MovS  V = 50 mm/s PL = 0 ACC = 0 DEC = 0 0");
    row("MOVCOMM moveType 4", R"({"type":101,"moveType":4})", "#UNKNOWN COMMAND!!");
    row("MOVCOMM moveType -1", R"({"type":101,"moveType":-1})", "#UNKNOWN COMMAND!!");
    row("EXTMOV CONST", R"({"type":144,"extaxle":1,"handvalue":50,"speedproportionfactor":0.5})", "EXTMOV 1 CONST 50 0.5");
    row("EXTMOV FOLLOW", R"({"type":144,"extaxle":2,"movtype":1,"speedtype":1,"varname":"D001","speedproportionfactor":1})",
        "EXTMOV 2 FOLLOW D001 1");
    row("ENDEXTMOV", R"({"type":145})", "ENDEXTMOV");
    row("GEARIN", R"({"type":148,"mainAxle":1,"followAxle":2,"proportionfactor":0.5})", "GEARIN 1 2 0.5");
    row("ENDGEARIN", R"({"type":150})", "ENDGEARIN");
    row("READLINEAR", R"({"type":146,"varname":"D001"})", "READLINEAR D001");
    row("ENDREADLINEAR", R"({"type":147})", "ENDREADLINEAR");

    // Positions, frames, coordinates.
    row("READPOS", R"({"type":92,"varname":"D001","positionId":"P0001","coord":1,"axis":2})", "READPOS D001 P0001 1 2");
    row("READPOS CURPOS", R"({"type":92,"varname":"D001","posidtype":2,"coord":1,"axis":2})", "READPOS D001 CURPOS 1 2");
    row("POSADD", R"({"type":93,"positionId":"P1","coord":1,"axis":3,"desData":"10"})", "POSADD P1 1 3 10");
    row("POSSUB", R"({"type":93,"caltype":1,"posidtype":1,"posidname":"GP001","coord":1,"axis":3,"desData":"D001"})",
        "POSSUB GP001 1 3 D001");
    row("POSSET", R"({"type":93,"caltype":2,"positionId":"P1","coord":0,"axis":1,"desData":"2.5"})", "POSSET P1 0 1 2.5");
    row("POSADDALL", R"({"type":140,"positionId":"P1","coord":1,"calData":"P2"})", "POSADDALL P1 1 P2");
    row("POSSUBALL", R"({"type":140,"caltype":1,"positionId":"P1","coord":1,"calData":"P2"})", "POSSUBALL P1 1 P2");
    row("POSSETALL", R"({"type":140,"caltype":2,"positionId":"P1","coord":1,"calData":"P2"})", "POSSETALL P1 1 P2");
    row("COPYPOS", R"({"type":118,"cpposId":"P1","cpdposId":"P2"})", "COPYPOS P1 TO P2");
    row("COPYPOS CURPOS", R"({"type":118,"cppostype":2,"cpdpostype":1,"cpdposname":"GP003"})", "COPYPOS CURPOS TO GP003");
    row("SETPOSMSG", R"({"type":207,"positionId":"P1","posData":"D001"})", "SETPOSMSG P1 D001");
    row("READPOSMSG TCS", R"({"type":173,"positionId":"P1","varName":"I001"})", "READPOSMSG P1 TCS I001");
    row("READPOSMSG UCS", R"({"type":173,"varType":1,"positionId":"P1","varName":"I001"})", "READPOSMSG P1 UCS I001");
    row("READPOSMSG CSTYPE", R"({"type":173,"varType":2,"positionId":"P1","varName":"I001"})", "READPOSMSG P1 CSTYPE I001");
    row("READPOSMSG ANGLEUNIT", R"({"type":173,"varType":3,"positionId":"P1","varName":"I001"})", "READPOSMSG P1 ANGLEUNIT I001");
    row("READPOSMSG SHARP", R"({"type":173,"varType":4,"positionId":"P1","varName":"I001"})", "READPOSMSG P1 SHARP I001");
    row("TOFFSETON", R"({"type":141,"coord":1,"calData":"P5"})", "TOFFSETON 1 P5");
    row("TOFFSETOFF", R"({"type":142})", "TOFFSETOFF");
    row("USERFRAME_SET", R"({"type":97,"ID":1,"m_newValue":"P1","m_varName":"GP1"})", "USERFRAME_SET ID = 1 P1");
    row("USERFRAME_SET variable", R"({"type":97,"ID":1,"varType":1,"m_newValue":"P1","m_varName":"GP1"})",
        "USERFRAME_SET ID = 1 GP1");
    row("TOOLFRAME_SET", R"({"type":98,"ID":2,"m_newValue":"P3"})", "TOOLFRAME_SET ID = 2 P3");
    row("USERCOORD_TRANS", R"({"type":49,"coordNum":1,"CoordA":10,"CoordB":20.5,"CoordC":-30})",
        "USERCOORD_TRANS (1) 10 20.5 -30");
    row("SWITCHUSER", R"({"type":50,"coordNum":2})", "SWITCHUSER (2)");
    row("SWITCHUSER variable", R"({"type":117,"valueName":"I001"})", "SWITCHUSER (I001)");
    row("POS_REACHABLE MOVJ", R"({"type":133,"m_varname":"B001","positionId":"P1"})", "POS_REACHABLE B001 MOVJ P1");
    row("POS_REACHABLE MOVL", R"({"type":133,"m_varname":"B001","moveType":1,"positionId":"P1"})", "POS_REACHABLE B001 MOVL P1");
    row("SWITCHSYNC", R"({"type":51,"syncgroup":1})", "SWITCHSYNC 1");
    row("POS_STRETCH LINE", R"({"type":175,"position1Id":"P1","position2Id":"P2","position3Id":"P3",
        "position1OutId":"P4","position2OutId":"P5","stretchL1":10,"stretchL2":20})", "POS_STRETCH LINE P1 P2 P3 P4 P5 10 20");
    row("POS_STRETCH ARC", R"({"type":175,"stretchType":1,"position1Id":"P1","position2Id":"P2","position3Id":"P3",
        "position1OutId":"P4","position2OutId":"P5","stretchL1":1.5,"stretchL2":2})", "POS_STRETCH ARC P1 P2 P3 P4 P5 1.5 2");
    row("MRESET", R"({"type":149,"exterAxis":2})", "MRESET 2");
    row("SWITCHPAYLOAD", R"({"type":216,"intVar":3,"stringVar":"I001"})", "SWITCHPAYLOAD 3");
    row("SWITCHPAYLOAD variable", R"({"type":216,"intVar":3,"stringVar":"I001","posIDType":1})", "SWITCHPAYLOAD I001");
    row("DRAG_TRAJECTORY", R"({"type":172,"trackName":"T1","trackSpeed":0.5})", "DRAG_TRAJECTORY T1 0.5");
    row("WINDOW count beyond three", R"({"type":208,"text1":"A","variable":"I1","count":9,"text2":"B","text3":"C",
        "text4":"D","value1":1,"value2":2,"value3":3})", "WINDOW [$A$] I1 9 [$B$] 1 [$C$] 2 [$D$] 3");
    row("WINDOW negative count", R"({"type":208,"text1":"A","variable":"I1","count":-1,"text2":"B"})", "WINDOW [$A$] I1 -1");
}

void TestJobText::lines()
{
    QFETCH(QString, input);
    QFETCH(QString, line);
    const std::unique_ptr<Command> command = createCommand(json(input.toUtf8().constData()), nullptr);
    QVERIFY(command);
    QCOMPARE(QString::fromStdString(command->toString()), line);
}

void TestJobText::unknownSubtypes_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<QString>("line");
    QTest::newRow("DummyCommand") << 0 << "#UNKNOWN COMMAND!!";
    QTest::newRow("NOP bracket") << 1 << "#UNKNOWN COMMAND!!";
    QTest::newRow("IF with a WHILE code") << 2 << "#UNKNOWN COMMAND!!";
    QTest::newRow("motion without keyword") << 3 << "/// PL = 0 ACC = 0 DEC = 0";
    QTest::newRow("print type 3") << 4 << "#UNKNOWN COMMAND!!";
    QTest::newRow("disabled Dummy") << 5 << "#UNKNOWN COMMAND!! DISABLE";
    QTest::newRow("USERFRAME_SET class with the TOOLFRAME_SET code") << 6 << "#UNKNOWN COMMAND!!";
    QTest::newRow("TOOLFRAME_SET class with the USERFRAME_SET code") << 7 << "#UNKNOWN COMMAND!!";
}

void TestJobText::unknownSubtypes()
{
    QFETCH(int, which);
    QFETCH(QString, line);
    std::unique_ptr<Command> command;
    switch (which) {
    case 0: command = std::make_unique<DummyCommand>(); break;
    case 1: command = std::make_unique<DummyCommand>(31, "NOP"); break;
    case 2: command = std::make_unique<IFCommand>(13); break;
    case 3: command = std::make_unique<MoveCommand>(7); break;
    case 4: {
        auto print = std::make_unique<PRINTMSGCommand>(120);
        print->printType = 3;
        command = std::move(print);
        break;
    }
    case 6: command = std::make_unique<UserCommand>(98); break;
    case 7: command = std::make_unique<ToolCommand>(97); break;
    default:
        command = std::make_unique<DummyCommand>();
        command->logout = true;
    }
    QCOMPARE(QString::fromStdString(command->toString()), line);
}

void TestJobText::plainBlendingWithoutParameterObject()
{
    MoveCommand move(2);
    move.m_positionId = "P1";
    move.paraV->data = 10;
    move.pl = 4;
    move.paraPl.reset();
    QCOMPARE(QString::fromStdString(move.toString()), QString("MOVL P1 V = 10 mm/s PL = 4 ACC = 0 DEC = 0 0"));
    move.paraAcc.reset(); // a missing object writes nothing
    move.paraTime.reset();
    QCOMPARE(QString::fromStdString(move.toString()), QString("MOVL P1 V = 10 mm/s PL = 4 DEC = 0"));
}

void TestJobText::parameterTexts_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<int>("value");
    QTest::addColumn<double>("data");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("line");
    QTest::newRow("ACC") << 0 << 0 << 25.5 << 0 << " ACC = 25.5";
    QTest::newRow("ACC 100000") << 0 << 0 << 100000.0 << 0 << " ACC = 100000";
    QTest::newRow("ACC 1e6") << 0 << 0 << 1e6 << 0 << " ACC = 1e+06";
    QTest::newRow("ACC 0.0001") << 0 << 0 << 0.0001 << 0 << " ACC = 0.0001";
    QTest::newRow("ACC 0.00001") << 0 << 0 << 0.00001 << 0 << " ACC = 1e-05";
    QTest::newRow("ACC 2/3") << 0 << 0 << 2.0 / 3.0 << 0 << " ACC = 0.666667";
    QTest::newRow("ACC 999999.5") << 0 << 0 << 999999.5 << 0 << " ACC = 1e+06";
    QTest::newRow("DEC variable") << 1 << 3 << 1.0 << 0 << " DEC = VAR";
    QTest::newRow("PL") << 2 << 0 << 2.0 << 0 << " PL = 2";
    QTest::newRow("SPIN") << 3 << 0 << -1.0 << 0 << " SPIN = -1";
    QTest::newRow("SYNC") << 4 << 0 << 0.0 << 0 << " SYNC = 0";
    QTest::newRow("TIME") << 5 << 0 << 0.001 << 0 << " 0.001";
    QTest::newRow("V mm/s") << 6 << 0 << 100.0 << 1 << " V = 100 mm/s";
    QTest::newRow("VJ %") << 6 << 0 << 50.0 << 2 << " VJ = 50 %";
    QTest::newRow("V cm/s writes nothing") << 6 << 0 << 50.0 << 0 << "";
    QTest::newRow("VJ variable") << 6 << 1 << 50.0 << 2 << " VJ = VAR";
    QTest::newRow("unknown unit writes nothing") << 6 << 0 << 50.0 << 7 << "";
}

void TestJobText::parameterTexts()
{
    QFETCH(int, which);
    QFETCH(int, value);
    QFETCH(double, data);
    QFETCH(int, unit);
    QFETCH(QString, line);
    std::unique_ptr<ParaCommand> parameter;
    switch (which) {
    case 0: parameter = std::make_unique<ParaAccCommand>(); break;
    case 1: parameter = std::make_unique<ParaDecCommand>(); break;
    case 2: parameter = std::make_unique<ParaPlCommand>(); break;
    case 3: parameter = std::make_unique<ParaSpinCommand>(); break;
    case 4: parameter = std::make_unique<ParaSyncCommand>(); break;
    case 5: parameter = std::make_unique<ParaTimeCommand>(); break;
    default: {
        auto speed = std::make_unique<ParaVCommand>();
        speed->m_vUnit = unit;
        parameter = std::move(speed);
    }
    }
    parameter->value = value;
    parameter->data = data;
    parameter->varname = "VAR";
    QCOMPARE(QString::fromStdString(parameter->toString()), line);
}

void TestJobText::extmovBlockText()
{
    EXTMOVCommand open(144);
    QCOMPARE(QString::fromStdString(open.blockText()), QString("ENDEXTMOV"));
}

void TestJobText::disableEndsEveryLine_data()
{
    QTest::addColumn<int>("type");
    for (int type = 1; type <= 219; ++type) {
        if (newCommand(type))
            QTest::addRow("type %d", type) << type;
    }
}

void TestJobText::disableEndsEveryLine()
{
    QFETCH(int, type);
    const std::unique_ptr<Command> command = newCommand(type);
    const std::string enabled = command->toString();
    QVERIFY(!enabled.empty());
    QVERIFY(enabled.find('\n') == std::string::npos);
    QVERIFY(enabled.size() < 8 || enabled.compare(enabled.size() - 8, 8, " DISABLE") != 0);
    command->logout = true;
    QCOMPARE(QString::fromStdString(command->toString()), QString::fromStdString(enabled + " DISABLE"));
}

QTEST_APPLESS_MAIN(TestJobText)
#include "tst_jobtext.moc"
