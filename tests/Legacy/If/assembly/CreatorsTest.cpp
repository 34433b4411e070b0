#include "../TestSupport.h"

#include <Legacy/If/Creators.h>

#include <memory>

namespace Legacy::If::Test {
namespace {

template<typename T>
class Creators : public testing::Test
{};

// One class of each shape; the instances themselves are pinned by the list of exported symbols.
using Created = testing::Types<NumericItem<U16Traits>, NumericArrayItem<FloatTraits>, RectItem<U16Traits>,
                               RectArrayItem<U16Traits>, BoolArrayItem, EndpointItem, CompositeItem>;
TYPED_TEST_SUITE(Creators, Created);

TYPED_TEST(Creators, MakeTheirClassInItsFirstState)
{
    ItemCreator<TypeParam> const creator;
    std::unique_ptr<ItemCreatorBase const> const base(new ItemCreator<TypeParam>(creator));
    ItemBase* const made = base->CreateItem(42);
    EXPECT_EQ(made->GetRefCount(), 0);
    auto const held = Hold(made);
    auto const derived = Hold(creator.CreateDerivedItem(42));
    EXPECT_EQ(typeid(*made), typeid(TypeParam));
    EXPECT_EQ(held->GetId(), 42U);
    EXPECT_TRUE(held->IsEqualValue(derived));
}

TEST(InfoCreator, MakesASchemaUnderItsIdentity)
{
    InfoCreator<NumericArrayInfo<U64Traits>> const creator;
    InfoCreatorBase const& base = creator;
    auto const made = Hold(base.CreateInfo(7, "rates", Permission_t{3}));
    auto const* const info = dynamic_cast<NumericArrayInfo<U64Traits> const*>(made.get());
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->GetId(), 7U);
    EXPECT_EQ(info->GetName(), "rates");
    EXPECT_EQ(info->GetPermission(), Permission_t{3});
}

} // namespace
} // namespace Legacy::If::Test
