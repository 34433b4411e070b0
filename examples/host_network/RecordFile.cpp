#include "RecordFile.h"

#include "common/RecordBytes.h"

#include <boost/crc.hpp>
#include <boost/endian/conversion.hpp>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

namespace HostNetwork {

namespace {

using namespace Legacy::If;
using namespace std::string_view_literals;

using Bytes_t = std::vector<unsigned char>;
using View_t = std::span<unsigned char const>;

constexpr std::string_view k_magic = "HOSTNET\0"sv;
constexpr std::uint32_t k_version = 1;
constexpr std::size_t k_headerSize = 10; // of a record
constexpr std::size_t k_sizeOffset = 4;  // of the payload's size in that header
constexpr std::size_t k_maxFileSize = 64 * 1024 * 1024;

[[noreturn]] void Fail(std::string const& path, std::string const& reason)
{
    throw RecordFileError("record file '" + path + "': " + reason);
}

std::string SystemText(int error) { return std::generic_category().message(error); }

std::uint32_t Checksum(View_t bytes)
{
    boost::crc_32_type crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return crc.checksum();
}

template<typename Number>
void Append(Bytes_t& bytes, Number number)
{
    std::size_t const end = bytes.size();
    bytes.resize(end + sizeof(number));
    boost::endian::native_to_big_inplace(number);
    std::memcpy(bytes.data() + end, &number, sizeof(number));
}

/// Takes numbers and texts off the front of a file's bytes, and never more than there are.
class Reader
{
public:
    explicit Reader(View_t bytes) : m_rest(bytes) {}

    View_t Take(std::size_t size)
    {
        if (size > m_rest.size())
            throw std::length_error("it ends too early");
        View_t const taken = m_rest.first(size);
        m_rest = m_rest.subspan(size);
        return taken;
    }

    template<typename Number>
    Number TakeNumber()
    {
        Number number;
        std::memcpy(&number, Take(sizeof(number)).data(), sizeof(number));
        return boost::endian::big_to_native(number);
    }

    bool IsEmpty() const { return m_rest.empty(); }

private:
    View_t m_rest;
};

SectionId TakeSection(Reader& reader)
{
    auto const id = reader.TakeNumber<std::uint32_t>();
    auto const length = reader.TakeNumber<std::uint16_t>();
    View_t const path = reader.Take(length);
    SectionId const section(std::string(path.begin(), path.end()), InfoItemSectionId(id));
    if (!section.IsValid())
        throw std::invalid_argument("a section's path and id do not agree");
    return section;
}

boost::intrusive_ptr<ItemBase> TakeItem(Reader& reader)
{
    Reader header(reader);
    header.Take(k_sizeOffset);
    auto const payload = header.TakeNumber<std::uint32_t>();
    boost::intrusive_ptr<ItemBase> item;
    if (int const code = Examples::ReadRecord(reader.Take(k_headerSize + std::size_t{payload}), item))
        throw std::invalid_argument("the library refuses a record with code " + std::to_string(code));
    return item;
}

Bytes_t ReadBytes(std::string const& path)
{
    std::error_code error;
    auto const status = std::filesystem::status(path, error);
    if (error)
        Fail(path, error.message());
    if (!std::filesystem::is_regular_file(status))
        Fail(path, "not a file");
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        Fail(path, "cannot be opened: " + SystemText(errno));
    Bytes_t bytes;
    for (char block[4096]; file.read(block, sizeof(block)), file.gcount() > 0;) {
        bytes.insert(bytes.end(), block, block + file.gcount());
        if (bytes.size() > k_maxFileSize)
            Fail(path, "too large");
    }
    if (file.bad())
        Fail(path, "cannot be read: " + SystemText(errno));
    return bytes;
}

Records_t TakeAll(Reader& reader)
{
    if (auto const version = reader.TakeNumber<std::uint32_t>(); version != k_version)
        throw std::invalid_argument("version " + std::to_string(version) + " of the format is not known");
    auto const numSections = reader.TakeNumber<std::uint32_t>();
    auto const numItems = reader.TakeNumber<std::uint32_t>();
    Records_t records; // grows with what is there, whatever the two numbers claim
    for (std::uint32_t i = 0; i < numSections; ++i)
        records.sections.push_back(TakeSection(reader));
    for (std::uint32_t i = 0; i < numItems; ++i)
        records.items.push_back(TakeItem(reader));
    if (!reader.IsEmpty())
        throw std::invalid_argument("there are bytes behind the last record");
    return records;
}

} // namespace

Records_t TakeRecords(Device const& device)
{
    Records_t records;
    records.sections = device.GetSections();
    std::vector<Device::Parameter_t> parameters;
    device.GetAllInfoItems(parameters);
    for (auto const& parameter : parameters) {
        if (parameter->GetItem())
            records.items.push_back(parameter->GetItem()->GetItem());
    }
    return records;
}

std::size_t WriteRecordFile(std::string const& path, Records_t const& records)
{
    Bytes_t bytes(k_magic.begin(), k_magic.end());
    Append(bytes, k_version);
    Append(bytes, static_cast<std::uint32_t>(records.sections.size()));
    Append(bytes, static_cast<std::uint32_t>(records.items.size()));
    for (auto const& section : records.sections) {
        std::string const& name = section.GetSectionName();
        if (name.size() > std::numeric_limits<std::uint16_t>::max())
            Fail(path, "the path of a section is too long");
        Append(bytes, static_cast<std::uint32_t>(section.GetInfoItemSectionId()));
        Append(bytes, static_cast<std::uint16_t>(name.size()));
        bytes.insert(bytes.end(), name.begin(), name.end());
    }
    for (auto const& item : records.items) {
        if (int const code = Examples::AppendRecord(*item, bytes))
            Fail(path, "a value has no record, code " + std::to_string(code));
    }
    Append(bytes, Checksum(bytes));

    errno = 0;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file ||
        !file.write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size())).flush())
        Fail(path, "cannot be written: " + SystemText(errno));
    return bytes.size();
}

Records_t ReadRecordFile(std::string const& path)
{
    Bytes_t const bytes = ReadBytes(path);
    if (!std::equal(k_magic.begin(), k_magic.end(), bytes.begin(),
                    bytes.begin() + static_cast<std::ptrdiff_t>(std::min(bytes.size(), k_magic.size()))))
        Fail(path, "not a record file of this program");
    if (bytes.size() < k_magic.size() + sizeof(std::uint32_t))
        Fail(path, "damaged: it ends too early");
    View_t const body = View_t(bytes).first(bytes.size() - sizeof(std::uint32_t));
    if (Reader(View_t(bytes).subspan(body.size())).TakeNumber<std::uint32_t>() != Checksum(body))
        Fail(path, "damaged: the checksum does not fit the contents");
    // A checksum keeps accidents out, not malice: what it covers is read with the same care.
    try {
        Reader reader(body.subspan(k_magic.size()));
        return TakeAll(reader);
    } catch (std::logic_error const& error) {
        Fail(path, std::string("damaged: ") + error.what());
    }
}

TemporaryFile::TemporaryFile()
{
    std::error_code error;
    std::filesystem::path const folder = std::filesystem::temp_directory_path(error);
    if (error)
        throw RecordFileError("no directory for temporary files: " + error.message());
    m_path = (folder / "host_network-XXXXXX").string();
    int const file = ::mkstemp(m_path.data());
    if (file < 0)
        Fail(m_path, "cannot be made: " + SystemText(errno));
    ::close(file);
}

TemporaryFile::~TemporaryFile() { ::unlink(m_path.c_str()); }

} // namespace HostNetwork
