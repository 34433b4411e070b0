#pragma once

#include "convert/Change.h"
#include "net/NetForm.h"
#include "record/SerialRecord.h"
#include "text/Text.h"

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Detail/NetValue.h>

#include <istream>
#include <ostream>

// The bodies of the templates over addresses and endpoints, for the sources that instantiate them.

namespace Legacy::If::Detail {

template<class Family>
NetInfo<Family>::NetInfo(unsigned int const& id, std::string const& name, Permission_t const& permission)
    : Base(id, name, permission)
{}

template<class Family>
NetInfo<Family>* NetInfo<Family>::DeepCopy(unsigned int id, std::string const& name,
                                           Permission_t const& permission) const
{
    return this->CopyAs_(id, name, permission);
}

template<class Family>
ItemBase* NetInfo<Family>::CreateItem() const
{
    return NetItem<Family>::Create(this->GetId(), m_default);
}

template<class Family>
int NetInfo<Family>::SetDefault(Value const& value)
{
    m_default = value;
    return 0;
}

template<class Family>
bool NetInfo<Family>::IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const
{
    return this->IsEqualType(other);
}

template<class Family>
int NetInfo<Family>::MergeBounds(boost::intrusive_ptr<InfoBase const> const& other)
{
    return this->IsEqualType(other) ? 0 : IfErrBoundsTypeMismatch;
}

template<class Family>
int NetInfo<Family>::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return AssignFrom<NetInfo>(
        source, changed, [this](auto& change, auto const& schema) { change.Assign(m_default, schema.m_default); });
}

template<class Family>
void NetInfo<Family>::DumpVal(std::ostream& os) const
{
    DumpHead(os, *this);
    DumpLine(os, "default: ", NetForm<Family>::DisplayText(m_default));
}

template<class Family>
std::ostream& NetInfo<Family>::operator<<(std::ostream& os) const
{
    return os << NetForm<Family>::k_infoName;
}

template<class Family>
NetItem<Family>::NetItem(unsigned int id) : Base(id)
{}

template<class Family>
NetItem<Family>* NetItem<Family>::DeepCopy(unsigned int id) const
{
    return this->CopyAs_(id);
}

template<class Family>
int NetItem<Family>::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    return AssignFrom<NetItem>(source, changed,
                               [this](auto& change, auto const& item) { change.Assign(m_value, item.m_value); });
}

template<class Family>
unsigned int NetItem<Family>::GetSerialDataSize() const
{
    auto const text = NetForm<Family>::RecordText(*this);
    return ClampSize(NetRecordSize<Family>(text.size()));
}

template<class Family>
int NetItem<Family>::Serialize(SerialStruct_t* record) const
{
    auto const text = NetForm<Family>::RecordText(*this);
    return WriteRecord(*this, record, NetRecordSize<Family>(text.size()), [this, &text](PayloadWriter payload) {
        NetForm<Family>::PutPrefix(payload, m_value);
        payload.PutText(text);
    });
}

template<class Family>
int NetItem<Family>::Deserialize(ConstSerialStruct_t const* record)
{
    PayloadReader payload;
    if (int const code = OpenRecord(*this, record, payload))
        return code;
    if (payload.Left() <= NetForm<Family>::k_prefixSize || !payload.EndsInZero())
        return IfErrInvalidArgument;
    m_value = NetForm<Family>::Get(payload);
    return 0;
}

template<class Family>
std::shared_ptr<ResultElem const> NetItem<Family>::Validate(boost::intrusive_ptr<InfoBase const> const&)
{
    return {};
}

template<class Family>
bool NetItem<Family>::SetValFromStream(std::istream& in, std::ostream&,
                                       boost::intrusive_ptr<InfoBase const> const& info)
{
    if (!NetForm<Family>::CanRead(info.get()))
        return false;
    if (!in.eof()) {
        std::string word;
        in >> word;
        m_value = NetForm<Family>::FromWord(word, info.get());
    }
    return true;
}

template<class Family>
std::ostream& NetItem<Family>::operator<<(std::ostream& os) const
{
    return os << NetForm<Family>::DisplayText(m_value);
}

} // namespace Legacy::If::Detail
