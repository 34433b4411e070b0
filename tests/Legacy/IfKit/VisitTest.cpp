#include "KitSupport.h"

#include <concepts>
#include <typeinfo>

namespace Legacy::IfKit::Test {
namespace {

/// Tells the class as which an object was given. One visitor for all: each one is instantiated for every class.
struct TypeOf
{
    template<typename Given>
    std::type_info const* operator()(Given&) const
    {
        return &typeid(Given);
    }
};

TEST(Visit, CallsTheCaseOfEachClass)
{
    std::size_t classes = 0;
    AllFamilies::ForEach([&]<typename Info, typename Item>(Family<Info, Item>) {
        ItemPtr const item = Make<Item>(1U);
        EXPECT_EQ(*Visit(*item, TypeOf()), typeid(Item));
        EXPECT_EQ(*Visit(std::as_const(*item), TypeOf()), typeid(Item));
        if constexpr (!std::is_void_v<Info>) {
            InfoPtr const info = Named<Info>("name");
            EXPECT_EQ(*Visit(*info, TypeOf()), typeid(Info));
            EXPECT_EQ(*Visit(std::as_const(*info), TypeOf()), typeid(Info));
        }
        ++classes;
    });
    EXPECT_EQ(classes, 53U);
}

TEST(Visit, ChangesWhatIsNotConst)
{
    ItemPtr const item(NumericItem<U8Traits>::Create(1, 7));
    Visit(
        *item, []<typename T>(NumericItem<T>& number) { number.SetVal(8); }, [](ItemBase&) { FAIL(); });
    EXPECT_EQ(item->GetValAsString(), "8");
}

/// A value with any tags and of no class of the library.
class Liar : public NumericItem<U8Traits>
{
public:
    Liar(int type, int numericType) : NumericItem(1), m_type(type), m_numericType(numericType) {}
    IfType_t GetType() const override { return static_cast<IfType_t>(m_type); }
    NumericType_t GetNumericType() const override { return static_cast<NumericType_t>(m_numericType); }

private:
    int m_type;
    int m_numericType;
};

TEST(Visit, TrustsNoTag)
{
    auto const seen = [](Liar const& liar) {
        return Visit(
            liar, [](NumericItem<U8Traits> const&) { return 1; }, [](BoolItem const&) { return 2; },
            [](ItemBase const&) { return 3; });
    };
    EXPECT_EQ(seen({2, 1}), 1); // derived from the class that the tags name
    for (int const type : {0, 1, 3, 0x80, 0x8a, 0xff, 256, -1, 1 << 30})
        for (int const numericType : {0, 1, 10, 11, -1, 1 << 30})
            EXPECT_EQ(seen({type, numericType}), 3) << type << ' ' << numericType;
    EXPECT_EQ(seen({2, 2}), 3);
}

TEST(Visit, NeedsACaseForEachClass)
{
    auto const one = [](BoolItem const&) { return 1; };
    auto const numbers = []<typename T>(NumericItem<T> const&) { return 1; };
    auto const standard = [](ItemBase const&) { return 2; };
    auto const each = []<typename T>(T const&) requires(std::derived_from<T, ItemBase> && !std::is_same_v<T, ItemBase>)
    {
        return 3;
    };
    auto const foreign = [](Foreign<ItemBase const> const& item) { return item.object.GetId() == 1 ? 4 : 5; };
    static_assert(VisitorOf<ItemBase const, decltype(one), decltype(standard)>);
    static_assert(!VisitorOf<ItemBase const, decltype(one), decltype(numbers), decltype(foreign)>);
    static_assert(!VisitorOf<InfoBase const, decltype(one), decltype(standard)>);
    static_assert(VisitorOf<ItemBase const, decltype(each), decltype(foreign)>);
    static_assert(!VisitorOf<ItemBase const, decltype(each)>);
    EXPECT_EQ(Visit(Liar(9, 9), each, foreign), 4);
    EXPECT_EQ(Visit(Liar(2, 1), each, foreign), 3);
    EXPECT_EQ(Visit(Liar(9, 9), each, foreign, standard), 2); // a default is for foreign ones too
}

} // namespace
} // namespace Legacy::IfKit::Test
