// Runs operations on a directory, a tree of sections, containers of each kind and a map of holders, beside a map of
// what must be there.

#include "Parts.h"

#include <Legacy/If/GenericContainerImpl.h>
#include <Legacy/If/InfoItemContainer.h>
#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>
#include <Legacy/If/InfoItemHolderMap.h>
#include <Legacy/If/Section.h>
#include <Legacy/If/SectionMap.h>
#include <Legacy/If/Set.h>

#include <list>
#include <map>
#include <vector>

using namespace Parts;

namespace {

struct PlainSection : If::Section
{
    using Section::Section;
    PlainSection* DeepCopy() const override { return new PlainSection(*this); }
};

struct PlainSet : If::Set
{
    using Set::Set;
    PlainSet* DeepCopy() const override { return new PlainSet(*this); }
    void DumpVal(std::ostream& os) const override { os << GetId() << GetName(); }
};

using Sections = If::GenericContainerImpl<If::Section, boost::intrusive_ptr<If::Section>,
                                          boost::intrusive_ptr<If::Section const>, If::SectionId_t>;

/// Puts an element in by each way there is, and takes it out of a copy.
template<typename Container, typename Ptr, typename Key>
void Keep(Container& container, Ptr const& element, Key const& key)
{
    bool const isNew = !container.IsPresent(key);
    Require((container.Add(std::vector<Ptr>{element}) == 0) == isNew && container.Add(element) != 0);
    container.Set(std::vector<Ptr>{element});
    container.Set(element);
    Ptr got;
    Require(container.Get(key) == element && container.Get(key, got) == 0 && got == element);
    std::vector<Ptr> some;
    Require(container.Get(std::vector<Key>{key}, some) == 0 && some.back() == element);
    Container copy(container);
    if constexpr (requires { copy = container; })
        copy = container;
    Require(copy.Size() == container.Size() && copy.Remove(key) == 0 && copy.Remove(std::vector<Key>{key}) != 0);
    copy.Clear();
    Require(copy.Empty() && !container.Empty());
}

/// Sections and the ids that they gave, so that an input can name what is there.
struct Store
{
    If::InfoItemDirectory directory;
    If::InfoContainer schemas;
    If::InfoItemHolderMap holders;
    If::SectionMap tree;
    If::InfoItemContainer parameters;
    Sections sections;
    std::map<unsigned int, InfoPtr> known; // the schemas in the container
    std::vector<unsigned int> ids{0, 1, 0xFFFFFFFF};

    unsigned int Id(Input& input)
    {
        std::uint8_t const choice = input.Byte();
        return choice == 0xFF ? input.Word() : ids[choice % ids.size()];
    }

    void AddSection(Input& input)
    {
        If::SectionId section;
        if (directory.AddSection(input.Text(), section) != 0)
            return;
        Require(directory.FindSection(section.GetInfoItemSectionId()).IsValid());
        ids.push_back(section.GetInfoItemSectionId().CreateInfoItemId(input.Byte()));
    }

    void AddSchema(Input& input)
    {
        InfoPtr const made = MakeInfo(input, 0);
        unsigned int const id = Id(input);
        InfoPtr const info(made->DeepCopy(id, input.Text()));
        bool const isNew = known.find(info->GetId()) == known.end();
        Require((schemas.Add(info) == 0) == isNew);
        known.emplace(info->GetId(), info);
        boost::intrusive_ptr<If::InfoHolder> const holder(new If::InfoHolder(info));
        if (directory.AddInfo(holder) == 0)
            Require(directory.FindInfo(info->GetId()) == holder);
        if (holders.Insert(new If::InfoItemHolder(holder)) == 0)
            Require(holders.Find(info->GetId()).first);
    }

    void FillContainers(Input& input)
    {
        unsigned int const id = Id(input);
        std::string const name = input.Text();
        InfoPtr const info(new If::StringInfo(id, name, {}));
        ItemPtr const item(If::StringItem::Create(id, name));
        Keep(parameters.Infos(), info, id);
        Keep(parameters.Items(), item, id);
        boost::intrusive_ptr<If::Section> const section(new PlainSection({id, name}, name, input.Byte()));
        Keep(section->Infos(), boost::intrusive_ptr<If::InfoHolder>(new If::InfoHolder(info)), id);
        Keep(section->Items(), boost::intrusive_ptr<If::ItemHolder>(new If::ItemHolder(item)), id);
        Keep(sections, section, section->GetId());
        unsigned int found = 0;
        Require(parameters.FindInfoItemId(name, found) && section->FindInfoItemId(name, found) && found == id);
        Require(sections.Find(name) && *section == section->GetId() && *section == section->GetName());
        Require((section->SetFlags(2) & section->ClearFlags(2)) == section->GetFlags() && !section->CheckFlags(2));
        std::ostringstream os;
        os << *section << std::hash<If::SectionId_t>()(section->GetId());
        PlainSet set(id, name);
        set = PlainSet(PlainSet(set));
        set.SetName(section->GetSecondaryId());
        set.DumpVal(os);
        boost::intrusive_ptr<If::Section> const copy(section->DeepCopy());
        Require(copy->GetId() == section->GetId() && copy->Items().Size() == section->Items().Size());
        parameters = If::InfoItemContainer(parameters);
    }

    void SetValue(Input& input)
    {
        ItemPtr const item(MakeItem(input, 1)->DeepCopy(Id(input)));
        boost::intrusive_ptr<If::ItemHolder const> const holder(new If::ItemHolder(item));
        if (directory.SetItem(holder) == 0)
            Require(directory.FindItem(item->GetId()) == holder);
    }

