#pragma once
// IO, variables, arithmetic and messages.
//
// Line forms (port = portId, or "(" portId ")" for a group; value = varName
// when valueIsVariant, else groupValue for a group or portValue):
//   16  DOUT <port> <value>              17  DIN <varName> <port>
//   99  READ_DOUT <varName> <port>       20  AIN <varName> AIN<portId>
//   21  AOUT AOUT<portId> <value>
//   22  PULSEOUT RATE = <rate> SUM = <sum> T = <time> <port>
//   18  AITOON AIN<ain> AOUT<aout> <para1> <para2> <para3>     19 AITOOFF
//   35/37/39/40/41/42  INT|DOUBLE|BOOLEAN|SETINT|SETDOUBLE|SETBOOL <key> = <strValue>
//   43  FORCESET <gVarName>
//   44-48, 102-104  ADD|SUB|MUL|DIV|MOD|SIN|COS|ATAN <key> <desValue>
//   121 LOGICAL_OP <answerName> <firstName> AND|OR <secondName>
//       LOGICAL_OP <answerName> NOT <firstName>      (logicalType 0|1|2)
//   210 MODBUS_OPEN   211 MODBUS_CLOSE   212 MODBUS_CONNECTION_STATUS ID = <ID>
//   213 MODBUS_READ ID = <ID> <m_addressType> <m_firstAddress> <m_variableValue>
//   214 MODBUS_WRITE ID = <ID> <m_addressType> <m_firstAddress> <m_addressNum> <m_variableValue>
//   94  SENDMSG ID = <ID> <sendChar>
//   95  MSG_CONN_ST <ID> <m_valueName>
//   96  PARSEMSG ID = <ID> <explainValue> CLEARCACHE = <clearCache 1/0>
//   115 OPENMSG ID = <ID>               116 CLOSEMSG ID = <ID>
//   110 READCOMM ID = <ID> EHTERNET |MODBUS <m_varname> <positionId>  (commType 0|1)
//   128 CLKSTART ID = <ID>   129 CLKSTOP ID = <ID> <m_varname>   130 CLKRESET ID = <ID>

#include "job/FieldTable.h"

namespace qrx {

class IOCommand : public FieldCommand<IOCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<IOCommand> &fields();

    Json::Value ParaGroup; // carried unchanged
    int group = 0;
    int groupValue = 0;
    int groupType = 0;
    int portId = 0;
    int portValue = 0;
    bool valueIsVariant = false;
    std::string varName;
    int varType = 0;
    double rate = 0.0;
    int sum = 0;
    double time = 0.0;
    int errorHanding = 0;
};

class AITOCommand : public FieldCommand<AITOCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<AITOCommand> &fields();
    int ain = 0;
    int aout = 0;
    double para1 = 0.0, para2 = 0.0, para3 = 0.0;
};

class VARCommand : public FieldCommand<VARCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    bool isDeclaration() const override; // INT, DOUBLE, BOOLEAN
    static const FieldList<VARCommand> &fields();
    std::string key;
    int intValue = 0;
    double doubleValue = 0.0;
    bool boolValue = false;
    int varType = 0;
    std::string strValue;
};

class FORCESETCommand : public FieldCommand<FORCESETCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<FORCESETCommand> &fields();
    std::string gVarName;
    int gVarType = 0;
};

class OPCommand : public FieldCommand<OPCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<OPCommand> &fields();
    std::string key;
    int desType = 0;
    std::string desValue;
    Json::Value paraSourceGroup; // carried unchanged
    Json::Value paraValueGroup;  // carried unchanged
};

class LOGICAL_OPCommand : public FieldCommand<LOGICAL_OPCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<LOGICAL_OPCommand> &fields();
    int answerType = 0;
    std::string answerName;
    int firstType = 0;
    std::string firstName;
    int secondType = 0;
    std::string secondName;
    int logicalType = 0; // 0 AND, 1 OR, 2 NOT
};

class MODBUSCommand : public FieldCommand<MODBUSCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<MODBUSCommand> &fields();
    int ID = 0;
    std::string m_variableValue;
    int m_addressType = 0;
    int m_firstAddress = 0;
    int m_addressNum = 0;
    int desType = 0;
};

class SENDMSGCommand : public FieldCommand<SENDMSGCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<SENDMSGCommand> &fields();
    int ID = 0;
    std::string sendChar;
};

class MSG_CONN_STCommand : public FieldCommand<MSG_CONN_STCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<MSG_CONN_STCommand> &fields();
    int ID = 0;
    int m_varType = 0;
    std::string m_valueName;
};

class PARSEMSGCommand : public FieldCommand<PARSEMSGCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<PARSEMSGCommand> &fields();
    int ID = 0;
    int expvarType = 0;
    std::string explainValue;
    bool clearCache = false;
};

class OPENCLOSEMSGCommand : public FieldCommand<OPENCLOSEMSGCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<OPENCLOSEMSGCommand> &fields();
    int ID = 0;
};

class READCOMMCommand : public FieldCommand<READCOMMCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<READCOMMCommand> &fields();
    int ID = 0;
    int commType = 0; // 0 Ethernet, 1 Modbus
    std::string m_positionId; // key "positionId"
    std::string m_varname;
};

class ClkCommand : public FieldCommand<ClkCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<ClkCommand> &fields();
    int ID = 0;
    std::string m_varname;
    int m_vartype = 0;
};

} // namespace qrx
