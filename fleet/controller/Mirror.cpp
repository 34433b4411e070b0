#include "controller/Mirror.h"

#include <Legacy/If/InfoItemHolderDefs.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Fleet {

using namespace Legacy::If;

Mirror::Mirror(SchemasPtr schemas, Listener listener)
    : m_schemas(std::move(schemas)), m_listener(std::move(listener)), m_sequences(m_schemas->ids.size())
{
    if (UpdateFromDelta(m_schemas->delta, true, false) != 0)
        throw std::logic_error("schemas that were read do not fit together");
}

bool Mirror::Begin(std::uint64_t lineage, std::uint64_t first)
{
    if (lineage == m_lineage && first < m_first)
        return false;
    if (lineage == m_lineage && first == m_first)
        return true;
    if (lineage != m_lineage) {
        std::fill(m_sequences.begin(), m_sequences.end(), 0);
        m_last = 0;
        m_sum = 0;
    }
    m_lineage = lineage;
    m_first = first;
    m_fresh = 0;
    return true;
}

Mirror::Outcome_t Mirror::Apply(std::string const& path, ValueMessage const& message)
{
    if (message.lineage != m_lineage || message.sequence <= m_first)
        return Outcome_t::Stale;
    auto const parameter = FindInfoItem(path);
    if (!parameter)
        return Outcome_t::Foreign;
    auto const& info = parameter->GetInfo()->GetInfo();
    auto const& ids = m_schemas->ids;
    auto const place = std::lower_bound(ids.begin(), ids.end(), info->GetId());
    if (info->GetId() != message.item->GetId() || place == ids.end() || *place != info->GetId())
        return Outcome_t::Foreign;
    auto& sequence = m_sequences[static_cast<std::size_t>(place - ids.begin())];
    if (message.sequence <= sequence)
        return Outcome_t::Known;
    // The bounds are for the device to judge: what it has is shown, with what is wrong about it.
    if (info->GetType() != message.item->GetType() || info->GetNumericType() != message.item->GetNumericType())
        return Outcome_t::Foreign;

    // The number first, so that those who hear of the value see the whole.
    auto const former = std::exchange(sequence, message.sequence);
    m_fresh += former <= m_first;
    m_sum += message.sequence - former;
    m_last = std::max(m_last, message.sequence);
    SetItem(new ItemHolder(message.item));
    return Outcome_t::Applied;
}

bool Mirror::Agrees(TotalMessage const& total) const noexcept
{
    return total.lineage == m_lineage && total.sum == m_sum;
}

bool Mirror::IsAhead(TotalMessage const& total) const noexcept
{
    return total.lineage != m_lineage || total.last <= m_first || m_last > total.last;
}

void Mirror::ItemChanged_(boost::intrusive_ptr<ItemHolder const> const& former, ParameterPtr const& parameter)
{
    // A device that was started again tells everything anew, also what is as it was.
    auto const before = former ? former->GetItem() : ItemPtr();
    if (m_listener && !(before && before->IsEqualValue(parameter->GetItem()->GetItem())))
        m_listener(parameter, before);
}

} // namespace Fleet
