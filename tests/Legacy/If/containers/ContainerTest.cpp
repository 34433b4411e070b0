#include "../Families.h"

#include <Orlek/LogicError.h>

#include <new>
#include <type_traits>

namespace Legacy::If::Test {
namespace {

template<typename Element>
auto KeyOf(unsigned int id)
{
    if constexpr (std::is_same_v<Element, Section>)
        return SectionId_t(id / 2, id % 2 ? "b" : "a");
    else
        return id;
}

template<typename Element>
boost::intrusive_ptr<Element> New(unsigned int id, std::string const& name = "twin")
{
    if constexpr (std::is_same_v<Element, Section>)
        return Make<PlainSection>(KeyOf<Section>(id), name, 0U);
    else if constexpr (std::is_same_v<Element, InfoBase>)
        return Make<StringInfo>(id, name, Permission_t{});
    else if constexpr (std::is_same_v<Element, ItemBase>)
        return StringItem::Create(id, name);
    else if constexpr (std::is_same_v<Element, InfoHolder>)
        return Make<InfoHolder>(New<InfoBase>(id, name));
    else
        return Make<ItemHolder>(New<ItemBase>(id, name));
}

/// What an element that was made without a name is found by: values have no name of their own.
template<typename Element>
constexpr char const* k_name = std::is_same_v<Element, ItemBase> || std::is_same_v<Element, ItemHolder> ? "" : "twin";

template<typename Element>
using Storage = GenericContainerImpl<Element, boost::intrusive_ptr<Element>, boost::intrusive_ptr<Element const>,
                                     decltype(KeyOf<Element>(0))>;

template<typename Container>
using ElementOf = typename decltype(Container().Find(""))::element_type;

template<typename Container>
using Containers = testing::Test;
using AllContainers = testing::Types<InfoContainer, ItemContainer, InfoHolderContainer, ItemHolderContainer,
                                     Storage<InfoBase>, Storage<ItemHolder>, Storage<Section>>;
TYPED_TEST_SUITE(Containers, AllContainers);

TYPED_TEST(Containers, AddSetAndRemoveAllOrNone)
{
    using E = ElementOf<TypeParam>;
    auto const k = &KeyOf<E>;
    TypeParam c;
    auto const first = New<E>(5);
    EXPECT_EQ(c.Add(nullptr), 0);
    EXPECT_TRUE(c.Empty());
    EXPECT_EQ(c.Add(first), 0);
    EXPECT_EQ(c.Add(New<E>(5)), IfErrDuplicateId);
    EXPECT_EQ(c.Get(k(5)), first);
    auto const second = New<E>(5, "m");
    c.Set(second);
    EXPECT_EQ(first->GetRefCount(), 1);
    EXPECT_EQ(c.Find("twin"), nullptr);
    EXPECT_EQ(c.Find(k_name<E>[0] != 0 ? "m" : ""), second);

    auto const later = New<E>(2);
    EXPECT_EQ(c.Add({New<E>(2), nullptr, New<E>(1), later}), 0); // one key twice: the later element stays
    EXPECT_EQ(c.Get(k(2)), later);
    EXPECT_EQ(c.Add({New<E>(3), New<E>(2)}), IfErrDuplicateId);
    EXPECT_EQ(c.Size(), 3U);
    c.Set({New<E>(3), nullptr, New<E>(2)});
    EXPECT_EQ(later->GetRefCount(), 1);

    EXPECT_EQ(c.Remove(k(1)), 0);
    EXPECT_EQ(c.Remove(k(1)), IfErrNotFound);
    EXPECT_EQ(c.Remove(std::vector{k(2), k(1)}), IfErrNotFound);
    EXPECT_EQ(c.Size(), 3U);
    EXPECT_EQ(c.Remove(std::vector{k(2), k(5), k(2)}), 0);
    EXPECT_EQ(c.Find(k_name<E>), c.Get(k(3)));
}

TYPED_TEST(Containers, FindElementsAndCopyOrShareThem)
{
    using E = ElementOf<TypeParam>;
    auto const k = &KeyOf<E>;
    TypeParam c;
    c.Set({New<E>(7), New<E>(3), New<E>(0xFFFFFFFE), New<E>(4)});
    std::vector<boost::intrusive_ptr<E>> all(1); // to which they are appended, in the order of the keys
    c.Get(all);
    EXPECT_EQ(all, (std::vector{{}, c.Get(k(3)), c.Get(k(4)), c.Get(k(7)), c.Get(k(0xFFFFFFFE))}));
    std::vector<boost::intrusive_ptr<E const>> constants;
    c.Get(constants);
    EXPECT_TRUE(std::equal(constants.begin(), constants.end(), all.begin() + 1, all.end()));
    auto found = all[1];
    EXPECT_EQ(c.Get(k(4), found), 0);
    EXPECT_EQ(found, all[2]);
    EXPECT_EQ(c.Get(k(5), found), IfErrNotFound);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(c.Get({k(7), k(5), k(3)}, all), IfErrNotFound); // what comes before the absent key stays appended
    EXPECT_EQ(all.size(), 6U);
    EXPECT_EQ(all.back(), all[3]);
    auto key = k(99);
    EXPECT_FALSE(c.FindId("other", key));
    EXPECT_TRUE(key == k(99));
    EXPECT_TRUE(c.FindId(k_name<E>, key));
    EXPECT_TRUE(c.IsPresent(key));

    TypeParam copy(c);
    constexpr bool isStorage = requires { c.DeepCopy(); };
    EXPECT_EQ(copy.Get(k(3)) == all[1], isStorage);
    if constexpr (isStorage)
        copy = *std::unique_ptr<TypeParam>(c.DeepCopy());
    EXPECT_NE(copy.Get(k(3)), all[1]);
    EXPECT_EQ(copy.Get(k(3))->GetRefCount(), 2);
    copy.Clear();
    EXPECT_TRUE(copy.Empty());
    auto const& same = c;
    c = same;
    EXPECT_EQ(c.Get(k(3)), all[1]);
    copy = c;
    EXPECT_EQ(copy.Size(), 4U);
    EXPECT_EQ(copy.Get(k(3)) == all[1], isStorage);

    TypeParam grown; // copies of each size, which then grow themselves
    for (unsigned int size = 0; size < 20; grown.Add(New<E>(++size))) {
        TypeParam other(grown);
        EXPECT_EQ(other.Add({New<E>(50), New<E>(51)}), 0);
        EXPECT_EQ(other.Size(), size + 2);
    }
}

struct OddHolder : InfoHolder
{
    explicit OddHolder(std::function<InfoHolder*()> how) : InfoHolder(New<InfoBase>(1)), copy(std::move(how)) {}
    InfoHolder* DeepCopy() const override { return copy(); }
    std::function<InfoHolder*()> copy;
};

// Through sizes at which the pool of nodes grows, hands freed nodes out again, and gives all back.
TEST(StorageOfContainers, AgreesWithAMap)
{
    Storage<InfoBase> storage;
    std::map<unsigned int, boost::intrusive_ptr<InfoBase>> model;
    unsigned int state = 7;
    for (unsigned int step = 0; step < 12000; ++step) {
        state = state * 1664525 + 1013904223;
        unsigned int const id = state >> 8 & 1023;
        bool const mostlyAdds = step % 4000 < 2000;
        if ((state >> 24 & 3) == 0 || !mostlyAdds) {
            ASSERT_EQ(storage.Remove(id), model.erase(id) != 0 ? 0 : IfErrNotFound);
        } else {
            auto const info = New<InfoBase>(id, std::to_string(id));
            ASSERT_EQ(storage.Add(info), model.try_emplace(id, info).second ? 0 : IfErrDuplicateId);
        }
        if (step % 1000 == 999) {
            Storage<InfoBase> copy(storage);
            storage.Clear();
            EXPECT_TRUE(storage.Empty());
            storage = copy; // whose nodes are its own
            copy = Storage<InfoBase>();
            storage = *&storage;
        }
        ASSERT_EQ(storage.Size(), model.size());
    }
    std::vector<boost::intrusive_ptr<InfoBase>> all;
    storage.Get(all);
    for (auto next = all.begin(); auto const& [id, info] : model) {
        ASSERT_EQ(*next++, info);
        EXPECT_EQ(storage.Get(id), info);
        EXPECT_EQ(storage.Find(std::to_string(id)), info);
    }
}

TEST(HoldersThatAreOdd, LeaveAContainerWhole)
{
    InfoHolderContainer source;
    InfoHolderContainer target;
    auto const empty = Make<InfoHolder>(nullptr); // which has no key, and is taken for null
    EXPECT_EQ(target.Add(empty) + target.Add(std::vector{empty}), 0);
    target.Set(empty);
    EXPECT_TRUE(target.Empty());
    for (auto* const copy : {static_cast<InfoHolder*>(nullptr), empty.get()}) {
        source.Set(Make<OddHolder>([=] { return copy; }));
        EXPECT_TRUE(InfoHolderContainer(source).Empty());
    }
    source.Set(Make<OddHolder>([]() -> InfoHolder* { throw std::bad_alloc(); }));
    target.Add(New<InfoHolder>(9));
    EXPECT_THROW(target = source, std::bad_alloc);
    EXPECT_TRUE(target.IsPresent(9));
}

template<typename Pair, typename Info, typename Item>
void TestPair()
{
    Pair a;
    a.Infos().Add(New<Info>(3, "speed"));
    a.Items().Add(New<Item>(4));
    unsigned int id = 0;
    EXPECT_FALSE(a.FindInfoItemId("", id)); // where the value without a name would be found
    EXPECT_TRUE(a.FindInfoItemId("speed", id));
    EXPECT_EQ(id, 3U);
    Pair assigned;
    assigned = Pair(a);
    EXPECT_TRUE(assigned.Infos().IsPresent(3) && assigned.Infos().Get(3) != a.Infos().Get(3));
    EXPECT_TRUE(assigned.Items().IsPresent(4) && assigned.Items().Get(4) != a.Items().Get(4));
}

TEST(PairsOfContainers, FindByTheSchemasNameAlone)
{
    TestPair<InfoItemContainer, InfoBase, ItemBase>();
    TestPair<InfoItemHolderContainer, InfoHolder, ItemHolder>();
}

TEST(InfoItemHolder, CannotDoWithoutASchema)
{
    for (auto const& none : {boost::intrusive_ptr<InfoHolder>(), Make<InfoHolder>(nullptr)})
        try {
            auto const made = Make<InfoItemHolder>(none);
            ADD_FAILURE() << "no exception";
        } catch (Orlek::LogicError const& error) {
            EXPECT_EQ(error.GetCode(), -32);
            EXPECT_EQ(error.GetMessage(), "Null InfoHolder Pointer");
            EXPECT_EQ(error.GetLocation().GetFile(), R"(..\..\include\Legacy/If/InfoItemHolderDefs)");
            EXPECT_EQ(error.GetLocation().GetFunction(), "Legacy::If::InfoItemHolder::InfoItemHolder");
            EXPECT_EQ(error.GetLocation().GetLine(), 273);
        }
}

TEST(InfoItemHolder, TakesWhatIsOfTheSameParameterWithoutValidation)
{
    using Info = NumericInfo<U16Traits>;
    using Item = NumericItem<U16Traits>;
    auto const first = Make<InfoHolder>(MakeInfo<Info>());
    auto const pair = Make<InfoItemHolder>(first);
    EXPECT_EQ(pair->GetItem(), nullptr);
    EXPECT_FALSE(pair->SetInfo(nullptr) || pair->SetInfo(Make<InfoHolder>(nullptr)));
    EXPECT_FALSE(pair->SetInfo(Make<InfoHolder>(Make<Info>(8U, "speed", Permission_t{}))));
    EXPECT_FALSE(pair->SetInfo(Make<InfoHolder>(Make<Info>(7U, "Speed", Permission_t{}))));
    EXPECT_FALSE(pair->SetInfo(Make<InfoHolder>(MakeInfo<NumericArrayInfo<U16Traits>>())));
    EXPECT_FALSE(pair->SetInfo(Make<InfoHolder>(MakeInfo<NumericInfo<S16Traits>>())));
    EXPECT_EQ(pair->GetInfo(), first);
    auto const narrow = Make<Info>(7U, "speed", Permission_t{9});
    narrow->SetMax(1);
    EXPECT_TRUE(pair->SetInfo(Make<InfoHolder>(narrow)));
    EXPECT_EQ(pair->GetInfo()->GetInfo(), narrow);

    auto const tooGreat = Make<ItemHolder>(Item::Create(7, 2));
    EXPECT_TRUE(pair->SetItem(tooGreat));
    EXPECT_FALSE(pair->SetItem(nullptr) || pair->SetItem(Make<ItemHolder>(nullptr)));
    EXPECT_FALSE(pair->SetItem(Make<ItemHolder>(Make<Item>(8U))));
    EXPECT_FALSE(pair->SetItem(Make<ItemHolder>(Make<NumericArrayItem<U16Traits>>(7U))));
    EXPECT_FALSE(pair->SetItem(Make<ItemHolder>(Make<NumericItem<S16Traits>>(7U))));
    EXPECT_EQ(pair->GetItem(), tooGreat);

    // Tags of an application's own count as well, also if there is no room for them in the holders.
    auto const own = MakeInfo<Tagged<Info>>();
    own->numericType = static_cast<NumericType_t>(0x10000);
    auto const place = Make<InfoItemHolder>(Make<InfoHolder>(own));
    auto const value = Make<Tagged<Item>>(7U);
    EXPECT_FALSE(place->SetItem(Make<ItemHolder>(value)));
    value->numericType = static_cast<NumericType_t>(0x10001);
    EXPECT_FALSE(place->SetItem(Make<ItemHolder>(value)));
    value->numericType = own->numericType;
    EXPECT_TRUE(place->SetItem(Make<ItemHolder>(value)));
    value->type = IfType_t::Bool;
    EXPECT_FALSE(place->SetItem(Make<ItemHolder>(value)));
}

// What a holder holds is what it is found by.
static_assert(!std::is_copy_assignable_v<InfoHolder> && !std::is_copy_assignable_v<ItemHolder> &&
              !std::is_copy_assignable_v<InfoItemHolder>);

TEST(Holder, CopiesWhatItHolds)
{
    auto const info = New<InfoHolder>(7);
    auto const item = New<ItemHolder>(7);
    EXPECT_EQ(Make<InfoHolder>(*info)->GetInfo(), info->GetInfo());
    EXPECT_NE(Hold(info->DeepCopy())->GetInfo(), info->GetInfo());
    EXPECT_NE(Hold(item->DeepCopy())->GetItem(), item->GetItem());
    EXPECT_EQ(Hold(Make<InfoHolder>(nullptr)->DeepCopy())->GetDisplayName(), "");
    EXPECT_EQ(Hold(Make<ItemHolder>(nullptr)->DeepCopy())->GetDisplayText(), "");
}

} // namespace
} // namespace Legacy::If::Test
