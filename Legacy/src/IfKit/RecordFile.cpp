#include "ByteOrder.h"

#include <Legacy/IfKit/RecordFile.h>

#include <boost/crc.hpp>
#include <boost/endian/conversion.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <system_error>
#include <utility>

namespace Legacy::IfKit {

using boost::endian::load_big_u32;
using boost::endian::load_big_u64;
using boost::endian::store_big_u32;
using boost::endian::store_big_u64;

namespace {

// A byte that no text begins with, a name, and a line end of either kind, so that a transfer as text is noticed.
constexpr std::array<unsigned char, 8> k_magic{0x8c, 'L', 'I', 'F', 'R', '\r', '\n', 0x1a};
constexpr unsigned char k_version = 1;
constexpr unsigned char k_littleEndian = 1;
constexpr unsigned char k_bigEndian = 2;
constexpr unsigned char k_nativeOrder =
    boost::endian::order::native == boost::endian::order::little ? k_littleEndian : k_bigEndian;

// Where the fields of the header stand: the magic, the version, the byte order, two zeros.
constexpr std::size_t k_versionOffset = 8;
constexpr std::size_t k_orderOffset = 9;
constexpr std::size_t k_countOffset = 12;
constexpr std::size_t k_sizeOffset = 20;
constexpr std::size_t k_headerCrcOffset = 28;
constexpr std::size_t k_headerSize = 32;

// Of the header of a block: the kind, three zeros, the checksum of the other fields and the body, the body's size.
constexpr std::size_t k_blockCrcOffset = 4;
constexpr std::size_t k_blockSizeOffset = 8;
constexpr std::size_t k_blockHeaderSize = 16;
constexpr unsigned char k_recordBlock = 'R';
constexpr unsigned char k_nameBlock = 'N';

/// A block takes no further entry beyond this size; one that is larger holds a single entry.
constexpr std::size_t k_blockBody = 4096;

constexpr std::size_t k_nameHeaderSize = 8; // id and length

/// What is made room for at once: more is believed as it arrives.
constexpr std::size_t k_chunk = std::size_t{1024} * 1024;

using BlockHeader = std::array<unsigned char, k_blockHeaderSize>;

std::uint32_t Checksum(std::span<unsigned char const> bytes)
{
    boost::crc_32_type crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return crc.checksum();
}

std::uint32_t Checksum(BlockHeader const& header, std::span<unsigned char const> body)
{
    boost::crc_32_type crc;
    crc.process_bytes(header.data(), k_blockCrcOffset);
    crc.process_bytes(header.data() + k_blockSizeOffset, k_blockHeaderSize - k_blockSizeOffset);
    crc.process_bytes(body.data(), body.size());
    return crc.checksum();
}

std::string Hex(std::uint32_t number)
{
    std::ostringstream text;
    text << "0x" << std::hex << number;
    return text.str();
}

std::string Instead(std::string const& what, std::uint64_t expected, std::uint64_t found)
{
    return "expected " + what + ' ' + std::to_string(expected) + ", found " + std::to_string(found);
}

} // namespace

RecordFileWriter::RecordFileWriter(std::string const& path) : m_file(path)
{
    m_file.Write(std::array<unsigned char, k_headerSize>{}); // filled in at the end
}

int RecordFileWriter::Append(If::ItemBase const& item)
{
    Choose_(k_recordBlock);
    std::size_t const start = m_block.size();
    if (int const code = AppendRecord(item, m_block))
        return code;
    ++m_records;
    Close_(start);
    return 0;
}

void RecordFileWriter::AppendName(unsigned int id, std::string_view text)
{
    text = text.substr(0, std::numeric_limits<std::uint32_t>::max());
    Choose_(k_nameBlock);
    std::size_t const start = m_block.size();
    m_block.resize(start + k_nameHeaderSize);
    store_big_u32(m_block.data() + start, id);
    store_big_u32(m_block.data() + start + 4, static_cast<std::uint32_t>(text.size()));
    m_block.insert(m_block.end(), text.begin(), text.end());
    Close_(start);
}

std::optional<FileError_t> RecordFileWriter::Commit()
{
    Choose_(0);
    std::array<unsigned char, k_headerSize> header{};
    std::copy(k_magic.begin(), k_magic.end(), header.begin());
    header[k_versionOffset] = k_version;
    header[k_orderOffset] = k_nativeOrder;
    store_big_u64(header.data() + k_countOffset, m_records);
    store_big_u64(header.data() + k_sizeOffset, m_file.GetSize());
    store_big_u32(header.data() + k_headerCrcOffset, Checksum(std::span(header).first(k_headerCrcOffset)));
    m_file.Rewrite(0, header);
    return m_file.Commit();
}

/// A block has entries of one kind.
void RecordFileWriter::Choose_(unsigned char kind)
{
    if (kind != m_kind && !m_block.empty()) {
        WriteBlock_(m_block);
        m_block.clear();
    }
    m_kind = kind;
}

/// Writes out what stands before the entry that was just appended, if the block grew too large by it.
void RecordFileWriter::Close_(std::size_t start)
{
    if (m_block.size() <= k_blockBody)
        return;
    if (start != 0)
        WriteBlock_(std::span(m_block).first(start));
    m_block.erase(m_block.begin(), m_block.begin() + static_cast<std::ptrdiff_t>(start));
    if (m_block.size() > k_blockBody) {
        WriteBlock_(m_block);
        m_block.clear();
        m_block.shrink_to_fit(); // it may have been huge
    }
}

void RecordFileWriter::WriteBlock_(std::span<unsigned char const> body)
{
    BlockHeader header{m_kind};
    store_big_u64(header.data() + k_blockSizeOffset, body.size());
    store_big_u32(header.data() + k_blockCrcOffset, Checksum(header, body));
    m_file.Write(header);
    m_file.Write(body);
}

RecordFileReader::RecordFileReader(std::string const& path)
    : m_own(std::make_unique<std::ifstream>()), m_in(*m_own), m_name(path)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        Fail_(0, "expected a file, found a directory");
        return;
    }
    errno = 0;
    static_cast<std::ifstream&>(m_in).open(path, std::ios::binary);
    if (m_in)
        ReadHeader_();
    else
        Fail_(0, "cannot be opened: " + std::generic_category().message(errno));
}

