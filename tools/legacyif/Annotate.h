#pragma once

#include <Legacy/IfKit/Records.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Command {

/// Some bytes of a record and what they are.
struct Field_t
{
    std::size_t offset; ///< in the record, header included
    std::size_t size;
    std::string label;
    std::string meaning;
};

/// Takes a record apart, members of composites too, as far as it makes sense. Whatever the bytes are, no more than
/// these are read, and the work grows with their number.
/// @param bytes become those of the whole record, which the fields' offsets are in
/// @param expected becomes what should stand where it stops to make sense, or empty
std::vector<Field_t> Annotate(Legacy::IfKit::Record_t const& record, std::vector<unsigned char>& bytes,
                              std::string& expected);

} // namespace Command
