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

template<typename Self, typename Item, IfType_t Type, typename Held>
ItemBase* NetInfo<Self, Item, Type, Held>::CreateItem() const
{
    return Item::Create(this->GetId(), m_default);
}

template<typename Self, typename Item, IfType_t Type, typename Held>
int NetInfo<Self, Item, Type, Held>::AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed)
{
    return AssignFrom<Self>(source, changed,
                            [this](auto& change, auto const& schema) { change.Assign(m_default, schema.m_default); });
}

template<typename Self, typename Item, IfType_t Type, typename Held>
void NetInfo<Self, Item, Type, Held>::DumpVal(std::ostream& os) const
{
    DumpHead(os, *this);
    DumpLine(os, "default: ", NetForm<Held>::DisplayText(m_default));
}

template<typename Self, typename Item, IfType_t Type, typename Held>
std::ostream& NetInfo<Self, Item, Type, Held>::operator<<(std::ostream& os) const
{
    return os << NetForm<Held>::k_infoName;
}

template<typename Self, typename Info, IfType_t Type, typename Held>
int NetItem<Self, Info, Type, Held>::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int,
                                                      bool* changed)
{
    return AssignFrom<Self>(source, changed,
                            [this](auto& change, auto const& item) { change.Assign(m_value, item.m_value); });
}

template<typename Self, typename Info, IfType_t Type, typename Held>
unsigned int NetItem<Self, Info, Type, Held>::GetSerialDataSize() const
{
    auto const text = NetForm<Held>::RecordText(static_cast<Self const&>(*this));
    return ClampSize(NetRecordSize<Held>(text.size()));
}

template<typename Self, typename Info, IfType_t Type, typename Held>
int NetItem<Self, Info, Type, Held>::Serialize(SerialStruct_t* record) const
{
    auto const text = NetForm<Held>::RecordText(static_cast<Self const&>(*this));
    return WriteRecord(*this, record, NetRecordSize<Held>(text.size()), [this, &text](PayloadWriter payload) {
        NetForm<Held>::PutPrefix(payload, m_value);
        payload.PutText(text);
    });
}

template<typename Self, typename Info, IfType_t Type, typename Held>
int NetItem<Self, Info, Type, Held>::Deserialize(ConstSerialStruct_t const* record)
{
    PayloadReader payload;
    if (int const code = OpenRecord(*this, record, payload))
        return code;
    if (payload.Left() <= NetForm<Held>::k_prefixSize || !payload.EndsInZero())
        return IfErrInvalidArgument;
    m_value = NetForm<Held>::Get(payload);
    return 0;
}

template<typename Self, typename Info, IfType_t Type, typename Held>
bool NetItem<Self, Info, Type, Held>::SetValFromStream(std::istream& in, std::ostream&,
                                                       boost::intrusive_ptr<InfoBase const> const& info)
{
    if (!NetForm<Held>::CanRead(info.get()))
        return false;
    if (!in.eof()) {
        std::string word;
        in >> word;
        m_value = NetForm<Held>::FromWord(word, info.get());
    }
    return true;
}

template<typename Self, typename Info, IfType_t Type, typename Held>
std::ostream& NetItem<Self, Info, Type, Held>::operator<<(std::ostream& os) const
{
    return os << NetForm<Held>::DisplayText(m_value);
}

} // namespace Legacy::If::Detail
