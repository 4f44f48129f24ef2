#pragma once
// The JSON keys of an object of the job model, each bound to the member that
// holds it. One table per class drives its toJson and fromJson: the
// instructions through FieldCommand (which also adds the common tail to their
// line), the parameter objects and conditions through writeFields and
// readFields.

#include "job/Command.h"
#include "job/Condition.h"
#include "job/JsonRead.h"
#include "job/ParaCommand.h"
#include "job/RobotPos.h"
#include "job/TextFormat.h"

#include <initializer_list>
#include <memory>
#include <type_traits>
#include <variant>
#include <vector>

namespace qrx {

template <class C>
struct Field
{
    using Member = std::variant<int C::*, double C::*, bool C::*, std::string C::*, Json::Value C::*,
                                std::unique_ptr<ParaVCommand> C::*, std::unique_ptr<ParaAccCommand> C::*,
                                std::unique_ptr<ParaDecCommand> C::*, std::unique_ptr<ParaPlCommand> C::*,
                                std::unique_ptr<ParaTimeCommand> C::*, std::unique_ptr<ParaSpinCommand> C::*,
                                std::unique_ptr<ParaSyncCommand> C::*, CommandConditionFINAL C::*,
                                PositionRef C::*>;

    // `member` may belong to a base class of C.
    template <class M, class B>
    Field(const char *key, M B::*member)
        : key(key), member(static_cast<M C::*>(member))
    {
    }
    // A parameter object that falls back to the flat key of the older form
    // when its own key is missing.
    template <class M, class B>
    Field(const char *key, const char *flatKey, M B::*member)
        : key(key), flatKey(flatKey), member(static_cast<M C::*>(member))
    {
    }

    const char *key;
    const char *flatKey = nullptr;
    Member member;
};

template <class C>
using FieldList = std::vector<Field<C>>;

// The fields of `first`, then those of `second`.
template <class C>
FieldList<C> joinFields(FieldList<C> first, const FieldList<C> &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

namespace detail {

template <class T>
struct IsUniquePtr : std::false_type {};
template <class T>
struct IsUniquePtr<std::unique_ptr<T>> : std::true_type {};

} // namespace detail

// Writes the fields of `object` into `json`.
template <class C>
void writeFields(const C &object, const FieldList<C> &fields, Json::Value &json)
{
    for (const Field<C> &field : fields) {
        std::visit([&](auto member) {
            using M = std::decay_t<decltype(object.*member)>;
            const M &value = object.*member;
            if constexpr (detail::IsUniquePtr<M>::value)
                json[field.key] = value ? value->toJson() : Json::Value();
            else if constexpr (std::is_same_v<M, CommandConditionFINAL> || std::is_same_v<M, PositionRef>)
                json[field.key] = value.toJson();
            else
                json[field.key] = value;
        }, field.member);
    }
}

// Reads the fields of `object` from `json` (a missing or odd value reads as
// 0, false or empty); positions go through `table`.
template <class C>
void readFields(C &object, const FieldList<C> &fields, const Json::Value &json, PositionTable *table = nullptr)
{
    using namespace jsonread;
    for (const Field<C> &field : fields) {
        const Json::Value &value = member(json, field.key);
        std::visit([&](auto memberPtr) {
            auto &target = object.*memberPtr;
            using M = std::decay_t<decltype(target)>;
            if constexpr (std::is_same_v<M, int>) {
                target = toInt(value);
            } else if constexpr (std::is_same_v<M, double>) {
                target = toDouble(value);
            } else if constexpr (std::is_same_v<M, bool>) {
                target = toBool(value);
            } else if constexpr (std::is_same_v<M, std::string>) {
                target = jsonread::toString(value);
            } else if constexpr (std::is_same_v<M, Json::Value>) {
                target = value;
            } else if constexpr (detail::IsUniquePtr<M>::value) {
                target = std::make_unique<typename M::element_type>();
                if (value.isObject()) {
                    target->fromJson(value);
                } else if (field.flatKey) {
                    target->data = readDouble(json, field.flatKey);
                }
            } else if constexpr (std::is_same_v<M, CommandConditionFINAL>) {
                target.fromJson(value);
            } else {
                static_assert(std::is_same_v<M, PositionRef>);
                target.fromJson(value, table);
            }
        }, field.member);
    }
}

// Implements toJson and fromJson of Derived from Derived::fields(), after
// those of Base (Command, or TimerCommand for WaitCommand), and toString from
// Derived::body(): the line without its tail, empty for a type code the
// class does not know (the line then reads "#UNKNOWN COMMAND!!").
template <class Derived, class Base = Command>
class FieldCommand : public Base
{
public:
    using Base::Base;

    std::string toString() const override
    {
        std::string line = static_cast<const Derived &>(*this).body();
        if (line.empty())
            line = kUnknownCommandText;
        return this->withTail(std::move(line));
    }

    Json::Value toJson() const override
    {
        Json::Value json = Base::toJson();
        writeFields(static_cast<const Derived &>(*this), Derived::fields(), json);
        return json;
    }

    void fromJson(const Json::Value &json, PositionTable *table) override
    {
        Base::fromJson(json, table);
        readFields(static_cast<Derived &>(*this), Derived::fields(), json, table);
    }
};

} // namespace qrx
