#include <Legacy/IfKit/Json.h>
#include <Legacy/IfKit/ValueText.h>
#include <Legacy/IfKit/Visit.h>
#include <Orlek/Localization.h>

#include <array>
#include <cstddef>
#include <sstream>
#include <utility>
#include <vector>

namespace Legacy::IfKit {

using If::InfoBase;
using If::ItemBase;

namespace {

/// One character and its length in bytes; the length is 0 for bytes that are no character.
struct Character_t
{
    char32_t code;
    std::size_t size;
};

Character_t FirstCharacter(std::string_view bytes)
{
    auto const lead = static_cast<unsigned char>(bytes.front());
    if (lead < 0x80)
        return {lead, 1};
    // The least code of each length: what could be written shorter is no character.
    constexpr std::array<char32_t, 5> k_least{0, 0, 0x80, 0x800, 0x10000};
    std::size_t const size = lead >= 0xf0 && lead < 0xf8 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc0 || lead >= 0xf8 || bytes.size() < size)
        return {0, 0};
    char32_t code = lead & (0x7fU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        auto const next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xc0) != 0x80)
            return {0, 0};
        code = code << 6 | (next & 0x3fU);
    }
    bool const isSurrogate = code >= 0xd800 && code < 0xe000;
    return code < k_least[size] || code > 0x10ffff || isSurrogate ? Character_t{0, 0} : Character_t{code, size};
}

/// Whether a character shows as itself and leaves its neighbours alone.
bool IsHarmless(char32_t code)
{
    bool const isControl = code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029;
    bool const turns = code == 0x61c || code == 0x200e || code == 0x200f || (code >= 0x202a && code <= 0x202e) ||
                       (code >= 0x2066 && code <= 0x2069);
    return !isControl && !turns;
}

/// One composite or collection that is being written, and where its members' schemas are.
struct Level_t
{
    std::vector<boost::intrusive_ptr<ItemBase const>> items;
    std::vector<boost::intrusive_ptr<InfoBase const>> infos; // as many, or none
    std::size_t next = 0;
};

/// Writes a value, depth first and without recursion.
class Writer
{
public:
    explicit Writer(std::string const& language) : m_language(language) {}

    std::string Write(ItemBase const& item, InfoBase const* info)
    {
        Put_(item, info);
        while (!m_levels.empty()) {
            Level_t& level = m_levels.back();
            if (level.next == level.items.size()) {
                m_text += ')';
                m_levels.pop_back();
                continue;
            }
            std::size_t const index = level.next++;
            m_text += index == 0 ? "" : ", ";
            // What it opens may move the levels, so the member is held here.
            auto const member = level.items[index];
            auto const schema = level.infos.empty() ? nullptr : level.infos[index];
            Put_(*member, schema.get());
        }
        return std::move(m_text);
    }

private:
    void Put_(ItemBase const& item, InfoBase const* info)
    {
        Visit(
            item, [&](If::CompositeItem const& list) { Open_(list, dynamic_cast<If::CompositeInfo const*>(info)); },
            [&](If::CollectionItem const& list) { Open_(list, static_cast<If::CompositeInfo const*>(nullptr)); },
            [&](If::EnumItem const& value) { m_text += ElementText_(value, dynamic_cast<If::EnumInfo const*>(info)); },
            [&](If::OrientationItem const& value) {
                std::ostringstream text;
                text << '(' << value.GetBearing() << ' ' << value.GetInclination() << ' ' << value.GetRoll() << ')';
                m_text += text.str();
            },
            [&](If::ExtendedItem const& value) { m_text += '(' + value.Val().first + ", " + value.Val().second + ')'; },
            [&](If::LocalizedStringItem const& value) { m_text += value.GetVal().GetString(m_language); },
            [&](ItemBase const& value) { m_text += value.GetValAsString(); });
    }

    template<typename List>
    void Open_(List const& list, If::CompositeInfo const* info)
    {
        Level_t level;
        list.GetItems(level.items);
        if (info && info->GetSize() == list.GetSize())
            info->GetInfos(level.infos);
        m_text += '(';
        m_levels.push_back(std::move(level));
    }

    std::string ElementText_(If::EnumItem const& value, If::EnumInfo const* info) const
    {
        std::string name;
        if (!info || info->GetElemName(value.GetVal(), name) != 0)
            return value.GetValAsString();
        return info->IsLocalized() ? std::string(Orlek::Localization::GetString(name, m_language)) : name;
    }

    std::string const& m_language;
    std::string m_text;
    std::vector<Level_t> m_levels;
};

} // namespace

std::string Printable(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        auto const [code, size] = FirstCharacter(bytes);
        if (size != 0 && IsHarmless(code))
            text += bytes.substr(0, size);
        else
            text += '?';
        bytes.remove_prefix(size == 0 ? 1 : size);
    }
    return text;
}

std::string ValueText(ItemBase const& item, InfoBase const* info, std::string const& language)
{
    return Printable(Writer(language).Write(item, info));
}

std::string ValueText(If::InfoHolder const& holder, ItemBase const& item, std::string const& language)
{
    std::string const text = ValueText(item, holder.GetInfo().get(), language);
    std::string const unit = holder.GetUnit();
    return unit.empty() ? text : text + ' ' + Printable(unit);
}

boost::intrusive_ptr<ItemBase> ParseValueText(InfoBase const& info, std::string const& text, std::string& fault)
{
    using namespace If;
    using Result = boost::intrusive_ptr<ItemBase>;
    unsigned int const id = info.GetId();
    auto const fromJson = [&] {
        std::istringstream is(text);
        Result item;
        if (auto const found = ReadBareJson(is, info, item))
            fault = "'" + Printable(text) + "' is no value of this parameter: " + Printable(found->ToString());
        return item;
    };
    return Visit(
        info, [&](StringInfo const&) { return Result(StringItem::Create(id, text)); },
        [&](StringSparseInfo const&) { return Result(StringSparseItem::Create(id, text)); },
        [&](AddrInfo const&) { return Result(AddrItem::Create(id, Net::AddrStr(text))); },
        [&](EndpointInfo const&) {
            return text.starts_with('{')
                       ? fromJson()
                       : Result(EndpointItem::Create(id, Net::Endpoint<Net::AddrStr>::FromString(text)));
        },
        [&](EnumInfo const& own) {
            int value = 0;
            return own.GetElemVal(text, value) == 0 ? Result(EnumItem::Create(id, value)) : fromJson();
        },
        [&](InfoBase const&) { return fromJson(); });
}

} // namespace Legacy::IfKit
