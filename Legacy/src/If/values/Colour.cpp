#include "convert/Change.h"
#include "record/NumberTuple.h"
#include "text/Text.h"

#include <Legacy/If/Colour.h>

#include <array>
#include <utility>

namespace Legacy::If {

namespace {

using Parts = std::array<float, 4>;

constexpr Parts PartsOf(Orlek::Colour_t const& colour) noexcept { return {colour.a, colour.r, colour.g, colour.b}; }

constexpr std::uint32_t PackByte(float component) noexcept
{
    // A double holds the product exactly.
    return static_cast<std::uint8_t>(Detail::Truncate<std::int64_t>(double{component} * 255.0));
}

constexpr std::uint32_t PackARGB(Orlek::Colour_t const& colour) noexcept
{
    return PackByte(colour.a) << 24 | PackByte(colour.r) << 16 | PackByte(colour.g) << 8 | PackByte(colour.b);
}

void PrintColour(std::ostream& os, Orlek::Colour_t const& colour)
{
    Detail::PrintList(os, PartsOf(colour), [](std::ostream& to, float part) { to << part; });
}

} // namespace

ColourInfo::ColourInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : InfoFamily(id, name, permission)
{}

ColourInfo* ColourInfo::DeepCopy(unsigned int id, std::string const& name, Permission_t const& permission) const
{
    return CopyAs_(id, name, permission);
}

ItemBase* ColourInfo::CreateItem() const
{
    auto item = std::make_unique<ColourItem>(GetId());
    item->SetVal(m_default);
    return item.release();
}

std::uint32_t ColourInfo::GetMinARGB() const noexcept { return PackARGB(m_min); }

std::uint32_t ColourInfo::GetMaxARGB() const noexcept { return PackARGB(m_max); }

std::uint32_t ColourInfo::GetDefaultARGB() const noexcept { return PackARGB(m_default); }

bool ColourInfo::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const&) const { return true; }

int ColourInfo::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    return IsEqualType(other) ? 0 : IfErrBoundsTypeMismatch;
}

int ColourInfo::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return Detail::AssignFrom<ColourInfo>(source, changed, [this](auto& change, auto const& schema) {
        change.Assign(m_min, schema.m_min);
        change.Assign(m_max, schema.m_max);
        change.Assign(m_default, schema.m_default);
    });
}

void ColourInfo::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    os << "default: ";
    operator<<(os) << std::endl;
}

std::ostream& ColourInfo::operator<<(std::ostream& os) const
{
    PrintColour(os, m_min);
    os << " < ";
    PrintColour(os, m_default);
    os << " < ";
    PrintColour(os, m_max);
    return os;
}

ColourItem::ColourItem(unsigned int id) : ValueItem(id) {}

ColourItem* ColourItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

std::uint32_t ColourItem::GetARGB() const noexcept
{
    auto const floor = [](float component) { return component <= 0.0F ? 0.0F : component; };
    return PackARGB({floor(m_value.a), floor(m_value.r), floor(m_value.g), floor(m_value.b)});
}

int ColourItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    return Detail::AssignFrom<ColourItem>(source, changed, [this](auto& change, auto const& item) {
        change.Assign(m_value, item.m_value, SameColour());
    });
}

unsigned int ColourItem::GetSerialDataSize() const { return sizeof(Parts); }

int ColourItem::Serialize(SerialStruct_t* record) const
{
    return Detail::WriteNumbers(*this, record, PartsOf(m_value));
}

int ColourItem::Deserialize(ConstSerialStruct_t const* record)
{
    Parts parts;
    if (int const code = Detail::ReadNumbers(*this, record, parts))
        return code;
    m_value = {parts[0], parts[1], parts[2], parts[3]};
    return 0;
}

std::shared_ptr<ResultElem const> ColourItem::Validate(boost::intrusive_ptr<InfoBase const> const&) { return {}; }

bool ColourItem::SetValFromStream(std::istream& in, std::ostream& out, boost::intrusive_ptr<InfoBase const> const&)
{
    if (in.eof())
        return Detail::ParseError(out, "colourItem");
    in.ignore(1, '(');
    Orlek::Colour_t read;
    for (auto const& [word, part] : {std::pair("colourItem.a", &read.a), std::pair("colourItem.r", &read.r),
                                     std::pair("colourItem.g", &read.g), std::pair("colourItem.b", &read.b)})
        if (!Detail::Extract(in, out, word, *part))
            return false;
    m_value = read;
    return true;
}

void ColourItem::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    // Contract: the blank behind the last letter, and that letter only, is what readers of these dumps look for.
    os << "value: a" << m_value.a << Detail::k_separator << 'r' << m_value.r << Detail::k_separator << 'g' << m_value.g
       << Detail::k_separator << "b " << m_value.b << std::endl;
}

std::ostream& ColourItem::operator<<(std::ostream& os) const
{
    return os << '(' << m_value.a << ' ' << m_value.r << ' ' << m_value.g << ' ' << m_value.b << ')';
}

} // namespace Legacy::If