RecordFileReader::RecordFileReader(std::istream& in, std::string name) : m_in(in), m_name(std::move(name))
{
    ReadHeader_();
}

RecordFileReader::~RecordFileReader() = default;

std::optional<Record_t> RecordFileReader::Next()
{
    while (auto const entry = NextEntry())
        if (auto const* const record = std::get_if<Record_t>(&*entry))
            return *record;
    return std::nullopt;
}

std::optional<RecordFileEntry> RecordFileReader::NextEntry()
{
    while (!m_error && m_taken == m_block.size())
        if (!ReadBlock_())
            return std::nullopt;
    if (m_error)
        return std::nullopt;
    m_entryOffset = m_offset - (m_block.size() - m_taken);
    return m_kind == k_recordBlock ? TakeRecord_() : TakeName_();
}

void RecordFileReader::ReadHeader_()
{
    std::array<unsigned char, k_headerSize> header{};
    bool const isWhole = Read_(header);
    if (!std::equal(k_magic.begin(), k_magic.end(), header.begin())) {
        m_error.reset(); // a short file is first of all none of these
        Fail_(0, "expected a file of records, which begins with the byte 0x8c and LIFR");
        return;
    }
    if (!isWhole)
        return;
    auto const checksum = load_big_u32(header.data() + k_headerCrcOffset);
    auto const expected = Checksum(std::span(header).first(k_headerCrcOffset));
    unsigned char const order = header[k_orderOffset];
    if (header[k_versionOffset] != k_version)
        Fail_(k_versionOffset, Instead("the version", k_version, header[k_versionOffset]));
    else if (checksum != expected)
        Fail_(k_headerCrcOffset, "expected the checksum " + Hex(expected) + ", found " + Hex(checksum));
    else if (order != k_littleEndian && order != k_bigEndian)
        Fail_(k_orderOffset, "expected the byte order 1 or 2, found " + std::to_string(order));
    m_isForeign = order != k_nativeOrder;
    m_count = load_big_u64(header.data() + k_countOffset);
    m_size = load_big_u64(header.data() + k_sizeOffset);
}

