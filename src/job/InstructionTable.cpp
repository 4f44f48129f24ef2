#include "job/InstructionTable.h"

#include "job/LineForms.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

namespace qrx {

namespace {

constexpr int kLastType = 219;

// One row per (type code, leading word); a type that starts with different
// words by its fields (PRINTMSG 0/1/2 share a word, POSADD/POSSUB/POSSET do
// not) has a row per word, the word of its default form first.
const InstructionEntry kEntries[] = {
    {1, "MOVJ", "MoveCommand"},
    {1, "///", "MoveCommand"},
    {2, "MOVL", "MoveCommand"},
    {2, "///", "MoveCommand"},
    {3, "MOVC", "MoveCommand"},
    {3, "///", "MoveCommand"},
    {4, "MOVCA", "MoveCommand"},
    {4, "///", "MoveCommand"},
    {5, "IMOV", "MoveCommand"},
    {5, "///", "MoveCommand"},
    {6, "MOVS", "MoveCommand"},
    {6, "///", "MoveCommand"},
    {7, "TIMER", "TimerCommand"},
    {8, "WAIT", "WaitCommand"},
    {9, "IF", "IFCommand"},
    {10, "ELSE", "IFCommand"},
    {11, "ELSEIF", "IFCommand"},
    {12, "ENDIF", "IFCommand"},
    {13, "WHILE", "WHILECommand"},
    {14, "ENDWHILE", "WHILECommand"},
    {15, "CALL", "CallCommand"},
    {16, "DOUT", "IOCommand"},
    {17, "DIN", "IOCommand"},
    {18, "AITOON", "AITOCommand"},
    {19, "AITOOFF", "AITOCommand"},
    {20, "AIN", "IOCommand"},
    {21, "AOUT", "IOCommand"},
    {22, "PULSEOUT", "IOCommand"},
    {23, "ARCON", "ARCCommand"},
    {24, "ARCOFF", "ARCCommand"},
    {25, "ARCSET", "ARCCommand"},
    {26, "WVON", "ARCCommand"},
    {27, "WVOFF", "ARCCommand"},
    {28, "CIL", "MoveCommand"},
    {28, "///", "MoveCommand"},
    {30, "SPEED", "SysSettingCommand"},
    {32, "MOVJEXT", "MoveCommand"},
    {32, "///", "MoveCommand"},
    {33, "MOVLEXT", "MoveCommand"},
    {33, "///", "MoveCommand"},
    {34, "MOVCEXT", "MoveCommand"},
    {34, "///", "MoveCommand"},
    {35, "INT", "VARCommand"},
    {37, "DOUBLE", "VARCommand"},
    {39, "BOOLEAN", "VARCommand"},
    {40, "SETINT", "VARCommand"},
    {41, "SETDOUBLE", "VARCommand"},
    {42, "SETBOOL", "VARCommand"},
    {43, "FORCESET", "FORCESETCommand"},
    {44, "ADD", "OPCommand"},
    {45, "SUB", "OPCommand"},
    {46, "MUL", "OPCommand"},
    {47, "DIV", "OPCommand"},
    {48, "MOD", "OPCommand"},
    {49, "USERCOORD_TRANS", "COORDCommand"},
    {50, "SWITCHUSER", "COORDCommand"},
    {51, "SWITCHSYNC", "SWITCHSYNCCommand"},
    {52, "JUMP", "JUMPCommand"},
    {53, "LABEL", "JUMPCommand"},
    {54, "CILEXT_BEGIN", "MoveCommand"},
    {54, "///", "MoveCommand"},
    {55, "CILEXT_MOVE", "MoveCommand"},
    {55, "///", "MoveCommand"},
    {56, "MOVJDOUBLE", "MoveCommand"},
    {56, "///", "MoveCommand"},
    {57, "MOVLDOUBLE", "MoveCommand"},
    {57, "///", "MoveCommand"},
    {58, "MOVCDOUBLE", "MoveCommand"},
    {58, "///", "MoveCommand"},
    {59, "MOVCADOUBLE", "MoveCommand"},
    {59, "///", "MoveCommand"},
    {60, "SAMOV", "MoveCommand"},
    {60, "///", "MoveCommand"},
    {61, "LASER_ON", "LASERCommand"},
    {62, "LASER_OFF", "LASERCommand"},
    {63, "LASER_CIRCLE", "MoveCommand"},
    {63, "///", "MoveCommand"},
    {64, "LASER_RECTANGLE", "MoveCommand"},
    {64, "///", "MoveCommand"},
    {65, "LASER_MIDDLEHOLE", "MoveCommand"},
    {65, "///", "MoveCommand"},
    {66, "LASER_HEX", "MoveCommand"},
    {66, "///", "MoveCommand"},
    {67, "TIGWELDON", "TIGWeldCommand"},
    {68, "TIGWELDOFF", "TIGWeldCommand"},
    {70, "REFP", "ARCCommand"},
    {71, "PALON", "PALCommand"},
    {72, "PALOFF", "PALCommand"},
    {73, "PALLET", "PALCommand"},
    {74, "PALENTER", "PALCommand"},
    {75, "PALSHIFT", "PALCommand"},
    {76, "PALREAL", "PALCommand"},
    {77, "PALCLEAR", "PALCommand"},
    {78, "PALLET_POS", "PALCommand"},
    {79, "VISION_RUN", "VisionCommand"},
    {80, "VISION_TRG", "VisionCommand"},
    {81, "VISION_POS", "VisionCommand"},
    {82, "VISION_POSNUM", "VisionCommand"},
    {83, "VISION_END", "VisionCommand"},
    {84, "VISION_CLEAR", "VisionCommand"},
    {85, "LASERTRACK_ON", "TRACKCommand"},
    {86, "LASERTRACK_OFF", "TRACKCommand"},
    {87, "UNTIL", "UNTILCommand"},
    {88, "ENDUNTIL", "UNTILCommand"},
    {89, "CRAFTLINE", "CRAFTLINECommand"},
    {90, "PTHREAD_START", "PTHREADCommand"},
    {91, "PTHREAD_END", "PTHREADCommand"},
    {114, "PTHREAD_ENDALL", "PTHREADCommand"},
    {92, "READPOS", "READPOSCommand"},
    {93, "POSADD", "POSCALCommand"},
    {93, "POSSUB", "POSCALCommand"},
    {93, "POSSET", "POSCALCommand"},
    {94, "SENDMSG", "SENDMSGCommand"},
    {95, "MSG_CONN_ST", "MSG_CONN_STCommand"},
    {96, "PARSEMSG", "PARSEMSGCommand"},
    {97, "USERFRAME_SET", "UserCommand"},
    {98, "TOOLFRAME_SET", "ToolCommand"},
    {99, "READ_DOUT", "IOCommand"},
    {101, "MOVCOMM", "MOVCOMMCommand"},
    {102, "SIN", "OPCommand"},
    {103, "COS", "OPCommand"},
    {104, "ATAN", "OPCommand"},
    {105, "CONVEYOR_ON", "CONYTRACKCommand"},
    {106, "CONVEYOR_OFF", "CONYTRACKCommand"},
    {107, "CONVEYOR_CHECKPOS", "CONYTRACKCommand"},
    {108, "CONVEYOR_CHECKEND", "CONYTRACKCommand"},
    {109, "POLISH_EDGE", "MoveCommand"},
    {109, "///", "MoveCommand"},
    {110, "READCOMM", "READCOMMCommand"},
    {111, "STOPRUN", "PROGRAMRUNCommand"},
    {112, "RESTARTRUN", "PROGRAMRUNCommand"},
    {113, "PAUSERUN", "PROGRAMRUNCommand"},
    {115, "OPENMSG", "OPENCLOSEMSGCommand"},
    {116, "CLOSEMSG", "OPENCLOSEMSGCommand"},
    {117, "SWITCHUSER", "COORDCommand"},
    {118, "COPYPOS", "COPYPOSCommand"},
    {119, "CONTINUERUN", "PROGRAMRUNCommand"},
    {120, "PRINTMSG", "PRINTMSGCommand"},
    {121, "LOGICAL_OP", "LOGICAL_OPCommand"},
    {122, "SPRAY_ON", "SPRAYCommand"},
    {123, "SPRAY_OFF", "SPRAYCommand"},
    {124, "SPRAY_CHANGE", "SPRAYCommand"},
    {125, "SPRAY_MOVE", "SPRAYCommand"},
    {126, "SPRAY_STARTPOS", "SPRAYCommand"},
    {127, "#", "CMDNOTECommand"},
    {128, "CLKSTART", "ClkCommand"},
    {129, "CLKSTOP", "ClkCommand"},
    {130, "CLKRESET", "ClkCommand"},
    {131, "POLISH_CONTINUE", "POLISHCommand"},
    {132, "POLISH_OFF", "POLISHCommand"},
    {133, "POS_REACHABLE", "POS_REACHABLECommand"},
    {134, "SEARCH_INITIALIZE", "SeamFindCommand"},
    {135, "SEARCH_MEASURE", "SeamFindCommand"},
    {136, "SEARCH_CORR", "SeamFindCommand"},
    {137, "SEARCH_CANCELCORR", "SeamFindCommand"},
    {138, "SEARCH_CALBR", "SeamFindCommand"},
    {139, "SEARCH_OFF", "SeamFindCommand"},
    {140, "POSADDALL", "POSCALALLCommand"},
    {140, "POSSUBALL", "POSCALALLCommand"},
    {140, "POSSETALL", "POSCALALLCommand"},
    {141, "TOFFSETON", "TOFFSETCommand"},
    {142, "TOFFSETOFF", "TOFFSETCommand"},
    {143, "SCREW", "SCREWCommand"},
    {144, "EXTMOV", "EXTMOVCommand"},
    {145, "ENDEXTMOV", "EXTMOVCommand"},
    {146, "READLINEAR", "READLINEARCommand"},
    {147, "ENDREADLINEAR", "READLINEARCommand"},
    {148, "GEARIN", "GEARINCommand"},
    {149, "MRESET", "MRESETCommand"},
    {150, "ENDGEARIN", "GEARINCommand"},
    {151, "SEARCH_START", "SEARCHCommand"},
    {152, "SEARCH_STATIC", "SEARCHCommand"},
    {153, "SEARCH_DYNAMIC", "SEARCHCommand"},
    {154, "SEARCH_OFFSET", "SEARCHCommand"},
    {155, "SEARCH_OFFSETEND", "SEARCHCommand"},
    {156, "SEARCH_CALC", "SEARCHCommand"},
    {157, "SEARCH_END", "SEARCHCommand"},
    {158, "ARCTRACKON", "ARCTRACKCommand"},
    {158, "ARCVTRACKON", "ARCTRACKCommand"},
    {159, "ARCTRACKOFF", "ARCTRACKCommand"},
    {160, "PUNCH", "PUNCHCommand"},
    {161, "PUNCH_MOVE", "PUNCHCommand"},
    {162, "PUNCH_PICK", "PUNCHCommand"},
    {163, "PUNCH_PICKSAFEPOS", "PUNCHCommand"},
    {164, "PUNCH_PICKUPPERPOS", "PUNCHCommand"},
    {165, "PUNCH_PICKPOS", "PUNCHCommand"},
    {166, "PUNCH_LAY", "PUNCHCommand"},
    {167, "PUNCH_LAYSAFEPOS", "PUNCHCommand"},
    {168, "PUNCH_LAYUPPERPOS", "PUNCHCommand"},
    {169, "PUNCH_LAYPOS", "PUNCHCommand"},
    {170, "ARCBUILTIN", "ARCBUILTINCommand"},
    {171, "USERDEFINE", "USERDEFINECommand"},
    {172, "DRAG_TRAJECTORY", "DragCommand"},
    {173, "READPOSMSG", "READPOSMSGCommand"},
    {174, "CONVEYOR_POS", "CONYTRACKCommand"},
    {175, "POS_STRETCH", "STRETCHCommand"},
    {176, "FEEDWIRE", "ARCCommand"},
    {177, "SPOTWELD", "ARCCommand"},
    {178, "WELDPATHSTART", "PathCommand"},
    {179, "WELDPATHSTOP", "PathCommand"},
    {180, "WELDPATHCOUNT", "PathCommand"},
    {181, "WELDPATHOFFSET", "PathCommand"},
    {182, "STARTOFFSETWELD", "PathCommand"},
    {183, "PH_TOPREVSAFEPOS", "NEWPUNCHCommand"},
    {184, "PH_REPREVSAFEPOS", "NEWPUNCHCommand"},
    {185, "PH_TOLOCALSAFEPOS", "NEWPUNCHCommand"},
    {186, "PH_RELOCALSAFEPOS", "NEWPUNCHCommand"},
    {187, "PH_TOPREVUPPOS", "NEWPUNCHCommand"},
    {188, "PH_REPREVUPPOS", "NEWPUNCHCommand"},
    {189, "PH_TOLOCALUPPOS", "NEWPUNCHCommand"},
    {190, "PH_RELOCALUPPOS", "NEWPUNCHCommand"},
    {191, "PH_REACHPICKPOS", "NEWPUNCHCommand"},
    {192, "PH_REACHDROPPOS", "NEWPUNCHCommand"},
    {193, "PH_DEALBEFOREPICK", "NEWPUNCHCommand"},
    {194, "PH_DEALBEFOREDROP", "NEWPUNCHCommand"},
    {195, "PH_DEALAFTERPICK", "NEWPUNCHCommand"},
    {196, "PH_DEALAFTERDROP", "NEWPUNCHCommand"},
    {197, "PH_FIXTUREOPEN", "NEWPUNCHCommand"},
    {198, "PH_FIXTURECLOSE", "NEWPUNCHCommand"},
    {199, "PH_STARTPUNCH", "NEWPUNCHCommand"},
    {200, "PH_WAITPUNCHDONE", "NEWPUNCHCommand"},
    {201, "PH_WAITDIN", "NEWPUNCHCommand"},
    {202, "PH_DOUT", "NEWPUNCHCommand"},
    {203, "PAL_SET_EXAMPLE", "PALCommand"},
    {204, "PALGRIPPER", "PALCommand"},
    {205, "PH_MULTIPLEPUNON", "NEWPUNCHCommand"},
    {206, "PH_MULTIPLEPUNOFF", "NEWPUNCHCommand"},
    {207, "SETPOSMSG", "SETPOSMSGCommand"},
    {208, "WINDOW", "WINDOWCommand"},
    {209, "PTHREAD_STATE", "PTHREADCommand"},
    {210, "MODBUS_OPEN", "MODBUSCommand"},
    {211, "MODBUS_CLOSE", "MODBUSCommand"},
    {212, "MODBUS_CONNECTION_STATUS", "MODBUSCommand"},
    {213, "MODBUS_READ", "MODBUSCommand"},
    {214, "MODBUS_WRITE", "MODBUSCommand"},
    {215, "CALL_LUAFILE", "Call_luafileCommand"},
    {216, "SWITCHPAYLOAD", "SWICHPAYLOADCommand"},
    {217, "CONVEYOR_REMOVE", "CONYTRACKCommand"},
    {218, "PH_PALON", "PALCommand"},
    {219, "PH_PALOFF", "PALCommand"},
};

} // namespace

const std::vector<InstructionEntry> &instructionTable()
{
    static const std::vector<InstructionEntry> table(std::begin(kEntries), std::end(kEntries));
    return table;
}

const std::vector<int> &typesOfKeyword(std::string_view keyword)
{
    static const auto byKeyword = [] {
        std::unordered_map<std::string_view, std::vector<int>> map;
        for (const InstructionEntry &entry : kEntries) {
            auto &types = map[entry.keyword];
            if (types.empty() || types.back() != entry.type)
                types.push_back(entry.type);
        }
        return map;
    }();
    static const std::vector<int> none;
    const auto it = byKeyword.find(keyword);
    return it == byKeyword.end() ? none : it->second;
}

const std::vector<int> &typesOfLine(std::string_view line)
{
    static const std::size_t longest = [] {
        std::size_t n = 0;
        for (const InstructionEntry &entry : kEntries)
            n = std::max(n, std::char_traits<char>::length(entry.keyword));
        return n;
    }();
    std::string_view word = leadingKeyword(line.substr(0, longest)); // a long line costs no more
    for (; !word.empty(); word.remove_suffix(1)) {
        const std::vector<int> &types = typesOfKeyword(word);
        if (!types.empty())
            return types;
    }
    return typesOfKeyword(word);
}

const char *instructionKeyword(int type, std::size_t variant)
{
    if (variant == 0) {
        // The first word of every type, looked up once: renderers ask for
        // it for every line they write.
        static const auto byType = [] {
            std::array<const char *, kLastType + 1> keywords{};
            for (const InstructionEntry &entry : kEntries) {
                if (entry.type >= 0 && entry.type <= kLastType && !keywords[std::size_t(entry.type)])
                    keywords[std::size_t(entry.type)] = entry.keyword;
            }
            return keywords;
        }();
        return type >= 0 && type <= kLastType ? byType[std::size_t(type)] : nullptr;
    }
    for (const InstructionEntry &entry : kEntries) {
        if (entry.type == type && std::string_view(entry.keyword) != "///" && variant-- == 0)
            return entry.keyword;
    }
    return nullptr;
}

} // namespace qrx
