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
    std::string const form = "\"\"; max length=256";
    std::string const longName(40, 'n');
    struct
    {
        InfoPtr info;
        ItemPtr item;
        std::string text;
    } const rows[] = {
        {nullptr, nullptr, ""},
        {info, item, Column("speed", 32) + Column("String", 18) + "{fast} {" + form + "}"},
        {info, nullptr, Column("speed", 32) + Column("String", 18) + form},
        {nullptr, item, Column("String", 18) + "fast"},
        {nullptr, number, Column("NumericU16", 18) + "12"},
        {numbers, number, Column("speed", 32) + Column("NumericU16", 18) + "{12} {" + Printed(*numbers) + "}"},
        {Make<StringInfo>(7U, longName, Permission_t{}), nullptr, longName + ' ' + Column("String", 18) + form},
        {info, Hold(StringItem::Create(8, "x")), "InfoItemId mismatch!"},
        {info, number, "Type mismatch!"},
        {numbers, Make<NumericItem<S16Traits>>(7U), "Type mismatch!"},
        {numbers, Make<NumericItem<S16Traits>>(8U), "InfoItemId mismatch!"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Dump(row.info, row.item), row.text);
}

TEST(FormattedDump, LeavesAlignmentAndFillBehind)
{
    std::ostringstream os;
    os << std::setfill('*') << std::right;
    FormattedInfoItemDump(os, nullptr, Hold(StringItem::Create(7, "x")));
    os.str("");
    os << std::setw(3) << 1 << '|';
    EXPECT_EQ(os.str(), "1  |");
}

} // namespace
} // namespace Legacy::If::Test
