#include "TestSupport.h"

#include <Legacy/If/Creators.h>

#include <memory>
#include <tuple>

namespace Legacy::If::Test {
namespace {

template<typename T>
class Creators : public testing::Test
{};

// One class of each shape; the instances themselves are pinned by the list of exported symbols.
using Created = testing::Types<NumericItem<U16Traits>, NumericArrayItem<FloatTraits>, RectItem<U16Traits>,
                               RectArrayItem<U16Traits>, BoolItem, BoolArrayItem, StringItem, StringArrayItem,
                               ColourItem, EndpointItem, AppEndpointItem, CompositeItem>;
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
    EXPECT_EQ(held->GetType(), TypeParam::GetTypeStatic());
    EXPECT_EQ(held->GetNumericType(), TypeParam::GetNumericTypeStatic());
    EXPECT_TRUE(held->IsEqualValue(derived));
    EXPECT_TRUE(held->IsEqualValue(Make<TypeParam>(1U)));
}

TEST(InfoCreator, MakesASchemaWithItsFirstBounds)
{
    InfoCreator<NumericArrayInfo<U64Traits>> const creator;
    InfoCreatorBase const& base = creator;
    auto const made = Hold(base.CreateInfo(7, "rates", Permission_t{3}));
    auto const* const info = dynamic_cast<NumericArrayInfo<U64Traits> const*>(made.get());
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->GetId(), 7U);
    EXPECT_EQ(info->GetName(), "rates");
    EXPECT_EQ(info->GetPermission(), Permission_t{3});
    EXPECT_EQ(info->GetMinSize(), 1U);
    EXPECT_EQ(info->GetMax(), U64Traits::k_defaultMax);
}

} // namespace
} // namespace Legacy::If::Test
