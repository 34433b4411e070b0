#pragma once

#include <boost/crc.hpp>
#include <boost/endian/conversion.hpp>

#include <cstdint>
#include <string>

inline std::uint32_t Checksum(std::string const& bytes)
{
    boost::crc_32_type crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return crc.checksum();
}

std::string Big(auto number)
{
    boost::endian::native_to_big_inplace(number);
    return std::string(reinterpret_cast<char const*>(&number), sizeof(number));
}

/// A file round the body of its only block, of records or names, written here or with the other byte order.
inline std::string Seal(char kind, bool foreign, std::string const& body, std::uint64_t records)
{
    std::string const fields = std::string(1, kind) + std::string(3, '\0');
    std::string const size = Big(std::uint64_t{body.size()});
    std::string const block = fields + Big(Checksum(fields + size + body)) + size + body;
    bool const isLittle = boost::endian::order::native == boost::endian::order::little;
    std::string header("\x8cLIFR\r\n\x1a\1", 9);
    header += isLittle == foreign ? '\2' : '\1';
    header += std::string(2, '\0') + Big(records) + Big(std::uint64_t{32 + block.size()});
    return header + Big(Checksum(header)) + block;
}