    void Remove(Input& input)
    {
        unsigned int const id = Id(input);
        Require((schemas.Remove(id) == 0) == (known.erase(id) != 0));
        bool const found = holders.Find(id).first;
        Require((holders.Erase(id) == 0) == found);
    }

    void LookUp(Input& input)
    {
        std::string const path = input.Text();
        std::string const name = input.Text();
        directory.FindInfo(path, name);
        directory.FindItem(path, name);
        directory.FindItem(path);
        directory.FindInfoItem(path, name);
        directory.FindInfoItem(path);
        If::InfoItemSectionId const id(input.Word());
        std::vector<boost::intrusive_ptr<If::InfoHolder const>> infos;
        std::vector<boost::intrusive_ptr<If::ItemHolder const>> items;
        std::vector<boost::intrusive_ptr<If::InfoItemHolder const>> both;
        directory.FindInfos(id, infos);
        directory.FindItems(id, items);
        directory.FindInfoItems(id, both);
        for (auto const& holder : infos)
            Require(directory.FindInfo(holder->GetInfo()->GetId()) == holder);
    }

    /// On a tree of sections alone, which also numbers parameters itself.
    void Grow(Input& input)
    {
        unsigned int const kind = input.Byte() % 5;
        std::string path = input.Text();
        std::string name = input.Text();
        If::InfoItemSectionId const id(input.Word());
        If::InfoItemSectionId number(0xFFFFFFFF), found(0xFFFFFFFF);
        If::SectionId section;
        if (If::SectionId const given(path, id); kind == 0 && tree.AddSection(given) == 0)
            Require(tree.FindSection(id, section) == 0 && section.GetInfoItemSectionId() == id);
        if (kind == 1)
            Require(tree.AddSection(path, section) != 0 || section.IsValid());
        if (kind == 2)
            tree.AddInfo(id, name);
        if (kind == 3 && tree.AddInfo(path, name, number) == 0)
            Require(tree.FindInfo(path, name, found) == 0 && found == number);
        Require(tree.FindSection(path, section) != 0 || section.IsValid());
        tree.FindInfo(id, path, name);
        std::vector<unsigned int> infos;
        tree.GetInfos(id, infos);
        std::vector<If::SectionId> below;
        tree.GetTopLevelSections(below);
        tree.GetSubsections(id, below);
        std::list<If::SectionId> leaves;
        tree.GetLeafSections(leaves);
        If::SectionMap const copy(tree);
        for (If::SectionId const& leaf : leaves)
            Require(leaf.IsValid() && copy.FindSection(leaf.GetInfoItemSectionId(), section) == 0 && section == leaf);
    }

    /// A delta of sections, text schemas and text values, applied as far as the first byte says; with 0 all goes.
    void Update(Input& input)
    {
        unsigned int const what = input.Byte();
        if (what == 0)
            return directory.Clear();
        auto const delta = std::make_shared<If::InfoItemDirectoryDelta>();
        for (unsigned int left = input.Byte() % k_fewElements; left > 0; --left) {
            unsigned int const kind = input.Byte() % 3;
            std::string const path = kind == 0 ? input.Text() : "";
            unsigned int const id = input.Word();
            if (kind == 0)
                delta->AddSection(If::SectionId(path, id));
            else if (kind == 1)
                delta->AddInfo(new If::InfoHolder(InfoPtr(new If::StringInfo(id, input.Text(), {}))));
            else
                delta->AddItem(new If::ItemHolder(ItemPtr(If::StringItem::Create(id, input.Text()))));
        }
        bool const infos = what & 2;
        bool const items = what & 4;
        if (directory.UpdateFromDelta(delta, infos, items) != 0)
            return;
        Require(delta->Empty() ==
                (delta->GetSectionIdMap_addMod().empty() && delta->GetInfoHolderPtrMap_addMod().empty() &&
                 delta->GetItemHolderPtrMap_addMod().empty()));
        // A second time nothing is new, and all of it passes again.
        Require(directory.UpdateFromDelta(delta, infos, items) == 0);
        for (auto const& [id, holder] : delta->GetItemHolderPtrMap_addMod())
            Require(!items || directory.FindItem(id) == holder);
    }

    void Check(Input& input)
    {
        std::vector<InfoPtr> all;
        schemas.Get(all);
        Require(all.size() == known.size() && schemas.Size() == known.size());
        auto expected = known.begin();
        for (InfoPtr const& info : all)
            Require(info == (expected++)->second && schemas.Find(info->GetName()));
        unsigned int id = 0;
        if (schemas.FindId(input.Text(), id))
            Require(schemas.IsPresent(id));
        auto const [first, last] = holders.Find(input.Text());
        for (auto place = first; place != last; ++place)
            Require(holders.Find(place->second->GetInfo()->GetInfo()->GetId()).first);
        If::InfoItemDirectory copy(directory);
        std::list<If::SectionId> leaves;
        copy.GetLeafSections(leaves);
        copy = directory;
        for (If::SectionId const& leaf : leaves)
            Require(copy.FindSection(leaf.GetInfoItemSectionId()) == copy.FindSection(leaf.GetSectionName()));
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    Store store;
    constexpr void (Store::*operations[])(Input&) = {&Store::AddSection, &Store::AddSchema, &Store::FillContainers,
                                                     &Store::SetValue,   &Store::Remove,    &Store::LookUp,
                                                     &Store::Check,      &Store::Update};
    while (!input.Empty()) {
        std::uint8_t const choice = input.Byte();
        choice == 0xF0 ? store.Grow(input) : (store.*operations[choice % std::size(operations)])(input);
    }
    return 0;
}
