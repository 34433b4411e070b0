#pragma once

#include <Legacy/If/ItemBase.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <span>
#include <vector>

namespace Examples {

/// Appends the record of a value as it travels: ten header bytes and the payload.
/// @return 0; the code of `Serialize` for a value without a serial form, with `bytes` as they were.
int AppendRecord(Legacy::If::ItemBase const& item, std::vector<unsigned char>& bytes);

/// Rebuilds the value from bytes that are one whole record and nothing else. They may come from anywhere.
/// @return 0; otherwise a code of the library, with `item` untouched.
int ReadRecord(std::span<unsigned char const> bytes, boost::intrusive_ptr<Legacy::If::ItemBase>& item);

} // namespace Examples
