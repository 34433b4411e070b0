#pragma once

namespace Legacy::If {

/// The type tag of a family: which kind of parameter a schema describes or a value is. One byte of a serial record.
enum class IfType_t : int
{
    Undefined = 0,
    Bool = 1,
    Numeric = 2,
    NumericArray = 3,
    NumericSparse = 4,
    Enum = 5,
    String = 6,
    StringArray = 7,
    BoolArray = 8,
    StringSparse = 9,
    Colour = 0x80,
    Coordinate = 0x81,
    Rectangle = 0x82,
    Orientation = 0x83,
    Addr = 0x86,
    LocalizedString = 0x87,
    Endpoint = 0x88,
    AppEndpoint = 0x89,
    Connection = 0x8a, ///< has a text but no class
    AppEndpointArray = 0x8c,
    RectArray = 0x8d,
    Extended = 0xfc,
    Composite = 0xfd,
    Collection = 0xfe,
};

/// The element tag of the numeric families; `Undefined` for all others. One byte of a serial record.
enum class NumericType_t : int
{
    Undefined = 0,
    U8 = 1,
    S8 = 2,
    U16 = 3,
    S16 = 4,
    U32 = 5,
    S32 = 6,
    U64 = 7,
    S64 = 8,
    Float = 9,
    Double = 10,
};

} // namespace Legacy::If
