// Lets two schemas and two values of one family meet, family after family, and calls what that family alone has:
// checked setters, bounds, tables, corners, members. What a validation finds is gathered and logged.

#include "Parts.h"

#include <Legacy/If/FindingScope.h>
#include <Legacy/If/Result.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

using namespace Parts;

namespace {

void Log(ItemBase& item, InfoPtr const& info)
{
    If::FindingScope const scope(If::FindingScope::Bytes_t::AsNumbers);
    auto const finding = item.Validate(info);
    Require(!finding == scope.GetMessage().IsEmpty());
    if (!finding)
        return;
    Require(!scope.GetMessage().GetString("").empty() && finding->GetAsString().empty());
    If::Result result(1);
    result.AddResults({finding}, finding->GetSeverityLevel());
    If::Result twice(2);
    twice = *result.Clone();
    twice.AddResults(result.Clone(), finding->GetSeverityLevel());
    Require(twice.ContainsResultOfSeverity(finding->GetSeverityLevel()) && twice.GetNumResults() == 2);
    std::ostringstream log;
    auto& manager = Orlek::LogManager::Instance();
    manager.AddConsoleSink(log);
    twice.LogResults(manager.GetLogger("Fuzz"), scope.GetMessage().GetString(""));
    manager.RemoveConsoleSink(log);
    Require(!log.str().empty());
}

void UseElements(If::EnumInfo& info, int value)
{
    bool const isThere = info.IsPresent(value);
    If::ElemType<int> elem;
    std::string name;
    Require((info.GetElem(value, elem) == 0) == isThere && (info.GetElemName(value, name) == 0) == isThere);
    int named = 0;
    Require(elem.name == name && (!isThere || info.GetElemVal(name, named) == 0));
    Require((info.DisableElem(value) == 0) == isThere && !info.IsEnabled(value));
    Require((info.EnableElem(value) == 0) == isThere && info.IsEnabled(value) == isThere);
    auto const table = info.GetTable();
    Require((info.RemoveElem(value) == 0) == isThere);
    Require(info.SetTable(table) == 0 && info.GetTable() == table && info.GetSize() == table.size());
}

/// Members that are taken out and put back, one of them twice.
void UseMembers(auto& list, auto member, auto get, auto set, auto setOne, auto add)
{
    std::vector<decltype(member)> members;
    (list.*get)(members);
    (list.*set)(members);
    unsigned int index = 0xFFFFFFFF;
    Require((list.*add)(member, index) && index == members.size() && list.IsPresent(index));
    Require((list.*setOne)(0, member) && !(list.*setOne)(index + 1, member) && !list.IsPresent(index + 1));
}

template<typename Item>
void UseItem(Item& item)
{
    item.GetSerialDataSize();
    Require(!item.IsEqualValue(nullptr));
    if constexpr (requires { item.GetARGB(); })
        item.GetARGB();
    if constexpr (requires { item.GetBearing(); })
        item.Set({item.GetBearing(), item.GetInclination(), item.GetRoll()});
    if constexpr (requires { item.GetWidth(); })
        static_cast<void>(item.GetWidth() == item.GetHeight());
    if constexpr (requires { item.SetItems({}); }) {
        UseMembers(item, ItemPtr(new If::BoolItem(1)),
                   static_cast<void (Item::*)(std::vector<ItemPtr>&)>(&Item::GetItems), &Item::SetItems, &Item::SetItem,
                   static_cast<bool (Item::*)(ItemPtr const&, unsigned int&)>(&Item::AddItem));
        std::vector<boost::intrusive_ptr<ItemBase const>> items;
        std::as_const(item).GetItems(items);
        Require(items.size() == item.GetSize() && items[0] == item.GetItem(0));
    }
}

template<typename Info, typename Item>
void UseInfo(Info& info, Item& item, int number)
{
    if constexpr (requires { item.SetVal(item.GetVal(), info); })
        item.SetVal(item.GetVal(), info);
    if constexpr (requires { item.BoundVal(info); }) {
        item.BoundVal(info);
        if constexpr (requires { item.WithinBounds(info); })
            item.WithinBounds(info);
    }
    if constexpr (requires { info.GetMinARGB(); })
        Require((info.GetMinARGB() ^ info.GetMaxARGB() ^ info.GetDefaultARGB()) <= 0xFFFFFFFF);
    if constexpr (std::is_same_v<Info, If::EnumInfo>)
        UseElements(info, number);
    else if constexpr (requires { info.IsPresent(info.GetDefault()); })
        Require(info.GetTable().size() == info.GetSize() &&
                (info.GetSize() == 0 || info.IsPresent(info.GetTable()[0])));
    if constexpr (requires { item.SetValTopLeft(info.TopLeft()); }) {
        item.SetValTopLeft(info.TopLeft());
        item.SetValBottomRight(info.BottomRight());
    }
    if constexpr (requires { info.SetInfos({}); }) {
        UseMembers(info, InfoPtr(new If::BoolInfo(1, "", {})),
                   static_cast<void (Info::*)(std::vector<InfoPtr>&)>(&Info::GetInfos), &Info::SetInfos, &Info::SetInfo,
                   static_cast<bool (Info::*)(InfoPtr const&, unsigned int&)>(&Info::AddInfo));
        std::vector<boost::intrusive_ptr<InfoBase const>> infos;
        std::as_const(info).GetInfos(infos);
        Require(infos.size() == info.GetSize() && infos[0] == info.GetInfo(0));
    }
}

template<typename Info, typename Item>
void Meet(Input& input)
{
    ItemPtr const item = MakeItemOf<Item>(input, 1);
    ItemPtr const other = MakeItemOf<Item>(input, 1);
    item->AssignValue(other, nullptr);
    item->IsEqualValue(other);
    UseItem(static_cast<Item&>(*item));
    if constexpr (!std::is_void_v<Info>) {
        InfoPtr const info = MakeInfoOf<Info, Item>(input, 1);
        InfoPtr const source = MakeInfoOf<Info, Item>(input, 1);
        info->AssignValue(source, nullptr);
        info->MergeBounds(source);
        info->IsEqualBounds(source);
        Log(*item, info);
        UseInfo(static_cast<Info&>(*info), static_cast<Item&>(*item), input.Byte());
        UseInfo(static_cast<Info&>(*source), static_cast<Item&>(*other), input.Byte());
    }
    Log(*other, nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    while (!input.Empty())
        WithFamily(input,
                   [&input]<typename Info, typename Item>(IfKit::Family<Info, Item>) { Meet<Info, Item>(input); });
    return 0;
}
