#include "job/Command.h"

#include "job/JsonRead.h"
#include "job/TextFormat.h"

namespace qrx {

using namespace jsonread;

Command::Command(int type)
    : type(type)
{
}

Command::~Command() = default;

std::string Command::toString() const
{
    return {};
}

Json::Value Command::toJson() const
{
    Json::Value json(Json::objectValue);
    json["type"] = type;
    json["logout"] = logout;
    json["userParamInt"] = userParamInt;
    json["userParamString"] = userParamString;
    return json;
}

void Command::fromJson(const Json::Value &json, PositionTable *)
{
    logout = readBool(json, "logout");
    userParamInt = readInt(json, "userParamInt");
    userParamString = readString(json, "userParamString");
}

RobotPos *Command::position() const
{
    return nullptr;
}

std::string Command::positionId() const
{
    return {};
}

bool Command::isDeclaration() const
{
    return false;
}

std::string Command::withTail(std::string line) const
{
    if (logout)
        line += " DISABLE";
    return line;
}

DummyCommand::DummyCommand(int type, std::string storedText)
    : Command(type)
{
    text = std::move(storedText);
}

std::string DummyCommand::toString() const
{
    return withTail(kUnknownCommandText);
}

} // namespace qrx
