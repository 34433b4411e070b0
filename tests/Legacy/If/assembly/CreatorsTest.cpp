#include "../TestSupport.h"

#include <Legacy/If/Creators.h>

namespace Legacy::If::Test {
namespace {

// One class of each shape; the instances themselves are pinned by the list of exported symbols.
TEST(Creators, MakeTheirClassInItsFirstStateUnderItsIdentity)
{
    auto const expect = []<typename Item>(ItemCreator<Item> const& creator) {
        ItemCreatorBase const& base = creator;
        ItemBase* const made = base.CreateItem(42);
        EXPECT_EQ(made->GetRefCount(), 0);
        auto const held = Hold(made);
        EXPECT_EQ(typeid(*made), typeid(Item));
        EXPECT_EQ(held->GetId(), 42U);
        EXPECT_TRUE(held->IsEqualValue(Hold(creator.CreateDerivedItem(42))));
    };
    TraitsList<ItemCreator<NumericItem<U16Traits>>, ItemCreator<NumericArrayItem<FloatTraits>>,
               ItemCreator<RectItem<U16Traits>>, ItemCreator<RectArrayItem<U16Traits>>, ItemCreator<BoolArrayItem>,
               ItemCreator<EndpointItem>, ItemCreator<CompositeItem>>::ForEach(expect);

    InfoCreator<NumericArrayInfo<U64Traits>> const creator;
    InfoCreatorBase const& base = creator;
    auto const made = Hold(base.CreateInfo(7, "rates", Permission_t{3}));
    EXPECT_NE(dynamic_cast<NumericArrayInfo<U64Traits> const*>(made.get()), nullptr);
    EXPECT_TRUE(made->GetId() == 7 && made->GetName() == "rates" && made->GetPermission() == Permission_t{3});
}

} // namespace
} // namespace Legacy::If::Test
