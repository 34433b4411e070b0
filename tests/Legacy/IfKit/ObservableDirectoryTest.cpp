#include "KitSupport.h"

#include <stdexcept>

namespace Legacy::IfKit::Test {
namespace {

class Observable : public testing::Test
{
protected:
    /// A listener that notes what it hears behind its name.
    ObservableDirectory::Listener Note(std::string const& name)
    {
        return [this, name](Change_t const& change) {
            auto const text = [](auto const& holder) { return holder ? ValueText(*holder->GetItem()) : "none"; };
            heard.push_back(name + ": " + change.parameter->GetInfo()->GetInfo()->GetName() +
                            (change.IsSchema() ? (change.formerInfo ? " schema" : " new")
                                               : ' ' + text(change.formerItem) + ">" + text(change.item)));
        };
    }

    int SetMtu(unsigned short value)
    {
        return directory->SetItem(new ItemHolder(NumericItem<U16Traits>::Create(IdOf(1), value)));
    }

    Texts Heard() { return std::exchange(heard, {}); }

    std::unique_ptr<ObservableDirectory> const directory = MakeDirectory<ObservableDirectory>();
    Texts heard;
};

TEST_F(Observable, TellsThoseWhoAskedFromTheInsideOut)
{
    directory->Connect(Note("all"));
    directory->Connect(IdOf(1).GetSectionId(1), Note("network"));
    directory->Connect(IdOf(1).GetSectionId(2), Note("eth0"));
    directory->Connect(IdOf(1), Note("mtu"));
    directory->Connect(IdOf(1), Note("mtu too"));
    directory->Connect(IdOf(0), Note("mode"));
    directory->Connect(InfoItemSectionId::CreateLevel1SectionId(1), Note("elsewhere"));
    EXPECT_EQ(SetMtu(9000), 0);
    EXPECT_EQ(Heard(), (Texts{"mtu: mtu 1500>9000", "mtu too: mtu 1500>9000", "eth0: mtu 1500>9000",
                              "network: mtu 1500>9000", "all: mtu 1500>9000"}));
    directory->SetItem(new ItemHolder(StringItem::Create(IdOf(2), "up")));
    EXPECT_EQ(Heard().front(), "eth0: alias none>up");
    directory->SetInfo(new InfoHolder(Named<NumericInfo<U16Traits>>("mtu", IdOf(1))));
    EXPECT_EQ(Heard().front(), "mtu: mtu schema");

    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    delta->AddInfo(new InfoHolder(Named<BoolInfo>("flag", IdOf(3))));
    delta->AddItem(new ItemHolder(BoolItem::Create(IdOf(3), true)));
    EXPECT_EQ(directory->UpdateFromDelta(delta, true, true), 0);
    EXPECT_EQ(Heard(), (Texts{"eth0: flag new", "network: flag new", "all: flag new", "eth0: flag none>True",
                              "network: flag none>True", "all: flag none>True"}));
    directory->SetItem(new ItemHolder(BoolItem::Create(IdOf(1), true))); // refused
    directory->Clear();
    EXPECT_EQ(Heard(), Texts());
}

TEST_F(Observable, LetsListenersComeAndGo)
{
    ObservableDirectory::Connection last;
    {
        boost::signals2::scoped_connection const first = directory->Connect(IdOf(1), Note("first"));
        last = directory->Connect(IdOf(1), Note("last"));
        auto const once = std::make_shared<ObservableDirectory::Connection>();
        *once = directory->Connect([&, once](Change_t const&) {
            heard.emplace_back("once");
            once->disconnect();
            last.disconnect();
            directory->Connect(IdOf(1), Note("late"));
        });
        SetMtu(1);
        EXPECT_EQ(Heard(), (Texts{"first: mtu 1500>1", "last: mtu 1500>1", "once"}));
        SetMtu(2);
        EXPECT_EQ(Heard(), (Texts{"first: mtu 1>2", "late: mtu 1>2"}));
    }
    SetMtu(3);
    EXPECT_EQ(Heard(), Texts{"late: mtu 2>3"});
    auto other = std::make_unique<ObservableDirectory>();
    boost::signals2::scoped_connection const outlives = other->Connect(Note("other"));
    other.reset();
}

TEST_F(Observable, TellsChangesOfListenersInTheirOrder)
{
    directory->Connect(IdOf(1), [&](Change_t const& change) {
        if (change.item && ValueText(*change.item->GetItem()) == "1") {
            EXPECT_EQ(SetMtu(2), 0);
            EXPECT_EQ(ValueText(*change.parameter->GetItem()->GetItem()), "2"); // made at once
            EXPECT_EQ(SetMtu(3), 0);
        }
    });
    directory->Connect(IdOf(1), Note("a"));
    directory->Connect(Note("b"));
    SetMtu(1);
    EXPECT_EQ(Heard(),
              (Texts{"a: mtu 1500>1", "b: mtu 1500>1", "a: mtu 1>2", "b: mtu 1>2", "a: mtu 2>3", "b: mtu 2>3"}));
}

TEST_F(Observable, TellsAllWhateverOneThrows)
{
    auto const fail = [&](Change_t const& change) {
        if (ValueText(*change.item->GetItem()) == "1")
            SetMtu(2);
        throw std::runtime_error(ValueText(*change.item->GetItem()));
    };
    boost::signals2::scoped_connection failing = directory->Connect(IdOf(1), fail);
    directory->Connect(IdOf(1), Note("a"));
    directory->Connect(Note("b"));
    try {
        SetMtu(1);
        ADD_FAILURE();
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ(error.what(), "1"); // the first one
    }
    EXPECT_EQ(Heard(), (Texts{"a: mtu 1500>1", "b: mtu 1500>1", "a: mtu 1>2", "b: mtu 1>2"}));
    failing.disconnect();
    EXPECT_EQ(SetMtu(4), 0);
    EXPECT_EQ(Heard(), (Texts{"a: mtu 2>4", "b: mtu 2>4"}));
}

} // namespace
} // namespace Legacy::IfKit::Test
