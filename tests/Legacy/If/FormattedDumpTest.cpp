#include "TestSupport.h"

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

std::string Column(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()), ' ');
    return text + ' ';
}

TEST(FormattedDump, PrintsOneParameterInColumns)
{
    auto const info = MakeInfo<StringInfo>();
    auto const item = Hold(StringItem::Create(7, "fast"));
    auto const number = Make<NumericItem<U16Traits>>(7U);
    number->SetVal(12);
    auto const numbers = MakeInfo<NumericInfo<U16Traits>>();
    std::string const name(40, 'n'); // wider than its column
    std::string const form = "\"\"; max length=256";
    struct
    {
        InfoPtr info;
        ItemPtr item;
        std::string text;
    } const rows[] = {
        // Columns leave their alignment and fill behind, as the number after them shows.
        {nullptr, nullptr, "**1"},
        {info, item, Column("speed", 32) + Column("String", 18) + "{fast} {" + form + "}1  "},
        {Make<StringInfo>(7U, name, Permission_t{}), nullptr, name + ' ' + Column("String", 18) + form + "1  "},
        {nullptr, number, Column("NumericU16", 18) + "121  "},
        {info, Hold(StringItem::Create(8, "x")), "InfoItemId mismatch!**1"},
        {info, number, "Type mismatch!**1"},
        {numbers, Make<NumericItem<S16Traits>>(7U), "Type mismatch!**1"},
        {numbers, Make<NumericItem<S16Traits>>(8U), "InfoItemId mismatch!**1"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Dump(row.info, row.item), row.text);
}

} // namespace
} // namespace Legacy::If::Test
