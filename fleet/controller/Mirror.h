#pragma once

#include "common/Schemas.h"
#include "common/Wire.h"

#include <Legacy/If/InfoItemDirectory.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Fleet {

/// The directory of a device as the controller has it. Values come in through #Apply, and a function is told what
/// changed.
class Mirror : private Legacy::If::InfoItemDirectory
{
public:
    using ParameterPtr = boost::intrusive_ptr<Legacy::If::InfoItemHolder const>;

    enum class Outcome_t
    {
        Applied,
        Known,   ///< not newer than what is here
        Stale,   ///< of another session of the device
        Foreign, ///< not a value that this parameter of the device could have
    };

    /// Is told of each value that is new or differs from the former one, which is null for the first.
    using Listener = std::function<void(ParameterPtr const& parameter, ItemPtr const& former)>;

    /// A device without values yet.
    Mirror(SchemasPtr schemas, Listener listener);

    /// A session of the device begins, or goes on. Values stay until newer ones come.
    /// @param first the sequence number that all of the session are above
    /// @return false for an earlier session than the one at hand, which is passed over.
    bool Begin(std::uint64_t lineage, std::uint64_t first);

    /// Takes over a value that arrived for the parameter with that path, unless it is old or does not fit.
    Outcome_t Apply(std::string const& path, ValueMessage const& message);

    SchemasPtr const& Schemas() const noexcept { return m_schemas; }
    Legacy::If::InfoItemDirectory const& Directory() const noexcept { return *this; }

    /// Whether there is a value of this session for each parameter that has any.
    bool IsComplete() const noexcept { return m_fresh == m_sequences.size(); }
    /// Whether all values are those that the device has summed up.
    bool Agrees(TotalMessage const& total) const noexcept;
    /// Whether the sum is of an earlier time or session, so that it tells nothing.
    bool IsAhead(TotalMessage const& total) const noexcept;

private:
    void ItemChanged_(boost::intrusive_ptr<Legacy::If::ItemHolder const> const& former,
                      ParameterPtr const& parameter) override;

    SchemasPtr m_schemas;
    Listener m_listener;
    std::vector<std::uint64_t> m_sequences; // in the order of the schemas' ids; 0 while there is none
    std::uint64_t m_lineage = 0;
    std::uint64_t m_first = 0;
    std::uint64_t m_last = 0;
    std::uint64_t m_sum = 0;
    std::size_t m_fresh = 0; // how many are of this session
};

} // namespace Fleet
