#include <Legacy/If/Composite.h>
#include <Legacy/If/FindingScope.h>
#include <Legacy/IfKit/Explain.h>
#include <Legacy/IfKit/Visit.h>

#include <utility>
#include <vector>

namespace Legacy::IfKit {

using If::CompositeInfo;
using If::CompositeItem;
using If::InfoBase;
using If::ItemBase;
using If::LocalizedString;

namespace {

using InfoPtr = boost::intrusive_ptr<InfoBase const>;

/// The message of the value's own validation.
LocalizedString Ask(ItemBase& item, InfoPtr const& info)
{
    If::FindingScope const scope(If::FindingScope::Bytes_t::AsNumbers);
    if (!item.Validate(info))
        return {};
    if (!scope.GetMessage().IsValid())
        item.ItemBase::ValidateMin(info); // the root's: it always fails, and says what little can be said
    return scope.GetMessage();
}

/// A composite that passed, and how far its members are done with.
struct Level_t
{
    CompositeItem* items;
    CompositeInfo const* infos;
};

/// Goes through a value and its members, depth first and without recursion.
class Search
{
public:
    explicit Search(ExplainUse const& use) : m_use(use) {}

    void Run(ItemBase& item, InfoPtr const& info)
    {
        bool wanted = Look_(item, info);
        while (wanted && !m_levels.empty()) {
            auto const [items, infos] = m_levels.back();
            unsigned int const index = m_place.back();
            if (index == items->GetSize()) {
                m_levels.pop_back();
                m_place.pop_back();
                if (!m_place.empty())
                    ++m_place.back();
            } else {
                std::size_t const depth = m_levels.size();
                wanted = Look_(*items->GetItem(index), infos->GetInfo(index));
                if (m_levels.size() == depth)
                    ++m_place.back();
            }
        }
    }

private:
    /// Tells the failure of one value, or notes a composite to be gone into. False to end the search.
    bool Look_(ItemBase& item, InfoPtr const& info)
    {
        LocalizedString const message = Ask(item, info);
        if (message.IsValid())
            return m_use(m_place, message);
        auto* const items = item.GetType() == If::IfType_t::Composite ? dynamic_cast<CompositeItem*>(&item) : nullptr;
        auto const* const infos = items ? dynamic_cast<CompositeInfo const*>(info.get()) : nullptr;
        // A class that an application derived may pass whatever the counts.
        if (infos && items->GetSize() == infos->GetSize()) {
            m_levels.push_back({items, infos});
            m_place.push_back(0);
        }
        return true;
    }

    ExplainUse const& m_use;
    std::vector<Level_t> m_levels;
    std::vector<unsigned int> m_place; // as long as there are levels
};

} // namespace

LocalizedString Explain(ItemBase& item, InfoPtr const& info)
{
    LocalizedString first;
    ExplainEach(item, info, [&first](MemberPlace, LocalizedString const& message) {
        first = message;
        return false;
    });
    return first;
}

LocalizedString Explain(ItemBase const& item, InfoPtr const& info)
{
    return Explain(*boost::intrusive_ptr<ItemBase>(item.DeepCopy()), info);
}

void ExplainEach(ItemBase& item, InfoPtr const& info, ExplainUse const& use) { Search(use).Run(item, info); }

bool IsWithinBounds(ItemBase const& item, InfoBase const& info, MemberPlace place)
{
    using namespace If;
    if (!place.empty()) {
        auto const* const items = dynamic_cast<CompositeItem const*>(&item);
        auto const* const infos = dynamic_cast<CompositeInfo const*>(&info);
        auto const member = items ? items->GetItem(place.front()) : nullptr;
        auto const schema = infos ? infos->GetInfo(place.front()) : nullptr;
        return member && schema && IsWithinBounds(*member, *schema, place.subspan(1));
    }
    return Visit(
        item,
        [&]<typename T>(NumericSparseItem<T> const& value) {
            auto const* const schema = dynamic_cast<NumericSparseInfo<T> const*>(&info);
            return schema && schema->IsPresent(value.GetVal());
        },
        [&]<typename T>(CoordinateItem<T> const& value) {
            auto const* const schema = dynamic_cast<CoordinateInfo<T> const*>(&info);
            return schema && value.WithinBounds(*schema);
        },
        [&]<typename T>(RectItem<T> const& value) {
            auto const* const schema = dynamic_cast<RectInfo<T> const*>(&info);
            return schema && value.WithinBounds(*schema);
        },
        [&]<typename T>(RectArrayItem<T> const& value) {
            auto const* const schema = dynamic_cast<RectArrayInfo<T> const*>(&info);
            return schema && value.WithinBounds(*schema) && schema->Sizes().Contains(value.GetSize());
        },
        [](ItemBase const&) { return false; });
}

} // namespace Legacy::IfKit
