#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <iosfwd>

namespace Legacy::If {

/// Prints one parameter on one line without a line end: the name of the schema in 32 columns, the type in 18, then the
/// value, or the compact form of the schema, or both, each in braces. Longer names and types push the rest to the
/// right.
///
/// Either may be null: without a schema the name column is missing, and with neither nothing is printed. A value that
/// does not belong to the schema by id or type gives a short complaint instead of the line.
///
/// Contract: the stream keeps left alignment and a blank as its fill; callers print their further columns in them.
LEGACY_IF_API void FormattedInfoItemDump(std::ostream& os, boost::intrusive_ptr<InfoBase const> const& info,
                                         boost::intrusive_ptr<ItemBase const> const& item);

} // namespace Legacy::If
