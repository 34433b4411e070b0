#include "TestSupport.h"

#include <Legacy/If/GenericContainerImpl.h>
#include <Legacy/If/InfoItemContainer.h>
#include <Legacy/If/InfoItemHolderContainer.h>
#include <Legacy/If/String.h>

#include <new>
#include <type_traits>

namespace Legacy::If::Test {
namespace {

struct PlainSection : Section
{
    using Section::Section;
    PlainSection* DeepCopy() const override { return new PlainSection(*this); }
};

/// The key of a container of numbered elements, and that of sections.
template<typename Key>
Key KeyOf(unsigned int id)
{
    if constexpr (std::is_same_v<Key, SectionId_t>)
        return SectionId_t(id / 2, id % 2 ? "b" : "a");
    else
        return id;
}

template<typename Element>
boost::intrusive_ptr<Element> New(unsigned int id, std::string const& name)
{
    if constexpr (std::is_same_v<Element, Section>)
        return Make<PlainSection>(KeyOf<SectionId_t>(id), name, 0U);
    else if constexpr (std::is_same_v<Element, InfoBase>)
        return Make<StringInfo>(id, name, Permission_t{});
    else if constexpr (std::is_same_v<Element, ItemBase>)
        return StringItem::Create(id, name);
    else if constexpr (std::is_same_v<Element, InfoHolder>)
        return Make<InfoHolder>(New<InfoBase>(id, name));
    else
        return Make<ItemHolder>(New<ItemBase>(id, name));
}

template<typename Container_, typename Element_, typename Key_ = unsigned int>
struct Case
{
    using Container = Container_;
    using Element = Element_;
    using Key = Key_;
};

template<typename Element, typename Key = unsigned int>
using Impl =
    Case<GenericContainerImpl<Element, boost::intrusive_ptr<Element>, boost::intrusive_ptr<Element const>, Key>,
         Element, Key>;

template<typename Case>
struct Container : testing::Test
{
    using Element = typename Case::Element;
    using Ptrs = std::vector<boost::intrusive_ptr<Element>>;
    using Keys = std::vector<typename Case::Key>;
    static constexpr bool named = !std::is_same_v<Element, ItemBase> && !std::is_same_v<Element, ItemHolder>;

    static auto New(unsigned int id, std::string const& name = "n") { return Legacy::If::Test::New<Element>(id, name); }
    static auto K(unsigned int id) { return KeyOf<typename Case::Key>(id); }

