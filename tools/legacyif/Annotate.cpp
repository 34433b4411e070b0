#include "Annotate.h"

#include <Legacy/IfKit/TypeNames.h>
#include <Legacy/IfKit/ValueText.h>

#include <boost/endian/conversion.hpp>

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <vector>

namespace Command {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

using Bytes_t = std::span<unsigned char const>;

std::string Hex(unsigned int number, int digits)
{
    std::ostringstream os;
    os << "0x" << std::hex << std::setfill('0') << std::setw(digits) << number;
    return os.str();
}

template<typename Tag>
std::string TagText(Tag tag)
{
    auto const name = NameOf(tag);
    return name.empty() ? Hex(static_cast<unsigned int>(tag), 2) + ", which is not known" : std::string(name);
}

/// What the elements of a payload of numbers are, as the class reads them: the text of the value made of one alone.
std::string NumberText(NumericType_t type, Bytes_t bytes)
{
    boost::intrusive_ptr<ItemBase> item;
    Record_t const one{0, IfType_t::Numeric, type, bytes};
    return one.Rebuild(item) == 0 ? ValueText(*item) : "?";
}

std::size_t WidthOf(NumericType_t type)
{
    constexpr std::size_t k_widths[] = {0, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
    auto const index = static_cast<std::size_t>(type);
    return index < std::size(k_widths) ? k_widths[index] : 0;
}

/// Walks over a record, and into its members by a list of its own and not by calls.
class Annotator
{
public:
    explicit Annotator(Record_t const& record) { Header_(record), m_open.push_back({record, m_offset, 1}); }

    std::vector<Field_t> Run(std::string& expected)
    {
        while (!m_open.empty() && m_expected.empty())
            Step_();
        expected = m_expected;
        return std::move(m_fields);
    }

private:
    /// A record whose payload is being read.
    struct Open_t
    {
        Record_t record;
        std::size_t start;    // of the payload
        unsigned int members; // that are still to come; not known yet at the first step
        bool isCounted = false;
    };

    void Step_()
    {
        auto& open = m_open.back();
        if (open.record.type != IfType_t::Composite) {
            Payload_(open.record);
            m_offset = open.start + open.record.payload.size();
            m_open.pop_back();
            return;
        }
        Bytes_t const rest = open.record.payload.subspan(m_offset - open.start);
        if (!open.isCounted) {
            if (!Expect_(rest.size() >= 2, "2 bytes with the number of members"))
                return;
            open.isCounted = true;
            open.members = boost::endian::load_big_u16(rest.data());
            Add_(2, "members", std::to_string(open.members));
        } else if (open.members-- == 0) {
            m_offset = open.start + open.record.payload.size();
            m_open.pop_back();
        } else
            Member_(rest);
    }

    void Member_(Bytes_t rest)
    {
        RecordReader reader(rest);
        auto const member = reader.Next();
        if (!Expect_(member.has_value(), "the 10 header bytes of a member and its payload"))
            return;
        Header_(*member);
        m_open.push_back({*member, m_offset, 0});
    }

    void Header_(Record_t const& record)
    {
        Add_(4, "id", Hex(record.id, 8));
        Add_(4, "size", std::to_string(record.payload.size()) + (record.payload.size() == 1 ? " byte" : " bytes"));
        Add_(1, "type", TagText(record.type));
        Add_(1, "element", record.numericType == NumericType_t::Undefined ? "none" : TagText(record.numericType));
    }

    void Payload_(Record_t const& record)
    {
        Bytes_t const bytes = record.payload;
        switch (record.type) {
        case IfType_t::Numeric:
        case IfType_t::NumericSparse:
        case IfType_t::NumericArray:
        case IfType_t::Coordinate:
        case IfType_t::Rectangle:
        case IfType_t::RectArray:
            return Numbers_(record.numericType, bytes);
        case IfType_t::Colour:
        case IfType_t::Orientation:
            return Numbers_(NumericType_t::Float, bytes);
        case IfType_t::Enum:
            return Numbers_(NumericType_t::S32, bytes);
        case IfType_t::Bool:
            if (Expect_(bytes.size() == 1, "1 byte"))
                Add_(1, "value", bytes[0] != 0 ? "True" : "False");
            return;
        case IfType_t::BoolArray:
            return Truths_(bytes);
        case IfType_t::String:
        case IfType_t::StringSparse:
        case IfType_t::StringArray:
        case IfType_t::Addr:
        case IfType_t::Endpoint:
            return Texts_(bytes);
        case IfType_t::AppEndpoint:
        case IfType_t::AppEndpointArray:
            return AppEndpoints_(bytes);
        default:
            Expect_(false, "a type whose values travel");
        }
    }

    void Numbers_(NumericType_t type, Bytes_t bytes)
    {
        std::size_t const width = WidthOf(type);
        if (!Expect_(width != 0, "an element type"))
            return;
        for (; bytes.size() >= width; bytes = bytes.subspan(width))
            Add_(width, "number", NumberText(type, bytes.first(width)));
        Expect_(bytes.empty(), "whole numbers of " + std::to_string(width) + " bytes");
    }

    void Truths_(Bytes_t bytes)
    {
        if (!Expect_(!bytes.empty() && bytes[0] < 8, "the number of truths modulo 8"))
            return;
        Add_(1, "remainder", std::to_string(bytes[0]));
        std::size_t const body = bytes.size() - 1;
        for (std::size_t i = 0; i < body; ++i) {
            bool const isLast = i + 1 == body && bytes[0] != 0;
            std::string bits;
            for (int bit = 0; bit < (isLast ? bytes[0] : 8); ++bit)
                bits += (bytes[i + 1] & 0x80 >> bit) != 0 ? '1' : '0';
            Add_(1, "truths", bits);
        }
    }

    bool Text_(Bytes_t& bytes, char const* label)
    {
        auto const zero = std::find(bytes.begin(), bytes.end(), 0);
        if (!Expect_(zero != bytes.end(), "a text that a zero byte ends"))
            return false;
        auto const size = static_cast<std::size_t>(zero - bytes.begin());
        Add_(size + 1, label, '"' + Printable({reinterpret_cast<char const*>(bytes.data()), size}) + '"');
        bytes = bytes.subspan(size + 1);
        return true;
    }

    void Texts_(Bytes_t bytes)
    {
        while (!bytes.empty() && Text_(bytes, "text")) {
        }
    }

    void AppEndpoints_(Bytes_t bytes)
    {
        while (!bytes.empty()) {
            if (!Expect_(bytes.size() >= 6, "6 bytes with a protocol"))
                return;
            Add_(1, "protocol", std::to_string(bytes[0]));
            Add_(1, "group", std::to_string(bytes[1]));
            Add_(2, "version", std::to_string(boost::endian::load_big_u16(bytes.data() + 2)));
            Add_(2, "compatible", std::to_string(boost::endian::load_big_u16(bytes.data() + 4)));
            bytes = bytes.subspan(6);
            if (!Text_(bytes, "endpoint"))
                return;
        }
    }

    void Add_(std::size_t size, std::string label, std::string meaning)
    {
        m_fields.push_back(
            {m_offset, size, std::string(2 * m_open.size(), ' ') + std::move(label), std::move(meaning)});
        m_offset += size;
    }

    bool Expect_(bool holds, std::string const& what)
    {
        if (!holds)
            m_expected = what;
        return holds;
    }

    std::vector<Field_t> m_fields;
    std::vector<Open_t> m_open;
    std::size_t m_offset = 0;
    std::string m_expected;
};

} // namespace

std::vector<Field_t> Annotate(Record_t const& record, std::vector<unsigned char>& bytes, std::string& expected)
{
    bytes.resize(k_recordHeaderSize);
    boost::endian::store_big_u32(bytes.data(), record.id);
    boost::endian::store_big_u32(bytes.data() + 4, static_cast<std::uint32_t>(record.payload.size()));
    bytes[8] = static_cast<unsigned char>(record.type);
    bytes[9] = static_cast<unsigned char>(record.numericType);
    bytes.insert(bytes.end(), record.payload.begin(), record.payload.end());
    auto fields = Annotator(record).Run(expected);
    boost::intrusive_ptr<ItemBase> item;
    if (expected.empty())
        if (int const code = record.Rebuild(item))
            expected = "a record that the library takes (code " + std::to_string(code) + ")";
    return fields;
}

} // namespace Command
