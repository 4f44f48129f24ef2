#include "job/Command.h"

#include "job/FieldTable.h"
#include "job/TextFormat.h"

namespace qrx {

namespace {

// The keys every instruction carries besides "type".
const FieldList<Command> &baseFields()
{
    using C = Command;
    static const FieldList<C> list = {
        {"logout", &C::logout}, {"userParamInt", &C::userParamInt}, {"userParamString", &C::userParamString}};
    return list;
}

} // namespace

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
    writeFields(*this, baseFields(), json);
    return json;
}

void Command::fromJson(const Json::Value &json, PositionTable *table)
{
    readFields(*this, baseFields(), json, table);
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
