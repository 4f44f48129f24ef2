#include "job/CommandFactory.h"

#include "job/FieldAtoms.h"

#include "job/AxisCommands.h"
#include "job/FlowCommands.h"
#include "job/HandlingCommands.h"
#include "job/IoCommands.h"
#include "job/JsonRead.h"
#include "job/MoveCommand.h"
#include "job/PositionCommands.h"
#include "job/WeldCommands.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace qrx {

namespace {

using Maker = std::unique_ptr<Command> (*)(int type);

template <class C>
std::unique_ptr<Command> make(int type)
{
    return std::make_unique<C>(type);
}

// The reader's view of the class's fields; built once per class.
template <class C, class B = Command>
const FieldAtoms &atomsOf()
{
    static const FieldAtoms atoms = fieldAtoms<C, B>();
    return atoms;
}

struct InstructionClass
{
    const char *name;
    Maker make;
    const FieldAtoms &(*atoms)();
    const char *codes; // type codes: single values and ranges "a-b"
};

// Every instruction class and the type codes that select it.
const InstructionClass kClasses[] = {
    {"MoveCommand", make<MoveCommand>, atomsOf<MoveCommand>, "1-6,28,32-34,54-60,63-66,109"},
    {"TimerCommand", make<TimerCommand>, atomsOf<TimerCommand>, "7"},
    {"WaitCommand", make<WaitCommand>, atomsOf<WaitCommand, TimerCommand>, "8"},
    {"IFCommand", make<IFCommand>, atomsOf<IFCommand>, "9-12"},
    {"WHILECommand", make<WHILECommand>, atomsOf<WHILECommand>, "13,14"},
    {"CallCommand", make<CallCommand>, atomsOf<CallCommand>, "15"},
    {"IOCommand", make<IOCommand>, atomsOf<IOCommand>, "16,17,20,21,22,99"},
    {"AITOCommand", make<AITOCommand>, atomsOf<AITOCommand>, "18,19"},
    {"ARCCommand", make<ARCCommand>, atomsOf<ARCCommand>, "23-27,70,176,177"},
    {"SysSettingCommand", make<SysSettingCommand>, atomsOf<SysSettingCommand>, "30"},
    {"VARCommand", make<VARCommand>, atomsOf<VARCommand>, "35,37,39-42"},
    {"FORCESETCommand", make<FORCESETCommand>, atomsOf<FORCESETCommand>, "43"},
    {"OPCommand", make<OPCommand>, atomsOf<OPCommand>, "44-48,102-104"},
    {"COORDCommand", make<COORDCommand>, atomsOf<COORDCommand>, "49,50,117"},
    {"SWITCHSYNCCommand", make<SWITCHSYNCCommand>, atomsOf<SWITCHSYNCCommand>, "51"},
    {"JUMPCommand", make<JUMPCommand>, atomsOf<JUMPCommand>, "52,53"},
    {"LASERCommand", make<LASERCommand>, atomsOf<LASERCommand>, "61,62"},
    {"TIGWeldCommand", make<TIGWeldCommand>, atomsOf<TIGWeldCommand>, "67,68"},
    {"PALCommand", make<PALCommand>, atomsOf<PALCommand>, "71-78,203,204,218,219"},
    {"VisionCommand", make<VisionCommand>, atomsOf<VisionCommand>, "79-84"},
    {"TRACKCommand", make<TRACKCommand>, atomsOf<TRACKCommand>, "85,86"},
    {"UNTILCommand", make<UNTILCommand>, atomsOf<UNTILCommand>, "87,88"},
    {"CRAFTLINECommand", make<CRAFTLINECommand>, atomsOf<CRAFTLINECommand>, "89"},
    {"PTHREADCommand", make<PTHREADCommand>, atomsOf<PTHREADCommand>, "90,91,209"},
    {"READPOSCommand", make<READPOSCommand>, atomsOf<READPOSCommand>, "92"},
    {"POSCALCommand", make<POSCALCommand>, atomsOf<POSCALCommand>, "93"},
    {"SENDMSGCommand", make<SENDMSGCommand>, atomsOf<SENDMSGCommand>, "94"},
    {"MSG_CONN_STCommand", make<MSG_CONN_STCommand>, atomsOf<MSG_CONN_STCommand>, "95"},
    {"PARSEMSGCommand", make<PARSEMSGCommand>, atomsOf<PARSEMSGCommand>, "96"},
    {"UserCommand", make<UserCommand>, atomsOf<FrameSetCommand>, "97"},
    {"ToolCommand", make<ToolCommand>, atomsOf<FrameSetCommand>, "98"},
    {"MOVCOMMCommand", make<MOVCOMMCommand>, atomsOf<MOVCOMMCommand>, "101"},
    {"CONYTRACKCommand", make<CONYTRACKCommand>, atomsOf<CONYTRACKCommand>, "105-108,174,217"},
    {"READCOMMCommand", make<READCOMMCommand>, atomsOf<READCOMMCommand>, "110"},
    {"PROGRAMRUNCommand", make<PROGRAMRUNCommand>, atomsOf<PROGRAMRUNCommand>, "111-113,119"},
    {"OPENCLOSEMSGCommand", make<OPENCLOSEMSGCommand>, atomsOf<OPENCLOSEMSGCommand>, "115,116"},
    {"COPYPOSCommand", make<COPYPOSCommand>, atomsOf<COPYPOSCommand>, "118"},
    {"PRINTMSGCommand", make<PRINTMSGCommand>, atomsOf<PRINTMSGCommand>, "120"},
    {"LOGICAL_OPCommand", make<LOGICAL_OPCommand>, atomsOf<LOGICAL_OPCommand>, "121"},
    {"SPRAYCommand", make<SPRAYCommand>, atomsOf<SPRAYCommand>, "122-126"},
    {"CMDNOTECommand", make<CMDNOTECommand>, atomsOf<CMDNOTECommand>, "127"},
    {"ClkCommand", make<ClkCommand>, atomsOf<ClkCommand>, "128-130"},
    {"POLISHCommand", make<POLISHCommand>, atomsOf<POLISHCommand>, "131,132"},
    {"POS_REACHABLECommand", make<POS_REACHABLECommand>, atomsOf<POS_REACHABLECommand>, "133"},
    {"SeamFindCommand", make<SeamFindCommand>, atomsOf<SeamFindCommand>, "134-139"},
    {"POSCALALLCommand", make<POSCALALLCommand>, atomsOf<POSCALALLCommand>, "140"},
    {"TOFFSETCommand", make<TOFFSETCommand>, atomsOf<TOFFSETCommand>, "141,142"},
    {"SCREWCommand", make<SCREWCommand>, atomsOf<SCREWCommand>, "143"},
    {"EXTMOVCommand", make<EXTMOVCommand>, atomsOf<EXTMOVCommand>, "144,145"},
    {"READLINEARCommand", make<READLINEARCommand>, atomsOf<READLINEARCommand>, "146,147"},
    {"GEARINCommand", make<GEARINCommand>, atomsOf<GEARINCommand>, "148,150"},
    {"MRESETCommand", make<MRESETCommand>, atomsOf<MRESETCommand>, "149"},
    {"SEARCHCommand", make<SEARCHCommand>, atomsOf<SEARCHCommand>, "151-157"},
    {"ARCTRACKCommand", make<ARCTRACKCommand>, atomsOf<ARCTRACKCommand>, "158,159"},
    {"PUNCHCommand", make<PUNCHCommand>, atomsOf<PUNCHCommand>, "160-169"},
    {"ARCBUILTINCommand", make<ARCBUILTINCommand>, atomsOf<ARCBUILTINCommand>, "170"},
    {"USERDEFINECommand", make<USERDEFINECommand>, atomsOf<USERDEFINECommand>, "171"},
    {"DragCommand", make<DragCommand>, atomsOf<DragCommand>, "172"},
    {"READPOSMSGCommand", make<READPOSMSGCommand>, atomsOf<READPOSMSGCommand>, "173"},
    {"STRETCHCommand", make<STRETCHCommand>, atomsOf<STRETCHCommand>, "175"},
    {"PathCommand", make<PathCommand>, atomsOf<PathCommand>, "178-182"},
    {"NEWPUNCHCommand", make<NEWPUNCHCommand>, atomsOf<NEWPUNCHCommand>, "183-202,205,206"},
    {"SETPOSMSGCommand", make<SETPOSMSGCommand>, atomsOf<SETPOSMSGCommand>, "207"},
    {"WINDOWCommand", make<WINDOWCommand>, atomsOf<WINDOWCommand>, "208"},
    {"MODBUSCommand", make<MODBUSCommand>, atomsOf<MODBUSCommand>, "210-214"},
    {"Call_luafileCommand", make<Call_luafileCommand>, atomsOf<Call_luafileCommand>, "215"},
    {"SWICHPAYLOADCommand", make<SWICHPAYLOADCommand>, atomsOf<SWICHPAYLOADCommand>, "216"},
};

// Codes the job-file reader builds from their line although the factory
// creates nothing for them from JSON: a PTHREADCommand of 114 renders
// "PTHREAD_ENDALL".
const InstructionClass kLineOnlyClasses[] = {
    {"PTHREADCommand", make<PTHREADCommand>, atomsOf<PTHREADCommand>, "114"},
};

constexpr int kLastType = 219;

using ClassByType = std::array<const InstructionClass *, kLastType + 1>;

void addCodes(ClassByType &byType, const InstructionClass *begin, const InstructionClass *end)
{
    for (const InstructionClass *entry = begin; entry != end; ++entry) {
        const char *p = entry->codes;
        while (*p) {
            char *next = nullptr;
            const long first = std::strtol(p, &next, 10);
            long last = first;
            if (*next == '-')
                last = std::strtol(next + 1, &next, 10);
            for (long code = first; code <= last && code <= kLastType; ++code)
                byType[std::size_t(code)] = entry;
            p = *next == ',' ? next + 1 : next;
        }
    }
}

// Type code -> class, built once from kClasses (and kLineOnlyClasses for
// the reader).
const ClassByType &classByType(bool lineOnlyToo)
{
    static const auto tables = [] {
        std::array<ClassByType, 2> byType{};
        addCodes(byType[0], std::begin(kClasses), std::end(kClasses));
        byType[1] = byType[0];
        addCodes(byType[1], std::begin(kLineOnlyClasses), std::end(kLineOnlyClasses));
        return byType;
    }();
    return tables[lineOnlyToo ? 1 : 0];
}

const InstructionClass *lookup(int type, bool lineOnlyToo = false)
{
    return type >= 0 && type <= kLastType ? classByType(lineOnlyToo)[std::size_t(type)] : nullptr;
}

} // namespace

std::unique_ptr<Command> newCommand(int type)
{
    const InstructionClass *entry = lookup(type);
    return entry ? entry->make(type) : nullptr;
}

std::unique_ptr<Command> newLineCommand(int type)
{
    const InstructionClass *entry = lookup(type, true);
    return entry ? entry->make(type) : nullptr;
}

std::unique_ptr<Command> createCommand(const Json::Value &json, PositionTable *table)
{
    std::unique_ptr<Command> command = newCommand(jsonread::readInt(json, "type"));
    if (command)
        command->fromJson(json, table);
    return command;
}

const FieldAtoms *commandFieldAtoms(int type)
{
    const InstructionClass *entry = lookup(type, true);
    return entry ? &entry->atoms() : nullptr;
}

const char *commandClassName(int type)
{
    const InstructionClass *entry = lookup(type, true);
    return entry ? entry->name : nullptr;
}

} // namespace qrx
