#pragma once
// Program flow: timers and waits, blocks (IF, WHILE, UNTIL), jumps, calls,
// threads and program control, and the plain statements of a program.
//
// Line forms (fields in this order; values right after their labels):
//   7   TIMER T = <duration | desValue when desType != 0>
//   8   WAIT <condition>  T = <as TIMER>  F = <m_filterTime> NOW = <now 1/0>
//   9   IF <condition>      10 ELSE      11 ELSEIF <condition>   12 ENDIF
//   13  WHILE <condition>   14 ENDWHILE
//   87  UNTIL <condition>   88 ENDUNTIL
//   52  JUMP <label>[  WHEN <condition>]    53 LABEL <label>
//   15  CALL [$<jobName>$]
//   215 CALL_LUAFILE [$<luafileName>$]
//   90  PTHREAD_START [$<jobName>$] LOCAL|GLOBAL   (localOrGlobal 0|1)
//   91  PTHREAD_END [$<jobName>$] LOCAL|GLOBAL     114 PTHREAD_ENDALL
//   209 PTHREAD_STATE [$<jobName>$] LOCAL|GLOBAL <m_VariableValue>
//       PTHREAD_STATE  MainProgram <m_VariableValue>   (empty jobName)
//   111 STOPRUN   112 RESTARTRUN
//   113 PAUSERUN <jobname> | PAUSERUN ALL | PAUSERUN MAIN   (programtype 0|1|2)
//   119 CONTINUERUN <jobname> | CONTINUERUN MAIN            (programtype 0|2)
//   30  SPEED = <D_speed (speedType 0) | S_speed><unit text of sUnit>
//   89  CRAFTLINE <line>
//   127 #<note>
//   171 USERDEFINE ID = <id>
//   208 WINDOW [$<text1>$] <variable> <count>[ [$<text2>$] <value1>]...
//       (as many texts as count says, at most three)
//   114 renders and is read back from a job file, but the factory creates
//       nothing for it from JSON.
//   120 PRINTMSG <printType 0|1|2> <printChar>

#include "job/FieldTable.h"

namespace qrx {

class TimerCommand : public FieldCommand<TimerCommand>
{
public:
    explicit TimerCommand(int type);
    std::string body() const;
    static const FieldList<TimerCommand> &fields();
    // The waiting time: the duration, or the variable in desValue.
    std::string durationText() const;

    double duration = 0.0;
    int desType = 0;
    std::string desValue;
    std::unique_ptr<ParaTimeCommand> paraTime;
};

class WaitCommand : public FieldCommand<WaitCommand, TimerCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<WaitCommand> &fields();

    CommandConditionFINAL waitConditionFinal;
    bool now = false;
    double m_filterTime = 0.0;
};

class IFCommand : public FieldCommand<IFCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<IFCommand> &fields();
    CommandConditionFINAL ifconditionArrayFINAL;
};

class WHILECommand : public FieldCommand<WHILECommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<WHILECommand> &fields();
    CommandConditionFINAL whileconditionArrayFINAL;
};

class UNTILCommand : public FieldCommand<UNTILCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<UNTILCommand> &fields();
    CommandConditionFINAL untilconditionArrayFINAL;
};

class JUMPCommand : public FieldCommand<JUMPCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<JUMPCommand> &fields();
    std::string label;
    bool jumpConditionFlag = false;
    CommandConditionFINAL jumpCondition;
};

class CallCommand : public FieldCommand<CallCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<CallCommand> &fields();
    int lineNoToCall = 0;
    std::string jobName;
};

class Call_luafileCommand : public FieldCommand<Call_luafileCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<Call_luafileCommand> &fields();
    std::string luafileName;
};

class PTHREADCommand : public FieldCommand<PTHREADCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<PTHREADCommand> &fields();
    std::string jobName;
    int localOrGlobal = 0; // 0 LOCAL, 1 GLOBAL
    std::string m_VariableValue;
};

class PROGRAMRUNCommand : public FieldCommand<PROGRAMRUNCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<PROGRAMRUNCommand> &fields();
    int programtype = 0; // 0 a job, 1 all, 2 the main program
    std::string jobname;
};

class SysSettingCommand : public FieldCommand<SysSettingCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<SysSettingCommand> &fields();
    int speedType = 0;
    double D_speed = 0.0;
    double S_speed = 0.0;
    int sUnit = 0;
};

class CRAFTLINECommand : public FieldCommand<CRAFTLINECommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<CRAFTLINECommand> &fields();
    int line = 0;
};

class CMDNOTECommand : public FieldCommand<CMDNOTECommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<CMDNOTECommand> &fields();
    std::string note;
};

class USERDEFINECommand : public FieldCommand<USERDEFINECommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<USERDEFINECommand> &fields();
    int id = 0;
};

class WINDOWCommand : public FieldCommand<WINDOWCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<WINDOWCommand> &fields();
    std::string text1, text2, text3, text4;
    std::string variable;
    int count = 0; // further texts: 1, 2 or 3
    int value1 = 0, value2 = 0, value3 = 0;
};

class PRINTMSGCommand : public FieldCommand<PRINTMSGCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<PRINTMSGCommand> &fields();
    std::string printChar;
    int printType = 0;
};

} // namespace qrx
