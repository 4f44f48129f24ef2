#pragma once
// Positions, frames and coordinates as values of a program.
//
// Line forms (fields in this order; <target> is posidname for posidtype 1,
// else positionId):
//   92  READPOS <varname> <target> <coord> <axis>; posidtype 2 reads CURPOS
//   93  POSADD|POSSUB|POSSET <target> <coord> <axis> <desData>   (caltype 0|1|2)
//   140 POSADDALL|POSSUBALL|POSSETALL <target> <coord> <calData>
//   118 COPYPOS <source> TO <destination>;  COPYPOS CURPOS TO <destination>
//       (source/destination: name for type 1, else id; cppostype 2 is CURPOS)
//   207 SETPOSMSG <target> <posData>
//   173 READPOSMSG <positionId> TCS | UCS | CSTYPE | ANGLEUNIT | SHARP <varName>
//       (varType 0-4)
//   141 TOFFSETON <coord> <calData>         142 TOFFSETOFF
//   97  USERFRAME_SET ID = <ID> <value>      98 TOOLFRAME_SET ID = <ID> <value>
//       (value: m_newValue for varType 0, else m_varName)
//   49  USERCOORD_TRANS (<coordNum>) <CoordA> <CoordB> <CoordC>
//   50  SWITCHUSER (<coordNum>)              117 SWITCHUSER (<valueName>)
//   133 POS_REACHABLE <m_varname> MOVJ | MOVL <positionId>   (moveType 0|1)
//   51  SWITCHSYNC <syncgroup>
//   175 POS_STRETCH LINE |ARC <p1> <p2> <p3> <out1> <out2> <L1> <L2>  (stretchType 0|1)
//   149 MRESET <exterAxis>
//   216 SWITCHPAYLOAD <intVar | stringVar for posIDType 1>
//   172 DRAG_TRAJECTORY <trackName> <trackSpeed>

#include "job/FieldTable.h"

namespace qrx {

class READPOSCommand : public FieldCommand<READPOSCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<READPOSCommand> &fields();
    std::string varname;
    std::string m_positionId; // key "positionId"
    int coord = 0;
    int axis = 0;
    int posidtype = 0;
    std::string posidname;
};

class POSCALCommand : public FieldCommand<POSCALCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<POSCALCommand> &fields();
    int caltype = 0;
    std::string m_positionId; // key "positionId"
    int coord = 0;
    int axis = 0;
    int datatype = 0;
    std::string desData;
    int posidtype = 0;
    std::string posidname;
};

class POSCALALLCommand : public FieldCommand<POSCALALLCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<POSCALALLCommand> &fields();
    int caltype = 0;
    std::string m_positionId; // key "positionId"
    int coord = 0;
    std::string calData;
    int datatype = 0;
    int posidtype = 0;
    std::string posidname;
};

class COPYPOSCommand : public FieldCommand<COPYPOSCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<COPYPOSCommand> &fields();
    std::string cpposId;
    int cppostype = 0;
    std::string cpposname;
    std::string cpdposId;
    int cpdpostype = 0;
    std::string cpdposname;
    int cpaxletype = 0;
    std::string cpaxles;
};

class SETPOSMSGCommand : public FieldCommand<SETPOSMSGCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<SETPOSMSGCommand> &fields();
    int posidtype = 0;
    std::string m_positionId; // key "positionId"
    std::string posidname;
    int posDataType = 0;
    std::string posData;
};

class READPOSMSGCommand : public FieldCommand<READPOSMSGCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<READPOSMSGCommand> &fields();
    int varType = 0;
    std::string message;
    std::string m_positionId; // key "positionId"
    std::string varName;
};

class TOFFSETCommand : public FieldCommand<TOFFSETCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<TOFFSETCommand> &fields();
    int coord = 0;
    std::string calData;
    int datatype = 0;
};

// USERFRAME_SET and TOOLFRAME_SET: the same keys and line form, each under
// its own class and type code.
class FrameSetCommand : public FieldCommand<FrameSetCommand>
{
public:
    std::string body() const;
    static const FieldList<FrameSetCommand> &fields();
    int ID = 0;
    int coord = 0;
    int varType = 0;
    std::string m_varName;
    std::string m_newValue;

protected:
    FrameSetCommand(int type, int ownType, const char *keyword);

private:
    int m_ownType;
    const char *m_keyword;
};

class UserCommand : public FrameSetCommand
{
public:
    explicit UserCommand(int type) : FrameSetCommand(type, 97, "USERFRAME_SET ") {}
};

class ToolCommand : public FrameSetCommand
{
public:
    explicit ToolCommand(int type) : FrameSetCommand(type, 98, "TOOLFRAME_SET ") {}
};

class COORDCommand : public FieldCommand<COORDCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<COORDCommand> &fields();
    int coordNum = 0;
    int coordType = 0;
    double CoordA = 0.0;
    double CoordB = 0.0;
    double CoordC = 0.0;
    int varType = 0;
    std::string valueName;
};

class POS_REACHABLECommand : public FieldCommand<POS_REACHABLECommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<POS_REACHABLECommand> &fields();
    int m_varType = 0;
    int moveType = 0;
    std::string m_positionId; // key "positionId"
    std::string m_varname;
};

class SWITCHSYNCCommand : public FieldCommand<SWITCHSYNCCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<SWITCHSYNCCommand> &fields();
    int syncgroup = 0;
};

class STRETCHCommand : public FieldCommand<STRETCHCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<STRETCHCommand> &fields();
    std::string position1Id, position2Id, position3Id;
    std::string position1OutId, position2OutId;
    double stretchL1 = 0.0;
    double stretchL2 = 0.0;
    int stretchType = 0;
};

class MRESETCommand : public FieldCommand<MRESETCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<MRESETCommand> &fields();
    int exterAxis = 0;
};

class SWICHPAYLOADCommand : public FieldCommand<SWICHPAYLOADCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<SWICHPAYLOADCommand> &fields();
    int intVar = 0;
    std::string stringVar;
    int posIDType = 0;
};

class DragCommand : public FieldCommand<DragCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<DragCommand> &fields();
    std::string trackName;
    double trackSpeed = 0.0;
};

} // namespace qrx
