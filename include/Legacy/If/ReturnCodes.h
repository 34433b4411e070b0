#pragma once

namespace Legacy::If {

/// The return codes of every operation that returns `int`: 0 is success, and no other code exists.
/// @{

/// The value has no serial form, or a member of a composite failed to rebuild.
constexpr int IfErrNotSerializable = -1;
/// The numbering space of a section is exhausted.
constexpr int IfErrNoFreeId = -22;
/// A default was offered that is not a member of the allowed set.
constexpr int IfErrNotInSet = -23;
/// No element with that key.
constexpr int IfErrNotFound = -25;
/// The source's type cannot be used here, or the operation does not exist for this family.
constexpr int IfErrTypeNotAssignable = -26;
/// The source pointer of an assignment is null.
constexpr int IfErrNullSource = -31;
/// A required record or holder pointer is null.
constexpr int IfErrNullArgument = -32;
/// The bounds of two schemas of different types cannot be merged.
constexpr int IfErrBoundsTypeMismatch = -36;
/// An element count lies outside the minimum and maximum size of the schema.
constexpr int IfErrSizeOutOfRange = -37;
/// The record or argument does not fit: null output record, wrong id, type, element type or size in a record, unknown
/// type tag, index beyond an array's end, malformed section id.
constexpr int IfErrInvalidArgument = -41;
/// An element with that key is already present.
constexpr int IfErrAlreadyExists = -47;
/// An id-keyed container holds that key already.
constexpr int IfErrDuplicateId = -51;
/// The two ranges to be merged have no common value.
constexpr int IfErrBoundsDisjoint = -55;

/// @}

} // namespace Legacy::If
