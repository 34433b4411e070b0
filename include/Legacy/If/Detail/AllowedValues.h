#pragma once

#include <Legacy/If/ReturnCodes.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace Legacy::If::Detail {

/// What a sparse schema holds: a table of the allowed values, in the order given, and a default. A plain value.
///
/// The table binds the default where it is set through #SetDefault or #SetTable; whoever changes the table or the
/// default directly answers for that. `Same` tells which values are equal.
template<typename Value, auto Same = std::equal_to<>()>
class AllowedValues
{
public:
    std::vector<Value>& Table() noexcept { return m_table; }
    std::vector<Value> const& Table() const noexcept { return m_table; }
    Value& Default() noexcept { return m_default; }
    Value const& Default() const noexcept { return m_default; }
    unsigned int Size() const noexcept { return static_cast<unsigned int>(m_table.size()); }

    bool IsPresent(Value const& value) const { return Holds_(m_table, value); }

    /// @return 0; #IfErrNotInSet, and nothing stored, for a value that the table does not hold.
    int SetDefault(Value value)
    {
        if (!IsPresent(value))
            return IfErrNotInSet;
        m_default = std::move(value);
        return 0;
    }

    /// Replaces the table. A default that is not in it becomes its first value, or nothing in an empty one.
    void SetTable(std::vector<Value> table)
    {
        if (table.empty())
            m_default = Value();
        else if (!Holds_(table, m_default))
            m_default = table.front(); // first, so that nothing has changed if there is no memory for it
        m_table = std::move(table);
    }

    /// The value if it is allowed, otherwise the default.
    Value AllowedOrDefault(Value value) const
    {
        if (!IsPresent(value))
            return m_default;
        return value;
    }

private:
    static bool Holds_(std::vector<Value> const& table, Value const& value)
    {
        return std::any_of(table.begin(), table.end(), [&value](Value const& allowed) { return Same(allowed, value); });
    }

    std::vector<Value> m_table;
    Value m_default{};
};

} // namespace Legacy::If::Detail
