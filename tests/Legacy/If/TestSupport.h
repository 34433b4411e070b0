#pragma once

#include <Legacy/If.h>

#include <boost/endian/conversion.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <iomanip>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

/// What the tests of all families share.
namespace Legacy::If::Test {

using InfoPtr = boost::intrusive_ptr<InfoBase const>;
using ItemPtr = boost::intrusive_ptr<ItemBase const>;
using Info = boost::intrusive_ptr<InfoBase>;
using Item = boost::intrusive_ptr<ItemBase>;
/// Several traits classes, one after the other.
template<typename... Traits>
struct TraitsList
{
    static void ForEach(auto&& call) { (call(Traits()), ...); }
};

using TenTraits = TraitsList<U8Traits, S8Traits, U16Traits, S16Traits, U32Traits, S32Traits, U64Traits, S64Traits,
                             FloatTraits, DoubleTraits>;

using Texts = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

/// A new object, held.
template<typename Object, typename... Arguments>
boost::intrusive_ptr<Object> Make(Arguments&&... arguments)
{
    return boost::intrusive_ptr<Object>(new Object(std::forward<Arguments>(arguments)...));
}

/// A new schema with the id 7, the name "speed" and the permission 0x1234.
template<typename Info, typename... Arguments>
boost::intrusive_ptr<Info> MakeInfo(Arguments&&... arguments)
{
    return Make<Info>(7U, "speed", Permission_t{0x1234}, std::forward<Arguments>(arguments)...);
}

/// A new schema as its constructor makes it.
template<typename Info>
boost::intrusive_ptr<Info> FreshInfo(unsigned int id, std::string const& name, Permission_t const& permission)
{
    if constexpr (std::is_constructible_v<Info, unsigned int, std::string, Permission_t>)
        return Make<Info>(id, name, permission);
    else // an enumeration, which says whether it is localized
        return Make<Info>(id, name, permission, false);
}

/// An application's class that has tags of its own.
template<typename Base>
struct Tagged : Base
{
    using Base::Base;
    IfType_t GetType() const override { return type; }
    NumericType_t GetNumericType() const override { return numericType; }
    IfType_t type = IfType_t::Connection;
    NumericType_t numericType = Base::GetNumericTypeStatic();
};

/// Takes over a raw pointer as it comes from a factory.
template<typename Object>
boost::intrusive_ptr<Object> Hold(Object* object)
{
    return boost::intrusive_ptr<Object>(object);
}

std::string Printed(auto const& object)
{
    std::ostringstream os;
    object.operator<<(os);
    return os.str();
}

std::string Dumped(auto const& object)
{
    std::ostringstream os;
    object.DumpVal(os);
    return os.str();
}

/// The message that a scope heard, key first; empty if there was none.
inline Texts Heard(FindingScope const& scope)
{
    Texts message;
    if (scope.GetMessage().IsValid())
        message.push_back(scope.GetMessage().GetKey());
    for (auto const& argument : scope.GetMessage().GetArguments()) {
        EXPECT_TRUE(Dumped(*argument).starts_with("id: 0\ntype: String\n"));
        message.push_back(argument->GetValAsString());
    }
    return message;
}

/// Runs a validation and returns the message that it built, key first, and empty for a pass. Tests on the way all that
/// every finding has in common.
Texts MessageOf(ItemBase const& item, auto&& validation)
{
    FindingScope const scope;
    std::shared_ptr<ResultElem const> const finding = validation();
    Texts const message = Heard(scope);
    EXPECT_EQ(message.empty(), finding == nullptr);
    if (finding) {
        EXPECT_EQ(static_cast<int>(finding->GetSeverityLevel()), 4);
        EXPECT_EQ(finding->GetInfo(), nullptr);
        EXPECT_EQ(finding->GetAsString(), "");
        EXPECT_NE(finding->GetItem().get(), &item);
        EXPECT_EQ(Dumped(*finding->GetItem()), Dumped(item));
    }
    return message;
}

inline Texts Validated(ItemBase& item, InfoPtr const& info)
{
    return MessageOf(item, [&] { return item.Validate(info); });
}

/// A record in parts.
struct Record
{
    unsigned int id = 0;
    unsigned char type = 0;
    unsigned char numericType = 0;
    Bytes payload;

    /// Hands a borrowed form of the record to `use`, the payload in storage of exactly its size so that a read past its
    /// end is seen.
    auto With(auto&& use) const
    {
        auto const data = std::make_unique<unsigned char[]>(payload.size());
        std::copy(payload.begin(), payload.end(), data.get());
        auto const size = boost::endian::native_to_big(static_cast<std::uint32_t>(payload.size()));
        ItemBase::ConstSerialStruct_t const record{boost::endian::native_to_big(id), size, type, numericType,
                                                   data.get()};
        return use(&record);
    }
};

/// The record that a value writes; fails the test if it writes none.
inline Record RecordOf(ItemBase const& item)
{
    ItemBase::SerialStruct_t written;
    EXPECT_EQ(item.Serialize(&written), 0);
    auto const id = boost::endian::big_to_native(std::uint32_t{written.id});
    auto const size = boost::endian::big_to_native(std::uint32_t{written.size});
    return {id, written.type, written.numericType, Bytes(written.data, written.data + size)};
}

inline int Read(ItemBase& item, Record const& record)
{
    return record.With([&](auto const* r) { return item.Deserialize(r); });
}

/// The static rebuild: the code, and the value where there is one.
inline std::pair<int, boost::intrusive_ptr<ItemBase>> Rebuild(Record const& record)
{
    boost::intrusive_ptr<ItemBase> item;
    int const code = record.With([&](auto const* r) { return ItemBase::Deserialize(r, item); });
    return {code, item};
}

/// What an assignment returned and what it made of the flag.
struct Outcome
{
    int code;
    int changed; // -1 untouched, 0 false, 1 true

    friend bool operator==(Outcome const&, Outcome const&) = default;
    friend void PrintTo(Outcome const& o, std::ostream* os) { *os << '(' << o.code << ", " << o.changed << ')'; }
};

Outcome OutcomeOf(auto&& call)
{
    bool first = false;
    bool second = true;
    int const code = call(&first);
    EXPECT_EQ(code == 0 ? 0 : call(&second), code);
    return {code, code == 0 || first == second ? static_cast<int>(first) : -1};
}

inline Outcome Assign(ItemBase& target, ItemPtr const& source, unsigned int index = 0)
{
    return OutcomeOf([&](bool* changed) { return target.AssignArrayValue(source, index, changed); });
}

inline Outcome Assign(InfoBase& target, InfoPtr const& source)
{
    return OutcomeOf([&](bool* changed) { return target.AssignValue(source, changed); });
}

/// Calls `call` with an object of each of the ten traits classes.
void ForAllTraits(auto&& call) { TenTraits::ForEach(call); }

/// Reads a value from text: whether it was taken, and what was reported.
inline std::pair<bool, std::string> ReadText(ItemBase& item, std::string const& text, InfoPtr const& info = nullptr)
{
    std::istringstream in(text);
    std::ostringstream out;
    bool const taken = item.SetValFromStream(in, out, info);
    return {taken, out.str()};
}

} // namespace Legacy::If::Test
