#include "TestSupport.h"

#include <Legacy/If/GenericContainerImpl.h>
#include <Legacy/If/InfoItemContainer.h>
#include <Legacy/If/InfoItemHolderContainer.h>
#include <Legacy/If/String.h>

#include <new>
#include <string>
#include <type_traits>

namespace Legacy::If::Test {
namespace {

struct PlainSection : Section
{
    using Section::Section;
    PlainSection* DeepCopy() const override { return new PlainSection(*this); }
};

InfoBase* NewInfo(unsigned int id, std::string const& name) { return new StringInfo(id, name, {}); }

/// One container, and how its elements are made. Values have no names, so `named` says what a search by name can tell.
template<typename Container_, typename Element_, typename Key_>
struct CaseBase
{
    using Container = Container_;
    using Element = Element_;
    using Key = Key_;
    using Ptr = boost::intrusive_ptr<Element>;
    static constexpr bool named = true;
    static constexpr bool sharesOnCopy = false;
    static Key MakeKey(unsigned int id) { return id; }
};

template<typename Container_>
struct InfoCase : CaseBase<Container_, InfoBase, unsigned int>
{
    static InfoBase* New(unsigned int id, std::string const& name) { return NewInfo(id, name); }
    static unsigned int KeyOf(InfoBase const& info) { return info.GetId(); }
};
template<typename Container_>
struct ItemCase : CaseBase<Container_, ItemBase, unsigned int>
{
    static constexpr bool named = false;
    static ItemBase* New(unsigned int id, std::string const& name) { return StringItem::Create(id, name); }
    static unsigned int KeyOf(ItemBase const& item) { return item.GetId(); }
};
template<typename Container_>
struct InfoHolderCase : CaseBase<Container_, InfoHolder, unsigned int>
{
    static InfoHolder* New(unsigned int id, std::string const& name) { return new InfoHolder(NewInfo(id, name)); }
    static unsigned int KeyOf(InfoHolder const& holder) { return holder.GetInfo()->GetId(); }
};
template<typename Container_>
struct ItemHolderCase : CaseBase<Container_, ItemHolder, unsigned int>
{
    static constexpr bool named = false;
    static ItemHolder* New(unsigned int id, std::string const& name)
    {
        return new ItemHolder(StringItem::Create(id, name));
    }
    static unsigned int KeyOf(ItemHolder const& holder) { return holder.GetItem()->GetId(); }
};

template<typename Element>
using Impl =
    GenericContainerImpl<Element, boost::intrusive_ptr<Element>, boost::intrusive_ptr<Element const>, unsigned int>;
using SectionImpl =
    GenericContainerImpl<Section, boost::intrusive_ptr<Section>, boost::intrusive_ptr<Section const>, SectionId_t>;

struct SectionCase : CaseBase<SectionImpl, Section, SectionId_t>
{
    static SectionId_t MakeKey(unsigned int id) { return SectionId_t(id / 2, id % 2 ? "b" : "a"); }
    static Section* New(unsigned int id, std::string const& name) { return new PlainSection(MakeKey(id), name, 0); }
    static SectionId_t KeyOf(Section const& section) { return section.GetId(); }
};

template<typename Case>
struct Container : testing::Test
{
    using Ptr = typename Case::Ptr;
    using Key = typename Case::Key;
    using Ptrs = std::vector<Ptr>;
    using Keys = std::vector<Key>;

    static Ptr New(unsigned int id, std::string const& name = "n") { return Ptr(Case::New(id, name)); }
    static Key K(unsigned int id) { return Case::MakeKey(id); }

    Ptrs All() const
    {
        Ptrs all;
        container.Get(all);
        return all;
    }

