#include "Same.h"

#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/ValueText.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace Legacy::IfKit {

using namespace If;

namespace {

using Parameter = boost::intrusive_ptr<InfoItemHolder const>;

InfoBase const& SchemaOf(Parameter const& parameter) { return *parameter->GetInfo()->GetInfo(); }

boost::intrusive_ptr<ItemBase> ValueOf(Parameter const& parameter)
{
    return parameter && parameter->GetItem() ? parameter->GetItem()->GetItem() : nullptr;
}

/// Calls `use` with each key of either list, in order, and the entry of each list that has the key, or null.
template<typename Entry, typename Key, typename Use>
void Merge(std::vector<Entry> const& former, std::vector<Entry> const& latter, Key const& key, Use const& use)
{
    auto left = former.begin();
    auto right = latter.begin();
    while (left != former.end() || right != latter.end()) {
        bool const takeLeft = left != former.end() && (right == latter.end() || key(*left) <= key(*right));
        bool const takeRight = right != latter.end() && (left == former.end() || key(*right) <= key(*left));
        use(takeLeft ? &*left : nullptr, takeRight ? &*right : nullptr);
        left += takeLeft;
        right += takeRight;
    }
}

std::vector<SectionId> SortedSections(InfoItemDirectory const& directory)
{
    auto sections = AllSections(directory);
    std::sort(sections.begin(), sections.end());
    return sections;
}

class Comparison
{
public:
    using Use = std::function<void(Difference_t const&)>;

    Comparison(InfoItemDirectory const& former, InfoItemDirectory const& latter, Use const& use)
        : m_former(former), m_latter(latter), m_use(use)
    {
        former.GetAllInfoItems(m_formerParameters);
        latter.GetAllInfoItems(m_latterParameters);
    }

    void Run() const
    {
        Sections_();
        ForEachParameter_([this](Parameter const& former, Parameter const& latter) {
            if (!former || !latter || !IsSameSchema(SchemaOf(former), SchemaOf(latter)))
                Tell_(Difference_t::Kind_t::Schema, former, latter, !latter, !former);
        });
        ForEachParameter_([this](Parameter const& former, Parameter const& latter) {
            auto const one = ValueOf(former);
            auto const other = ValueOf(latter);
            if (one != other && (!one || !other || !IsSameValue(one, other)))
                Tell_(Difference_t::Kind_t::Value, former, latter, !other, !one);
        });
    }

private:
    void Sections_() const
    {
        auto const key = [](SectionId const& section) -> SectionId const& { return section; };
        Merge(SortedSections(m_former), SortedSections(m_latter), key,
              [this](SectionId const* one, SectionId const* other) {
                  if (!one || !other)
                      m_use({Difference_t::Kind_t::Section, (one ? one : other)->GetSectionName(), one ? *one : *other,
                             nullptr, nullptr, !other, !one});
              });
    }

    template<typename Take>
    void ForEachParameter_(Take const& take) const
    {
        auto const key = [](Parameter const& parameter) { return SchemaOf(parameter).GetId(); };
        Merge(m_formerParameters, m_latterParameters, key, [&](Parameter const* one, Parameter const* other) {
            take(one ? *one : nullptr, other ? *other : nullptr);
        });
    }

    void Tell_(Difference_t::Kind_t kind, Parameter const& former, Parameter const& latter, bool isGone,
               bool isNew) const
    {
        std::string path = latter ? PathOf(m_latter, SchemaOf(latter)) : PathOf(m_former, SchemaOf(former));
        m_use({kind, std::move(path), SectionId(), former, latter, isGone, isNew});
    }

    InfoItemDirectory const& m_former;
    InfoItemDirectory const& m_latter;
    Use const& m_use;
    std::vector<Parameter> m_formerParameters;
    std::vector<Parameter> m_latterParameters;
};

/// A schema for people: its type and bounds as it prints them.
std::string SchemaText(Parameter const& parameter)
{
    std::ostringstream text;
    text << SchemaOf(parameter);
    return Printable(text.str());
}

std::string TextOf(Parameter const& parameter, std::string const& language)
{
    return ValueText(*parameter->GetInfo(), *ValueOf(parameter), language);
}

std::string LineOf(Difference_t const& difference, std::string const& language)
{
    std::string const path = Printable(difference.path);
    std::string const sign = difference.isGone ? "- " : "+ ";
    bool const isChange = !difference.isGone && !difference.isNew;
    switch (difference.kind) {
    case Difference_t::Kind_t::Section:
        return sign + "section " + path;
    case Difference_t::Kind_t::Schema:
        if (!isChange)
            return sign + path;
        return path + ": schema " + SchemaText(difference.former) + " -> " + SchemaText(difference.latter);
    case Difference_t::Kind_t::Value:
        break;
    }
    std::string const none = "(no value)";
    return path + ": " + (difference.isNew ? none : TextOf(difference.former, language)) + " -> " +
           (difference.isGone ? none : TextOf(difference.latter, language));
}

} // namespace

void ForEachDifference(InfoItemDirectory const& former, InfoItemDirectory const& latter,
                       std::function<void(Difference_t const&)> const& use)
{
    Comparison(former, latter, use).Run();
}

std::shared_ptr<InfoItemDirectoryDelta> MakeDelta(InfoItemDirectory const& former, InfoItemDirectory const& latter)
{
    auto delta = std::make_shared<InfoItemDirectoryDelta>();
    ForEachDifference(former, latter, [&delta](Difference_t const& difference) {
        if (difference.isGone)
            return;
        if (difference.kind == Difference_t::Kind_t::Section)
            delta->AddSection(difference.section);
        else if (difference.kind == Difference_t::Kind_t::Schema)
            delta->AddInfo(difference.latter->GetInfo());
        else
            delta->AddItem(difference.latter->GetItem());
    });
    return delta;
}

std::vector<std::string> DifferenceLines(InfoItemDirectory const& former, InfoItemDirectory const& latter,
                                         std::string const& language)
{
    std::vector<std::string> lines;
    ForEachDifference(former, latter,
                      [&](Difference_t const& difference) { lines.push_back(LineOf(difference, language)); });
    return lines;
}

std::string PathOf(InfoItemDirectory const& directory, InfoBase const& info)
{
    return directory.FindSection(InfoItemSectionId(info.GetId())).GetSectionName() + SectionId::k_sectionDelim +
           info.GetName();
}

std::vector<SectionId> AllSections(InfoItemDirectory const& directory)
{
    std::vector<SectionId> sections;
    std::vector<SectionId> waiting; // the next one at the end
    directory.GetTopLevelSections(waiting);
    std::reverse(waiting.begin(), waiting.end());
    while (!waiting.empty()) {
        sections.push_back(std::move(waiting.back()));
        waiting.pop_back();
        std::vector<SectionId> below;
        directory.GetSubsections(sections.back().GetInfoItemSectionId(), below);
        waiting.insert(waiting.end(), below.rbegin(), below.rend());
    }
    return sections;
}

} // namespace Legacy::IfKit
