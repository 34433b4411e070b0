#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>
#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

/// What devices and controllers know beforehand: the kinds of devices there are, and the sections and schemas that a
/// device of a kind has. Schemas do not travel, so both sides build them from here and then agree about every id.
namespace Fleet {

using InfoPtr = boost::intrusive_ptr<Legacy::If::InfoBase>;
using ItemPtr = boost::intrusive_ptr<Legacy::If::ItemBase>;

/// The kinds by name.
std::vector<std::string> Kinds();

/// Sections and schemas of a device of that kind; null for an unknown one.
std::shared_ptr<Legacy::If::InfoItemDirectoryDelta> BuildModel(std::string const& kind);

/// Whether controllers may set the parameter: a meaning that this application gives to the permission of a schema.
bool IsWritable(Legacy::If::InfoBase const& info);

/// Makes a value for the schema from text, as `SetValFromStream` reads it; a choice may also be given by its name.
/// @return null with `error` set if the text is no such value. Bounds are not tested.
ItemPtr ReadValue(InfoPtr const& info, std::string const& text, std::string& error);

} // namespace Fleet