    typename Case::Container container;
};

using Cases = testing::Types<InfoCase<InfoContainer>, ItemCase<ItemContainer>, InfoHolderCase<InfoHolderContainer>,
                             ItemHolderCase<ItemHolderContainer>, InfoCase<Impl<InfoBase>>, ItemCase<Impl<ItemBase>>,
                             InfoHolderCase<Impl<InfoHolder>>, ItemHolderCase<Impl<ItemHolder>>, SectionCase>;
TYPED_TEST_SUITE(Container, Cases);

TYPED_TEST(Container, AddsAndSets)
{
    auto& c = this->container;
    auto const first = this->New(5);
    EXPECT_TRUE(c.Empty());
    EXPECT_EQ(c.Add(typename TestFixture::Ptr()), 0);
    EXPECT_TRUE(c.Empty());
    EXPECT_EQ(c.Add(first), 0);
    EXPECT_EQ(c.Add(this->New(5, "m")), IfErrDuplicateId);
    EXPECT_EQ(c.Get(this->K(5)), first);

    auto const second = this->New(5, "m");
    c.Set(second);
    EXPECT_EQ(c.Get(this->K(5)), second);
    EXPECT_EQ(c.Size(), 1U);
    EXPECT_EQ(first->GetRefCount(), 1);
    c.Set(second);
    EXPECT_EQ(second->GetRefCount(), 2);
    if (TypeParam::named) {
        EXPECT_EQ(c.Find("n"), nullptr);
        EXPECT_EQ(c.Find("m"), second);
    }
    c.Set(typename TestFixture::Ptr());
    c.Clear();
    c.Clear();
    EXPECT_TRUE(c.Empty());
    EXPECT_EQ(second->GetRefCount(), 1);
}

TYPED_TEST(Container, AddsManyOrNone)
{
    auto& c = this->container;
    auto const later = this->New(2);
    EXPECT_EQ(c.Add({this->New(2), nullptr, this->New(1), later}), 0); // one key twice: the later element stays
    EXPECT_EQ(c.Size(), 2U);
    EXPECT_EQ(c.Get(this->K(2)), later);
    EXPECT_EQ(c.Add({this->New(3), this->New(2)}), IfErrDuplicateId);
    EXPECT_EQ(c.Size(), 2U);
    c.Set({this->New(3), nullptr, this->New(2)});
    EXPECT_EQ(c.Size(), 3U);
    EXPECT_NE(c.Get(this->K(2)), later);
}

TYPED_TEST(Container, Finds)
{
    auto& c = this->container;
    for (unsigned int const id : {7U, 3U, 0xFFFFFFFEU, 4U})
        c.Add(this->New(id, "twin"));
    auto const all = this->All();
    ASSERT_EQ(all.size(), 4U);
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_TRUE(TypeParam::KeyOf(*all[i - 1]) < TypeParam::KeyOf(*all[i]));
    std::vector<boost::intrusive_ptr<typename TypeParam::Element const>> constants(1);
    c.Get(constants);
    ASSERT_EQ(constants.size(), 5U); // appended
    EXPECT_EQ(constants[4], all[3]);

    auto found = all[0];
    EXPECT_EQ(c.Get(this->K(4), found), 0);
    EXPECT_EQ(found, all[1]);
    EXPECT_EQ(c.Get(this->K(5), found), IfErrNotFound);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(c.Get(this->K(5)), nullptr);
    EXPECT_TRUE(c.IsPresent(this->K(7)));
    EXPECT_FALSE(c.IsPresent(this->K(5)));

    typename TestFixture::Ptrs some(1);
    EXPECT_EQ(c.Get({this->K(7), this->K(5), this->K(3)}, some), IfErrNotFound);
    EXPECT_EQ(some, (typename TestFixture::Ptrs{nullptr, all[2]}));
    EXPECT_EQ(c.Get({this->K(3), this->K(3)}, some), 0);
    EXPECT_EQ(some.size(), 4U);

    std::string const name = TypeParam::named ? "twin" : "";
    auto key = this->K(99);
    EXPECT_FALSE(c.FindId("other", key));
    EXPECT_TRUE(key == this->K(99));
    EXPECT_EQ(c.Find("other"), nullptr);
    EXPECT_TRUE(c.FindId(name, key));
    EXPECT_TRUE(c.IsPresent(key));
    EXPECT_NE(c.Find(name), nullptr);
}

TYPED_TEST(Container, RemovesOneAndManyOrNone)
{
    auto& c = this->container;
    c.Add({this->New(1), this->New(2), this->New(3), this->New(4)});
    EXPECT_EQ(c.Remove(this->K(1)), 0);
    EXPECT_EQ(c.Remove(this->K(1)), IfErrNotFound);
    EXPECT_EQ(c.Remove(typename TestFixture::Keys{this->K(2), this->K(1)}), IfErrNotFound);
    EXPECT_EQ(c.Size(), 3U);
    EXPECT_EQ(c.Remove(typename TestFixture::Keys{this->K(2), this->K(4), this->K(2)}), 0);
    EXPECT_EQ(c.Size(), 1U);
    EXPECT_EQ(c.Find(TypeParam::named ? "n" : ""), c.Get(this->K(3)));
}

TYPED_TEST(Container, CopiesElementsOrSharesThem)
{
    auto& c = this->container;
    for (unsigned int id = 0; id < 100; ++id)
        c.Add(this->New(id * 3));
    auto const copy = [&] {
        if constexpr (requires { c.DeepCopy(); })
            return std::unique_ptr<typename TypeParam::Container>(c.DeepCopy());
        else
            return std::make_unique<typename TypeParam::Container>(c);
    }();
    auto const mine = this->All();
    typename TestFixture::Ptrs theirs;
    copy->Get(theirs);
    ASSERT_EQ(theirs.size(), mine.size());
    for (std::size_t i = 0; i < mine.size(); ++i) {
        EXPECT_NE(theirs[i], mine[i]);
        EXPECT_TRUE(TypeParam::KeyOf(*theirs[i]) == TypeParam::KeyOf(*mine[i]));
        EXPECT_EQ(theirs[i]->GetRefCount(), 2);
        EXPECT_EQ(copy->Get(TypeParam::KeyOf(*mine[i])), theirs[i]);
    }
    EXPECT_EQ(copy->Remove(this->K(3)), 0);
    EXPECT_TRUE(c.IsPresent(this->K(3)));

    auto const& same = c;
    c = same;
    EXPECT_EQ(this->All(), mine);
    *copy = c;
    EXPECT_EQ(copy->Size(), c.Size());
    EXPECT_EQ(copy->Get(this->K(3)) == c.Get(this->K(3)), (requires { c.DeepCopy(); }));
    if constexpr (requires { c.DeepCopy(); }) {
        typename TypeParam::Container const shared(c);
        EXPECT_EQ(shared.Get(this->K(3)), c.Get(this->K(3)));
    }
}

// A holder of nothing has no key: it is taken for null.
TEST(ContainerOfHolders, RefusesAHolderOfNothing)
{
    InfoHolderContainer infos;
    boost::intrusive_ptr<InfoHolder> const empty(new InfoHolder(nullptr));
    EXPECT_EQ(infos.Add(empty), 0);
    EXPECT_EQ(infos.Add(std::vector{empty}), 0);
    infos.Set(empty);
    EXPECT_TRUE(infos.Empty());
}

struct UncopyableInfo : StringInfo
{
    using StringInfo::StringInfo;
    StringInfo* DeepCopy(unsigned int, std::string const&, Permission_t const&) const override
    {
        throw std::bad_alloc();
    }
};

TEST(ContainerCopy, KeepsItsContentIfAnElementCannotBeCopied)
{
    InfoContainer source;
    source.Add(boost::intrusive_ptr<InfoBase>(NewInfo(1, "a")));
    source.Add(boost::intrusive_ptr<InfoBase>(new UncopyableInfo(2, "b", {})));
    InfoContainer target;
    target.Add(boost::intrusive_ptr<InfoBase>(NewInfo(9, "c")));
    EXPECT_THROW(target = source, std::bad_alloc);
    EXPECT_TRUE(target.IsPresent(9));
    EXPECT_EQ(target.Size(), 1U);
    EXPECT_THROW(InfoContainer{source}, std::bad_alloc);
    static_assert(std::is_same_v<decltype(target = source), InfoContainer const&>);
}

template<typename Pair, typename Wrap>
void TestPair(Wrap wrap)
{
    Pair a;
    a.Infos().Add(wrap(Make<StringInfo>(3U, "speed", Permission_t{})));
    a.Items().Add(wrap(Hold(StringItem::Create(4, "x"))));
    unsigned int id = 0;
    EXPECT_TRUE(a.FindInfoItemId("speed", id));
    EXPECT_EQ(id, 3U);
    EXPECT_FALSE(a.FindInfoItemId("", id)); // where the value without a name would be found
    EXPECT_EQ(id, 3U);
    EXPECT_FALSE(a.Items().IsPresent(3));

    Pair const copy(a);
    EXPECT_NE(copy.Infos().Get(3), a.Infos().Get(3));
    EXPECT_NE(copy.Items().Get(4), a.Items().Get(4));
    Pair assigned;
    Pair& result = assigned = copy;
    EXPECT_EQ(&result, &assigned);
    EXPECT_TRUE(assigned.Infos().IsPresent(3));
    EXPECT_TRUE(assigned.Items().IsPresent(4));
    auto const before = assigned.Infos().Get(3);
    auto const& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned.Infos().Get(3), before);
}

TEST(ContainerPair, FindsByTheSchemasNameAlone)
{
    TestPair<InfoItemContainer>([](auto object) { return object; });
    TestPair<InfoItemHolderContainer>([](auto object) {
        if constexpr (std::is_convertible_v<decltype(object), boost::intrusive_ptr<InfoBase>>)
            return Make<InfoHolder>(object);
        else
            return Make<ItemHolder>(object);
    });
}

} // namespace
} // namespace Legacy::If::Test
