// Reads a file of records. The first byte chooses: the rest is such a file as it stands, or the body of its only block,
// of records or of names, written here or on a machine of the other byte order; checksums would keep most inputs from
// getting any further. Whatever is given out must lie in order in the file, and become values or be refused.

#include "Input.h"

#include <Legacy/IfKit/RecordFile.h>
#include <Legacy/IfKit/ValueText.h>

#include <boost/crc.hpp>
#include <boost/endian/conversion.hpp>

#include <sstream>

using namespace Legacy;
using namespace Legacy::IfKit;

namespace {

std::uint32_t Checksum(std::string const& bytes)
{
    boost::crc_32_type crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return crc.checksum();
}

template<typename Number>
std::string Big(Number number)
{
    boost::endian::native_to_big_inplace(number);
    return std::string(reinterpret_cast<char const*>(&number), sizeof(number));
}

/// A whole file round the body of a block.
std::string Seal(char kind, bool foreign, std::string const& body, std::uint64_t records)
{
    std::string const fields = std::string(1, kind) + std::string(3, '\0');
    std::string const size = Big<std::uint64_t>(body.size());
    std::string const block = fields + Big(Checksum(fields + size + body)) + size + body;
    bool const isLittle = boost::endian::order::native == boost::endian::order::little;
    std::string header("\x8cLIFR\r\n\x1a\1", 9);
    header += isLittle == foreign ? '\2' : '\1';
    header += std::string(2, '\0') + Big(records) + Big<std::uint64_t>(32 + block.size());
    return header + Big(Checksum(header)) + block;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    unsigned char const mode = input.Byte();
    std::string const rest = input.Rest();
    std::istringstream in(mode == 0 ? rest : Seal(mode & 1 ? 'R' : 'N', mode & 2, rest, mode >> 2));
    RecordFileReader reader(in, "fuzz");
    std::uint64_t last = 0;
    while (auto const entry = reader.NextEntry()) {
        Require(reader.GetOffset() > last && reader.GetOffset() < in.str().size());
        last = reader.GetOffset();
        boost::intrusive_ptr<If::ItemBase> item;
        if (auto const* const record = std::get_if<Record_t>(&*entry))
            Require((record->Rebuild(item) == 0) == (item != nullptr));
        if (item)
            ValueText(*item);
    }
    Require(!reader.NextEntry());
    if (reader.GetError())
        Require(!reader.GetError()->ToText().empty());
    return 0;
}
