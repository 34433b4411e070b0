#include "ByteOrder.h"

#include <Legacy/If/IfType.h>
#include <Legacy/IfKit/Records.h>

#include <boost/endian/conversion.hpp>

#include <algorithm>
#include <cstddef>

namespace Legacy::IfKit {

namespace {

constexpr std::size_t k_countSize = 2; // of a composite's members

/// The width of the floating-point numbers that a payload consists of; 0 if it has none.
std::size_t FloatWidth(If::IfType_t type, If::NumericType_t numericType)
{
    switch (type) {
    case If::IfType_t::Colour:
    case If::IfType_t::Orientation:
        return sizeof(float);
    case If::IfType_t::Numeric:
    case If::IfType_t::NumericArray:
    case If::IfType_t::NumericSparse:
    case If::IfType_t::Coordinate:
    case If::IfType_t::Rectangle:
        if (numericType == If::NumericType_t::Float)
            return sizeof(float);
        return numericType == If::NumericType_t::Double ? sizeof(double) : 0;
    default:
        return 0;
    }
}

} // namespace

void SwapFloats(std::span<unsigned char> record)
{
    // The members of a composite stand behind its count, and what follows it stands behind them: going into one is
    // stepping over its header alone, and coming out takes no step at all.
    while (record.size() >= k_recordHeaderSize) {
        auto const type = static_cast<If::IfType_t>(record[8]);
        std::size_t const size = boost::endian::load_big_u32(record.data() + 4);
        std::size_t const width = FloatWidth(type, static_cast<If::NumericType_t>(record[9]));
        auto rest = record.subspan(k_recordHeaderSize);
        auto payload = rest.first(std::min(size, rest.size()));
        for (; width != 0 && payload.size() >= width; payload = payload.subspan(width))
            std::reverse(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(width));
        std::size_t const step = type == If::IfType_t::Composite ? k_countSize : size;
        record = rest.subspan(std::min(step, rest.size()));
    }
}

} // namespace Legacy::IfKit
