#include "../TestSupport.h"

#include <Legacy/If/FormattedInfoItemDump.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>

#include <iomanip>

namespace Legacy::If::Test {
namespace {

std::string Dump(InfoPtr const& info, ItemPtr const& item)
{
    std::ostringstream os;
    os << std::setfill('*') << std::right;
    FormattedInfoItemDump(os, info, item);
    os << std::setw(3) << 1;
    return os.str();
}

/// Tells all types apart from its own. Dumps go by the tags.
struct Aloof : NumericInfo<U16Traits>
{
    using NumericInfo::NumericInfo;
    bool IsEqualType(ItemPtr const&) const override { return false; }
    bool IsEqualType(InfoPtr const&) const override { return false; }
};

TEST(FormattedDump, PrintsOneParameterInColumns)
{
    auto const info = MakeInfo<StringInfo>();
    auto const number = Make<NumericItem<U16Traits>>(7U);
    auto const numbers = MakeInfo<NumericInfo<U16Traits>>();
    std::string const name(40, 'n'); // wider than its column
    struct
    {
        InfoPtr info;
        ItemPtr item;
        std::string text;
    } const rows[] = {
        // Columns leave their alignment and fill behind, as the number after them shows.
        {nullptr, nullptr, "**1"},
        {info, Hold(StringItem::Create(7, "fast")),
         "speed                            String             {fast} {\"\"; max length=256}1  "},
        {Make<StringInfo>(7U, name, Permission_t{}), nullptr, name + " String             \"\"; max length=2561  "},
        {nullptr, number, "NumericU16         01  "},
        {MakeInfo<Aloof>(), number, "speed                            NumericU16         {0} {0 <= 0 <= 65535}1  "},
        {info, number, "Type mismatch!**1"},
        {numbers, Make<NumericItem<S16Traits>>(7U), "Type mismatch!**1"},
        {numbers, Make<NumericItem<S16Traits>>(8U), "InfoItemId mismatch!**1"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Dump(row.info, row.item), row.text);
}

} // namespace
} // namespace Legacy::If::Test
