#pragma once

#include <span>

namespace Legacy::IfKit {

/// Turns the bytes of each floating-point number in one whole record round, also in members at any depth. All else in a
/// record is big-endian everywhere; these numbers stand as the machine has them that wrote the record.
void SwapFloats(std::span<unsigned char> record);

} // namespace Legacy::IfKit