/// Reads and tests one block. False at the end of the file and for an error.
bool RecordFileReader::ReadBlock_()
{
    m_block.clear();
    m_taken = 0;
    std::uint64_t const start = m_offset;
    if (start == m_size && m_records != m_count)
        return Fail_(start, Instead("the number of records", m_count, m_records));
    if (start == m_size)
        return IsAtEnd_() ? false : Fail_(start, "expected the end of the file");
    BlockHeader header{};
    if (!Read_(header))
        return false;
    std::uint64_t const size = load_big_u64(header.data() + k_blockSizeOffset);
    if (size == 0 || m_offset > m_size || size > m_size - m_offset)
        return Fail_(start + k_blockSizeOffset, Instead("a block of 1 to", m_size - std::min(m_offset, m_size), size));
    if (!ReadBody_(size))
        return false;
    auto const checksum = load_big_u32(header.data() + k_blockCrcOffset);
    auto const expected = Checksum(header, m_block);
    if (checksum != expected)
        return Fail_(start + k_blockCrcOffset, "expected the checksum " + Hex(expected) + ", found " + Hex(checksum));
    m_kind = header[0];
    if (m_kind != k_recordBlock && m_kind != k_nameBlock)
        return Fail_(start, "expected a block of records or of names, found the kind " + std::to_string(m_kind));
    return true;
}

/// Room is made for as much as the file turns out to have, whatever its size is said to be.
bool RecordFileReader::ReadBody_(std::uint64_t size)
{
    while (m_block.size() < size) {
        std::size_t const had = m_block.size();
        m_block.resize(had + static_cast<std::size_t>(std::min<std::uint64_t>(size - had, k_chunk)));
        if (!Read_(std::span(m_block).subspan(had))) {
            m_block.clear();
            return false;
        }
    }
    return true;
}

std::optional<RecordFileEntry> RecordFileReader::TakeRecord_()
{
    std::span<unsigned char> const block(m_block);
    RecordReader reader(block.subspan(m_taken));
    auto const record = reader.Next();
    if (!record) {
        Fail_(m_entryOffset, "expected a whole record");
        return std::nullopt;
    }
    if (m_isForeign)
        SwapFloats(block.subspan(m_taken, record->Size()));
    m_taken += record->Size();
    ++m_records;
    return *record;
}

std::optional<RecordFileEntry> RecordFileReader::TakeName_()
{
    auto const rest = std::span<unsigned char const>(m_block).subspan(m_taken);
    std::size_t const length = rest.size() < k_nameHeaderSize ? 0 : load_big_u32(rest.data() + 4);
    if (rest.size() < k_nameHeaderSize || length > rest.size() - k_nameHeaderSize) {
        Fail_(m_entryOffset, "expected a whole name");
        return std::nullopt;
    }
    m_taken += k_nameHeaderSize + length;
    return RecordFileName_t{load_big_u32(rest.data()),
                            {reinterpret_cast<char const*>(rest.data() + k_nameHeaderSize), length}};
}

bool RecordFileReader::Read_(std::span<unsigned char> bytes)
{
    errno = 0;
    m_in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    auto const got = static_cast<std::uint64_t>(m_in.gcount());
    m_offset += got;
    if (got == bytes.size())
        return true;
    if (m_in.bad())
        return Fail_(m_offset, "cannot be read: " + std::generic_category().message(errno));
    return Fail_(m_offset, "expected " + std::to_string(bytes.size() - got) + " more bytes, found the end of the file");
}

bool RecordFileReader::IsAtEnd_() { return m_in.peek() == std::istream::traits_type::eof(); }

bool RecordFileReader::Fail_(std::uint64_t offset, std::string const& reason)
{
    m_error = FileError_t{m_name, offset, reason};
    return false;
}

} // namespace Legacy::IfKit
