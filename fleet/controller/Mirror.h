#pragma once

#include "common/Wire.h"
#include "device/Model.h"

#include <Legacy/If/InfoItemDirectory.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace Fleet {

/// The directory of a device as the controller has it. Values come in through deltas, and the hook tells what changed.
class Mirror : private Legacy::If::InfoItemDirectory
{
public:
    enum class Outcome_t
    {
        Applied,
        Known,   ///< not newer than what is here
        Foreign, ///< not a value that this parameter of the device could have
    };

    /// A device without values yet.
    /// @param kind one of #Kinds
    Mirror(std::string const& device, std::string const& kind);

    std::string const& Kind() const noexcept { return m_kind; }

    /// Takes over a value that arrived for the parameter with that path, unless it is old or does not fit.
    Outcome_t Apply(std::string const& path, ValueMessage const& message);

    /// The schema of a parameter, or null.
    boost::intrusive_ptr<Legacy::If::InfoHolder const> Find(std::string const& path) const;

    /// Whether there is a value for each parameter.
    bool IsComplete() const;

    /// Prints all parameters, one to a line.
    void Show(std::ostream& out) const;

private:
    void ItemChanged_(boost::intrusive_ptr<Legacy::If::ItemHolder const> const& former,
                      boost::intrusive_ptr<Legacy::If::InfoItemHolder const> const& parameter) override;

    std::string m_device;
    std::string m_kind;
    std::map<unsigned int, std::uint64_t> m_sequences; // by the id of the parameter
};

} // namespace Fleet
