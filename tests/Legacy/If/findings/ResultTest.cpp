#include "../TestSupport.h"

#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

namespace Legacy::If::Test {
namespace {

constexpr auto k_error = static_cast<Orlek::SeverityLevel_t>(4);
constexpr auto k_beyond = static_cast<Orlek::SeverityLevel_t>(5);
constexpr auto k_lowest = static_cast<Orlek::SeverityLevel_t>(-100);

std::shared_ptr<ResultElem const> FindingOf(Orlek::SeverityLevel_t severity)
{
    return std::make_shared<ResultElem const>(severity, nullptr, nullptr);
}

TEST(ResultElem, CopiesWhatItConcernsAndSharesItOnward)
{
    auto const item = Hold(StringItem::Create(3, "was"));
    ResultElem const finding(k_error, item, MakeInfo<StringInfo>());
    item->SetVal("is");
    EXPECT_EQ(finding.GetItem()->GetValAsString(), "was");
    EXPECT_EQ(finding.GetInfo()->GetName(), "speed");
    EXPECT_EQ(item->GetRefCount(), 1);
    EXPECT_EQ(ResultElem(finding).GetItem(), finding.GetItem());

    // An application's value may be its own copy, and have other holders then.
    struct Constant : StringItem
    {
        using StringItem::StringItem;
        StringItem* DeepCopy(unsigned int) const override { return const_cast<Constant*>(this); }
    };
    boost::intrusive_ptr<ItemBase const> const constant = Make<Constant>(3U);
    EXPECT_EQ(ResultElem(k_error, constant, nullptr).GetItem()->GetRefCount(), 2);
}

TEST(Result, GathersAndFiltersBySeverity)
{
    Result result(11);
    EXPECT_FALSE(result.ContainsResultOfSeverity(k_lowest));
    result.AddResultElem(nullptr);
    result.AddResults({FindingOf(k_lowest), nullptr, FindingOf(k_error), FindingOf(k_beyond)}, k_error);
    EXPECT_EQ(result.GetNumResults(), 2U);
    EXPECT_TRUE(result.ContainsResultOfSeverity(k_beyond));
    EXPECT_FALSE(result.ContainsResultOfSeverity(static_cast<Orlek::SeverityLevel_t>(6)));
    result.AddResults(result.GetResultArray(), k_lowest); // its own findings, while it grows

    auto const shared = result.Clone();
    EXPECT_EQ(shared->GetId(), 11U);
    shared->AddResults(shared, k_lowest); // nothing
    shared->AddResults(std::shared_ptr<Result const>(), k_lowest);
    EXPECT_EQ(shared->GetResultArray(), result.GetResultArray());
    shared->AddResultElem(FindingOf(k_error));
    EXPECT_EQ(result.GetNumResults(), 4U);
    result.AddResults(shared, k_error);
    Result assigned(1);
    assigned = result;
    EXPECT_TRUE(assigned.GetId() == 11 && assigned.GetResultArray() == result.GetResultArray());
    EXPECT_FALSE(result.ContainsPromptableResultElem());
    result.RemovePromptableResultElems();
    result.AddResults({FindingOf(k_lowest)}, k_error);
    EXPECT_EQ(result.GetNumResults(), 9U);
    EXPECT_EQ(result.GetResultArray().capacity(), 10U); // room for all that was given, taken or not
}

TEST(Result, LogsItsPrefixOnceForEachFinding)
{
    auto& manager = Orlek::LogManager::Instance();
    std::ostringstream log;
    manager.AddConsoleSink(log);
    auto const logger = manager.GetLogger("Test.Result");
    Result result(1);
    for (auto const severity : {k_error, Orlek::SeverityLevel_t::Info, k_beyond})
        result.AddResultElem(FindingOf(severity));
    result.LogResults(nullptr, "P: ");
    logger->SetLevel(Orlek::LogLevel_t::Error); // which holds one back
    result.LogResults(logger, "100%s: ");
    result.LogResults(std::make_shared<Orlek::LoggerFacade>(), "silent");
    manager.RemoveConsoleSink(log);

    std::istringstream lines(log.str());
    for (std::string const level : {"Error", "Fatal"}) {
        std::string time;
        std::string line;
        std::getline(lines >> time, line);
        EXPECT_EQ(line,
                  ' ' + level + " Test.Result: 100%s:  (Legacy\\src\\If\\Result:161 Legacy::If::Result::LogResults)");
    }
    EXPECT_EQ(lines.peek(), EOF);
    EXPECT_STREQ(Orlek::LoggerFacade::k_locationAttribute, "Location");
    EXPECT_EQ(manager.GetLogger("Orlek.ConfigItem").use_count(), 3); // the library's, the manager's and this one
}

TEST(LocalizedString, ComparesItsArgumentsByIdentity)
{
    auto const item = Make<LocalizedStringItem>(7U);
    item->SetVal(std::string("K")); // a key where a message is asked for
    LocalizedString a = item->GetVal();
    a.AddArgument(Hold(StringItem::Create(0, "x")));
    LocalizedString b("K");
    b.AddArgument(Hold(StringItem::Create(0, "x"))); // equal, but another object
    EXPECT_NE(a, b);
    LocalizedString copy(a);
    EXPECT_EQ(copy, a);
    copy.SetKey("");
    EXPECT_NE(copy, a);
    EXPECT_TRUE(copy.IsEmpty() && !copy.IsValid());
    copy.AddArgument(nullptr);
    EXPECT_EQ(copy.GetString(""), "");
    EXPECT_EQ(a.GetString(""), "K x"); // the key itself where there is no text for it
}

TEST(FindingScope, HearsWhatItsOwnBlockFinds)
{
    auto const info = MakeInfo<NumericInfo<U8Traits>>();
    info->SetMax(65);
    auto const item = Hold(NumericItem<U8Traits>::Create(7, 66));
    FindingScope const outer;
    EXPECT_TRUE(Heard(outer).empty());
    ASSERT_TRUE(item->Validate(info));
    Texts const told = {"TypesSystemNumericValidationMax", "speed", "A"};
    EXPECT_EQ(Heard(outer), told);
    {
        FindingScope const inner(FindingScope::Bytes_t::AsNumbers);
        ASSERT_TRUE(item->Validate(info));
        EXPECT_EQ(Heard(inner).back(), "65");
        std::thread([&] { EXPECT_TRUE(item->Validate(nullptr)); }).join();
        EXPECT_EQ(Heard(inner).back(), "65");
        auto const wide = MakeInfo<NumericInfo<U32Traits>>();
        wide->SetMax(0xFFFFFFFE);
        ASSERT_TRUE(Hold(NumericItem<U32Traits>::Create(7, 0xFFFFFFFF))->Validate(wide));
        EXPECT_EQ(Heard(inner).back(), "4294967294");
    }
    EXPECT_EQ(Heard(outer), told);
    ASSERT_TRUE(item->Validate(nullptr));
    EXPECT_EQ(Heard(outer), (Texts{"TypesSystemValidateTypeMismatch", "Unknown", "NULL-Info", "Numeric(U8)"}));
}

struct CountingItem : CoordinateItem<U16Traits>
{
    using CoordinateItem::CoordinateItem;
    IfType_t GetType() const override { return ++asked, CoordinateItem::GetType(); }
    mutable int asked = 0;
};

TEST(FindingScope, BuildsNoMessageForNobody)
{
    auto const item = Make<CountingItem>(7U);
    ASSERT_TRUE(item->Validate(nullptr));
    EXPECT_EQ(item->asked, 0);
    FindingScope const scope;
    ASSERT_TRUE(item->Validate(nullptr));
    EXPECT_EQ(item->asked, 1);
    EXPECT_EQ(Heard(scope).back(), "Coordinate(U16)");
}

} // namespace
} // namespace Legacy::If::Test