    typename Case::Container container;
};

using Cases =
    testing::Types<Case<InfoContainer, InfoBase>, Case<ItemContainer, ItemBase>, Case<InfoHolderContainer, InfoHolder>,
                   Case<ItemHolderContainer, ItemHolder>, Impl<InfoBase>, Impl<ItemHolder>, Impl<Section, SectionId_t>>;
TYPED_TEST_SUITE(Container, Cases);

TYPED_TEST(Container, AddsSetsAndRemovesAllOrNone)
{
    auto& c = this->container;
    auto const first = this->New(5);
    EXPECT_EQ(c.Add(nullptr), 0);
    EXPECT_TRUE(c.Empty());
    EXPECT_EQ(c.Add(first), 0);
    EXPECT_EQ(c.Add(this->New(5, "m")), IfErrDuplicateId);
    EXPECT_EQ(c.Get(this->K(5)), first);

    auto const second = this->New(5, "m");
    c.Set(second);
    c.Set(second);
    EXPECT_EQ(c.Get(this->K(5)), second);
    EXPECT_EQ(first->GetRefCount(), 1);
    EXPECT_EQ(second->GetRefCount(), 2);
    EXPECT_EQ(c.Find("n"), nullptr);
    EXPECT_EQ(c.Find(TestFixture::named ? "m" : ""), second);

    auto const later = this->New(2);
    EXPECT_EQ(c.Add({this->New(2), nullptr, this->New(1), later}), 0); // one key twice: the later element stays
    EXPECT_EQ(c.Get(this->K(2)), later);
    EXPECT_EQ(c.Add({this->New(3), this->New(2)}), IfErrDuplicateId);
    EXPECT_EQ(c.Size(), 3U);
    c.Set({this->New(3), nullptr, this->New(2)});
    EXPECT_EQ(c.Size(), 4U);
    EXPECT_EQ(later->GetRefCount(), 1);

    EXPECT_EQ(c.Remove(this->K(1)), 0);
    EXPECT_EQ(c.Remove(this->K(1)), IfErrNotFound);
    EXPECT_EQ(c.Remove(typename TestFixture::Keys{this->K(2), this->K(1)}), IfErrNotFound);
    EXPECT_EQ(c.Size(), 3U);
    EXPECT_EQ(c.Remove(typename TestFixture::Keys{this->K(2), this->K(5), this->K(2)}), 0);
    EXPECT_EQ(c.Find(TestFixture::named ? "n" : ""), c.Get(this->K(3)));
    c.Clear();
    EXPECT_TRUE(c.Empty());
}

TYPED_TEST(Container, Finds)
{
    auto& c = this->container;
    for (unsigned int const id : {7U, 3U, 0xFFFFFFFEU, 4U})
        c.Add(this->New(id, "twin"));
    typename TestFixture::Ptrs all(1);
    c.Get(all); // appended, in the order of the keys
    EXPECT_EQ(all, (typename TestFixture::Ptrs{nullptr, c.Get(this->K(3)), c.Get(this->K(4)), c.Get(this->K(7)),
                                               c.Get(this->K(0xFFFFFFFE))}));
    auto found = all[1];
    EXPECT_EQ(c.Get(this->K(4), found), 0);
    EXPECT_EQ(found, all[2]);
    EXPECT_EQ(c.Get(this->K(5), found), IfErrNotFound);
    EXPECT_EQ(found, nullptr);
    typename TestFixture::Ptrs some(1);
    EXPECT_EQ(c.Get({this->K(7), this->K(5), this->K(3)}, some), IfErrNotFound);
    EXPECT_EQ(some, (typename TestFixture::Ptrs{nullptr, all[3]}));

    auto key = this->K(99);
    EXPECT_FALSE(c.FindId("other", key));
    EXPECT_TRUE(key == this->K(99));
    EXPECT_TRUE(c.FindId(TestFixture::named ? "twin" : "", key));
    EXPECT_TRUE(c.IsPresent(key));
}

TYPED_TEST(Container, CopiesElementsOrSharesThem)
{
    auto& c = this->container;
    constexpr bool shares = requires { c.DeepCopy(); };
    c.Add({this->New(1), this->New(3)});
    auto const copy = [&] {
        if constexpr (shares)
            return std::unique_ptr<typename TypeParam::Container>(c.DeepCopy());
        else
            return std::make_unique<typename TypeParam::Container>(c);
    }();
    auto const mine = c.Get(this->K(3));
    ASSERT_NE(copy->Get(this->K(3)), nullptr);
    EXPECT_NE(copy->Get(this->K(3)), mine);
    EXPECT_EQ(copy->Get(this->K(3))->GetRefCount(), 2);
    EXPECT_EQ(copy->Remove(this->K(3)), 0);
    auto const& same = c;
    c = same;
    EXPECT_EQ(c.Get(this->K(3)), mine);
    *copy = c;
    EXPECT_EQ(copy->Size(), 2U);
    EXPECT_EQ(copy->Get(this->K(3)) == mine, shares);
}

struct VanishingHolder : InfoHolder
{
    VanishingHolder(unsigned int id, InfoHolder* itsCopy) : InfoHolder(New<InfoBase>(id, "n")), copy(itsCopy) {}
    InfoHolder* DeepCopy() const override { return copy.get(); }
    boost::intrusive_ptr<InfoHolder> copy;
};

// A holder of nothing has no key: it is taken for null.
TEST(ContainerOfHolders, RefusesAHolderOfNothing)
{
    InfoHolderContainer infos;
    auto const empty = Make<InfoHolder>(nullptr);
    infos.Add({Make<VanishingHolder>(1U, nullptr), Make<VanishingHolder>(2U, empty.get())});
    EXPECT_TRUE(InfoHolderContainer(infos).Empty());
    infos.Clear();
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
    source.Add({New<InfoBase>(1, "a"), Make<UncopyableInfo>(2U, "b", Permission_t{})});
    InfoContainer target;
    target.Add(New<InfoBase>(9, "c"));
    EXPECT_THROW(target = source, std::bad_alloc);
    EXPECT_TRUE(target.IsPresent(9));
    EXPECT_EQ(target.Size(), 1U);
    static_assert(std::is_same_v<decltype(target = source), InfoContainer const&>);
}

template<typename Pair, typename Info, typename Item>
void TestPair()
{
    Pair a;
    a.Infos().Add(New<Info>(3, "speed"));
    a.Items().Add(New<Item>(4, "x"));
    unsigned int id = 0;
    EXPECT_FALSE(a.FindInfoItemId("", id)); // where the value without a name would be found
    EXPECT_TRUE(a.FindInfoItemId("speed", id));
    EXPECT_EQ(id, 3U);

    Pair assigned;
    assigned = Pair(a);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(assigned.Infos().IsPresent(3) && assigned.Infos().Get(3) != a.Infos().Get(3));
        EXPECT_TRUE(assigned.Items().IsPresent(4) && assigned.Items().Get(4) != a.Items().Get(4));
        auto const& same = assigned;
        assigned = same;
    }
}

TEST(ContainerPair, FindsByTheSchemasNameAlone)
{
    TestPair<InfoItemContainer, InfoBase, ItemBase>();
    TestPair<InfoItemHolderContainer, InfoHolder, ItemHolder>();
}

} // namespace
} // namespace Legacy::If::Test
