#pragma once
// The position object of an instruction (JSON key "RobotPos") and the job's
// position table, which owns the positions of the job file by name.

#include "job/ParaCommand.h"

#include <array>
#include <json/value.h>
#include <map>
#include <memory>
#include <string>

namespace qrx {

class RobotPos
{
public:
    static constexpr int kCoordinates = 21;

    std::string key; // the position's name
    int ctype = 0;   // coordinate type
    std::array<double, kCoordinates> data{};
    // Per coordinate, the variable it comes from (null: a constant).
    std::array<std::unique_ptr<ParaVarCommand>, kCoordinates> paraVarData;

    // {"ctype", "data": 21 numbers, "key", "paraVarData": sparse array whose
    // entry i (when present) is the variable of coordinate i, its data set to
    // the coordinate's value}.
    Json::Value toJson() const;
    void fromJson(const Json::Value &json);
};

// Positions of one job by name, in name order; the table owns them. It must
// outlive the instructions that share its positions (the job program holds
// both and destroys its instructions first).
class PositionTable
{
public:
    RobotPos *find(const std::string &name) const;
    // Takes the position under its own name and returns it; when the name is
    // already held, the held position stays (instructions may share it) and
    // is returned.
    RobotPos *insert(std::unique_ptr<RobotPos> position);
    std::size_t size() const { return m_positions.size(); }
    const std::map<std::string, std::unique_ptr<RobotPos>> &positions() const { return m_positions; }

private:
    std::map<std::string, std::unique_ptr<RobotPos>> m_positions;
};

// How an instruction holds its position: shared with the table (`owned`
// empty) or its own (read with "noFile" true). `pos` is null when there is
// none.
struct PositionRef
{
    RobotPos *pos = nullptr;
    std::unique_ptr<RobotPos> owned;

    bool isOwned() const { return owned != nullptr; }
    void reset() { pos = nullptr; owned.reset(); }
    // Shares a position of the table.
    void share(RobotPos *position) { owned.reset(); pos = position; }
    // Takes a position of the instruction's own.
    void own(std::unique_ptr<RobotPos> position) { owned = std::move(position); pos = owned.get(); }

    // "RobotPos" of the instruction's JSON: the position's object with
    // "noFile" true when the instruction owns it; null without a position.
    Json::Value toJson() const;
    // The position rules: nothing without "RobotPos"; with "noFile" true a
    // position of its own; otherwise the table's position of that name,
    // read into the table when it is not there yet (nothing without table).
    void fromJson(const Json::Value &robotPos, PositionTable *table);
};

} // namespace qrx
