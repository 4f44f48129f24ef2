#pragma once
// Base of every instruction of a job program. The type code (0 to 219)
// selects the class and the instruction within its family; see
// CommandFactory.h for the table.

#include "job/RobotPos.h"

#include <json/value.h>
#include <string>

namespace qrx {

class Command
{
public:
    explicit Command(int type);
    virtual ~Command();
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    // The job-file text of the instruction, without line end. Pure.
    virtual std::string toString() const;
    // "type", "logout", "userParamInt", "userParamString", then the keys of
    // the family.
    virtual Json::Value toJson() const;
    // Reads "logout", "userParamInt", "userParamString" (the type is fixed
    // by the constructor), then the keys of the family. A missing key reads
    // as 0, false or empty. `table` (may be null) holds the job's positions.
    virtual void fromJson(const Json::Value &json, PositionTable *table);
    // The position the instruction moves to or works with, or null.
    virtual RobotPos *position() const;
    // The name of that position.
    virtual std::string positionId() const;
    // True for the variable declarations INT, DOUBLE and BOOLEAN.
    virtual bool isDeclaration() const;

    const int type;
    bool logout = false; // disabled: stays in the program, renders " DISABLE"
    int userParamInt = 0;
    std::string userParamString;
    std::string text;   // stored text: "NOP" and "END" for the brackets
    int reserved = 0;   // no JSON key

protected:
    // The line with the common tail: " DISABLE" when the instruction is
    // disabled.
    std::string withTail(std::string line) const;
};

// The NOP and END brackets of a job program (type 31) and placeholders:
// base keys only, rendered "#UNKNOWN COMMAND!!".
class DummyCommand : public Command
{
public:
    explicit DummyCommand(int type = 31, std::string storedText = {});
    std::string toString() const override;
};

} // namespace qrx
