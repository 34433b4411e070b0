#pragma once

#include "HostReader.h"

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/InfoItemSectionId.h>
#include <Legacy/If/SectionId.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <functional>
#include <string>
#include <vector>

/// What a networked device declares: which kinds of sections there are, and which parameters with which schemas each
/// of them holds.
namespace HostNetwork {

using InfoPtr = boost::intrusive_ptr<Legacy::If::InfoBase>;

/// Makes the schema of a parameter.
using Schema_t = std::function<InfoPtr(unsigned int id, std::string const& name, Legacy::If::Permission_t permission)>;

/// Where a section's values are found.
struct Place_t
{
    std::string folder;    ///< the host's directory with the section's files
    std::string interface; ///< the interface's name; empty for sections that belong to none
};

/// Asks the host for the value of a parameter, as text: once for a plain one, any number of times for a repeated one.
using Source_t = std::function<std::vector<std::string>(HostReader const& host, Place_t const& place)>;

struct Parameter_t
{
    unsigned int number;      ///< in its section, and so part of its id: never changes, never used again
    unsigned int repetitions; ///< how many there may be, under this number and those behind it
    std::string name;
    std::string unit;
    Legacy::If::Permission_t permission;
    Schema_t schema;
    Source_t source;
};

struct SectionKind_t
{
    std::string path;   ///< a level * stands for the name of an interface
    std::string folder; ///< likewise, the host's directory with the values; empty for a section without parameters
    std::vector<Parameter_t> parameters;
};

/// An envelope that gives a schema the unit of its values, which the schema itself has no place for.
class HostInfoHolder : public Legacy::If::InfoHolder
{
public:
    HostInfoHolder(InfoPtr const& info, std::string unit);
    HostInfoHolder* DeepCopy() const override;
    std::string GetUnit() const override;

private:
    std::string m_unit;
};

/// All kinds, a section before those below it.
std::vector<SectionKind_t> const& SectionKinds();

/// The schema of a parameter, in its envelope.
/// @param repetition counted from 0; a repeated parameter has it in its name, counted from 1.
boost::intrusive_ptr<Legacy::If::InfoHolder const> MakeInfo(Legacy::If::InfoItemSectionId const& section,
                                                            Parameter_t const& parameter, unsigned int repetition);

/// The path with the name of the interface in the place of the star; a path without one stays.
std::string WithInterface(std::string path, std::string const& interface);

} // namespace HostNetwork
