#pragma once
// Parameter objects: a numeric instruction parameter that is either a
// constant (value 0, the number in data) or a variable (value non-zero, the
// name in varname). Owned by their instruction.

#include <json/value.h>
#include <memory>
#include <string>

namespace qrx {

class ParaCommand
{
public:
    virtual ~ParaCommand() = default;

    int value = 0;
    double data = 0.0;
    std::string varname;

    // " ACC = " and the constant or the variable name.
    virtual std::string toString() const;
    virtual Json::Value toJson() const;
    virtual void fromJson(const Json::Value &json);

    // The constant or the variable name.
    std::string valueText() const;

protected:
    virtual const char *label() const = 0;
};

class ParaAccCommand : public ParaCommand { protected: const char *label() const override; };
class ParaDecCommand : public ParaCommand { protected: const char *label() const override; };
class ParaPlCommand : public ParaCommand { protected: const char *label() const override; };
class ParaSpinCommand : public ParaCommand { protected: const char *label() const override; };
class ParaSyncCommand : public ParaCommand { protected: const char *label() const override; };
// Writes a single space, then the value.
class ParaTimeCommand : public ParaCommand { protected: const char *label() const override; };

// Speed: " VJ = 50 %", " V = 100 mm/s", " V = VAR1" (a variable carries no
// unit); in unit 0 (" cm/s") the speed writes nothing at all.
class ParaVCommand : public ParaCommand
{
public:
    int m_vUnit = 1;

    std::string toString() const override;
    Json::Value toJson() const override;
    void fromJson(const Json::Value &json) override;

protected:
    const char *label() const override;
};

// One coordinate of a position that may come from a variable.
class ParaVarCommand
{
public:
    int value = 0;
    double data = 0.0;
    std::string varname;
    int secondvalue = 0;

    Json::Value toJson() const;
    void fromJson(const Json::Value &json);
};

} // namespace qrx
