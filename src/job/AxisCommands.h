#pragma once
// External axes, gearing and the general move.
//
// Line forms (fields in this order):
//   144 EXTMOV <extaxle> CONST | FOLLOW <handvalue | varname> <speedproportionfactor>
//       (movtype 0|1; speedtype 0 a constant, else the variable)
//   145 ENDEXTMOV
//   148 GEARIN <mainAxle> <followAxle> <proportionfactor>     150 ENDGEARIN
//   146 READLINEAR <varname>                                  147 ENDREADLINEAR
//   101 MOVCOMM  MovJ | MovL | MovC | MovS <speed><PL><ACC><DEC><time>
//       (moveType 0-3)

#include "job/MotionParameters.h"

namespace qrx {

class EXTMOVCommand : public FieldCommand<EXTMOVCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    // The line that closes the block: "ENDEXTMOV".
    virtual std::string blockText() const;
    static const FieldList<EXTMOVCommand> &fields();
    int extaxle = 0;
    int movtype = 0;   // 0 CONST, 1 FOLLOW
    int speedtype = 0; // 0 handvalue, else varname
    std::string varname;
    double handvalue = 0.0;
    double speedproportionfactor = 0.0;
};

class GEARINCommand : public FieldCommand<GEARINCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<GEARINCommand> &fields();
    int mainAxle = 0;
    int followAxle = 0;
    double proportionfactor = 0.0;
};

class READLINEARCommand : public FieldCommand<READLINEARCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<READLINEARCommand> &fields();
    std::string varname;
    int vartype = 0;
};

class MOVCOMMCommand : public FieldCommand<MOVCOMMCommand>, public MotionParameters
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<MOVCOMMCommand> &fields();
    int moveType = 0;
    int vUnit = 0;
};

} // namespace qrx
