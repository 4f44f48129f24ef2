#include "JobJson.h"

#include "job/CommandFactory.h"
#include "job/InstructionTable.h"
#include "job/JsonRead.h"
#include "job/LineForms.h"

#include <algorithm>

namespace qrxjob {

using namespace qrx::jsonread;

namespace {

// The keyword of an instruction's line ("POSSUB" for a type-93 line that
// subtracts), from the instruction table: the line's own leading word when
// the table gives it to this type, otherwise the type's first word.
Json::Value keywordOf(const qrx::Command &command)
{
    const std::string line = command.toString();
    const std::string_view lead = qrx::leadingKeyword(line);
    const std::vector<int> &types = qrx::typesOfKeyword(lead);
    if (lead != "///" && std::find(types.begin(), types.end(), command.type) != types.end())
        return std::string(lead);
    const char *keyword = qrx::instructionKeyword(command.type);
    return keyword ? Json::Value(keyword) : Json::Value();
}

} // namespace

Json::Value programToJson(const qrx::JobProgram &program)
{
    Json::Value json(Json::objectValue);
    json["name"] = program.name;
    json["version"] = program.version;
    json["robotType"] = program.robotType;
    json["doubleRobot"] = program.doubleRobot;
    json["date"] = program.date;
    Json::Value positions(Json::arrayValue);
    for (const auto &entry : program.positions.positions())
        positions.append(entry.second->toJson());
    json["positions"] = positions;
    Json::Value named(Json::objectValue), ints(Json::objectValue), floats(Json::objectValue), bools(Json::objectValue);
    for (const auto &[key, value] : program.namedValues)
        named[key] = value;
    for (const auto &[key, value] : program.intVariables)
        ints[key] = value;
    for (const auto &[key, value] : program.floatVariables)
        floats[key] = value;
    for (const auto &[key, value] : program.boolVariables)
        bools[key] = value;
    json["namedValues"] = named;
    json["intVariables"] = ints;
    json["floatVariables"] = floats;
    json["boolVariables"] = bools;
    Json::Value instructions(Json::arrayValue);
    for (std::size_t i = 1; i + 1 < program.instructions.size(); ++i) {
        Json::Value instruction = program.instructions[i]->toJson();
        instruction["keyword"] = keywordOf(*program.instructions[i]); // beside "type"; from-json ignores it
        instructions.append(instruction);
    }
    json["instructions"] = instructions;
    return json;
}

std::unique_ptr<qrx::JobProgram> programFromJson(const Json::Value &json, std::string &error)
{
    if (!json.isObject() || !member(json, "instructions").isArray()) {
        error = "not a job program: an object with an \"instructions\" array is expected";
        return nullptr;
    }
    auto program = std::make_unique<qrx::JobProgram>();
    program->name = readString(json, "name");
    program->version = readString(json, "version");
    program->robotType = readString(json, "robotType");
    program->doubleRobot = readString(json, "doubleRobot");
    program->date = readString(json, "date");
    const Json::Value &positions = member(json, "positions");
    if (positions.isArray()) {
        for (const Json::Value &entry : positions) {
            auto position = std::make_unique<qrx::RobotPos>();
            position->fromJson(entry);
            program->positions.insert(std::move(position));
        }
    }
    const auto names = [&](const char *key) {
        const Json::Value &map = member(json, key);
        return map.isObject() ? map.getMemberNames() : std::vector<std::string>();
    };
    for (const std::string &key : names("namedValues"))
        program->namedValues[key] = toString(json["namedValues"][key]);
    for (const std::string &key : names("intVariables"))
        program->intVariables[key] = toInt(json["intVariables"][key]);
    for (const std::string &key : names("floatVariables"))
        program->floatVariables[key] = toDouble(json["floatVariables"][key]);
    for (const std::string &key : names("boolVariables"))
        program->boolVariables[key] = toBool(json["boolVariables"][key]);
    int index = 0;
    for (const Json::Value &entry : member(json, "instructions")) {
        auto command = qrx::createCommand(entry, &program->positions);
        if (!command) {
            error = "instruction " + std::to_string(index) + " has no creatable type code";
            return nullptr;
        }
        program->insert(std::move(command));
        ++index;
    }
    return program;
}

} // namespace qrxjob
