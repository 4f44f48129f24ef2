#include "job/CommandFactory.h"

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

struct InstructionClass
{
    const char *name;
    Maker make;
    const char *codes; // type codes: single values and ranges "a-b"
};

// Every instruction class and the type codes that select it.
const InstructionClass kClasses[] = {
    {"MoveCommand", make<MoveCommand>, "1-6,28,32-34,54-60,63-66,109"},
    {"TimerCommand", make<TimerCommand>, "7"},
    {"WaitCommand", make<WaitCommand>, "8"},
    {"IFCommand", make<IFCommand>, "9-12"},
    {"WHILECommand", make<WHILECommand>, "13,14"},
    {"CallCommand", make<CallCommand>, "15"},
    {"IOCommand", make<IOCommand>, "16,17,20,21,22,99"},
    {"AITOCommand", make<AITOCommand>, "18,19"},
    {"ARCCommand", make<ARCCommand>, "23-27,70,176,177"},
    {"SysSettingCommand", make<SysSettingCommand>, "30"},
    {"VARCommand", make<VARCommand>, "35,37,39-42"},
    {"FORCESETCommand", make<FORCESETCommand>, "43"},
    {"OPCommand", make<OPCommand>, "44-48,102-104"},
    {"COORDCommand", make<COORDCommand>, "49,50,117"},
    {"SWITCHSYNCCommand", make<SWITCHSYNCCommand>, "51"},
    {"JUMPCommand", make<JUMPCommand>, "52,53"},
    {"LASERCommand", make<LASERCommand>, "61,62"},
    {"TIGWeldCommand", make<TIGWeldCommand>, "67,68"},
    {"PALCommand", make<PALCommand>, "71-78,203,204,218,219"},
    {"VisionCommand", make<VisionCommand>, "79-84"},
    {"TRACKCommand", make<TRACKCommand>, "85,86"},
    {"UNTILCommand", make<UNTILCommand>, "87,88"},
    {"CRAFTLINECommand", make<CRAFTLINECommand>, "89"},
    {"PTHREADCommand", make<PTHREADCommand>, "90,91,209"},
    {"READPOSCommand", make<READPOSCommand>, "92"},
    {"POSCALCommand", make<POSCALCommand>, "93"},
    {"SENDMSGCommand", make<SENDMSGCommand>, "94"},
    {"MSG_CONN_STCommand", make<MSG_CONN_STCommand>, "95"},
    {"PARSEMSGCommand", make<PARSEMSGCommand>, "96"},
    {"UserCommand", make<UserCommand>, "97"},
    {"ToolCommand", make<ToolCommand>, "98"},
    {"MOVCOMMCommand", make<MOVCOMMCommand>, "101"},
    {"CONYTRACKCommand", make<CONYTRACKCommand>, "105-108,174,217"},
    {"READCOMMCommand", make<READCOMMCommand>, "110"},
    {"PROGRAMRUNCommand", make<PROGRAMRUNCommand>, "111-113,119"},
    {"OPENCLOSEMSGCommand", make<OPENCLOSEMSGCommand>, "115,116"},
    {"COPYPOSCommand", make<COPYPOSCommand>, "118"},
    {"PRINTMSGCommand", make<PRINTMSGCommand>, "120"},
    {"LOGICAL_OPCommand", make<LOGICAL_OPCommand>, "121"},
    {"SPRAYCommand", make<SPRAYCommand>, "122-126"},
    {"CMDNOTECommand", make<CMDNOTECommand>, "127"},
    {"ClkCommand", make<ClkCommand>, "128-130"},
    {"POLISHCommand", make<POLISHCommand>, "131,132"},
    {"POS_REACHABLECommand", make<POS_REACHABLECommand>, "133"},
    {"SeamFindCommand", make<SeamFindCommand>, "134-139"},
    {"POSCALALLCommand", make<POSCALALLCommand>, "140"},
    {"TOFFSETCommand", make<TOFFSETCommand>, "141,142"},
    {"SCREWCommand", make<SCREWCommand>, "143"},
    {"EXTMOVCommand", make<EXTMOVCommand>, "144,145"},
    {"READLINEARCommand", make<READLINEARCommand>, "146,147"},
    {"GEARINCommand", make<GEARINCommand>, "148,150"},
    {"MRESETCommand", make<MRESETCommand>, "149"},
    {"SEARCHCommand", make<SEARCHCommand>, "151-157"},
    {"ARCTRACKCommand", make<ARCTRACKCommand>, "158,159"},
    {"PUNCHCommand", make<PUNCHCommand>, "160-169"},
    {"ARCBUILTINCommand", make<ARCBUILTINCommand>, "170"},
    {"USERDEFINECommand", make<USERDEFINECommand>, "171"},
    {"DragCommand", make<DragCommand>, "172"},
    {"READPOSMSGCommand", make<READPOSMSGCommand>, "173"},
    {"STRETCHCommand", make<STRETCHCommand>, "175"},
    {"PathCommand", make<PathCommand>, "178-182"},
    {"NEWPUNCHCommand", make<NEWPUNCHCommand>, "183-202,205,206"},
    {"SETPOSMSGCommand", make<SETPOSMSGCommand>, "207"},
    {"WINDOWCommand", make<WINDOWCommand>, "208"},
    {"MODBUSCommand", make<MODBUSCommand>, "210-214"},
    {"Call_luafileCommand", make<Call_luafileCommand>, "215"},
    {"SWICHPAYLOADCommand", make<SWICHPAYLOADCommand>, "216"},
};

constexpr int kLastType = 219;

// Type code -> class, built once from kClasses.
const std::array<const InstructionClass *, kLastType + 1> &classByType()
{
    static const auto table = [] {
        std::array<const InstructionClass *, kLastType + 1> byType{};
        for (const InstructionClass &entry : kClasses) {
            const char *p = entry.codes;
            while (*p) {
                char *end = nullptr;
                const long first = std::strtol(p, &end, 10);
                long last = first;
                if (*end == '-')
                    last = std::strtol(end + 1, &end, 10);
                for (long code = first; code <= last && code <= kLastType; ++code)
                    byType[std::size_t(code)] = &entry;
                p = *end == ',' ? end + 1 : end;
            }
        }
        return byType;
    }();
    return table;
}

const InstructionClass *lookup(int type)
{
    return type >= 0 && type <= kLastType ? classByType()[std::size_t(type)] : nullptr;
}

} // namespace

std::unique_ptr<Command> newCommand(int type)
{
    const InstructionClass *entry = lookup(type);
    return entry ? entry->make(type) : nullptr;
}

std::unique_ptr<Command> createCommand(const Json::Value &json, PositionTable *table)
{
    std::unique_ptr<Command> command = newCommand(jsonread::readInt(json, "type"));
    if (command)
        command->fromJson(json, table);
    return command;
}

const char *commandClassName(int type)
{
    const InstructionClass *entry = lookup(type);
    return entry ? entry->name : nullptr;
}

} // namespace qrx
