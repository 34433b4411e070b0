#include "convert/Change.h"
#include "record/NumberTuple.h"
#include "text/Text.h"

#include <Legacy/If/Orientation.h>

#include <array>

namespace Legacy::If {

namespace {

using Parts = std::array<float, 3>;

constexpr Parts PartsOf(Orientation_t const& value) noexcept { return {value.bearing, value.inclination, value.roll}; }

} // namespace

OrientationItem::OrientationItem(unsigned int id) : ValueItem(id) {}

OrientationItem* OrientationItem::DeepCopy(unsigned int id) const { return CopyAs_(id); }

int OrientationItem::AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int, bool* changed)
{
    return Detail::AssignFrom<OrientationItem>(source, changed, [this](auto& change, auto const& item) {
        change.Assign(m_value, item.m_value, SameOrientation());
    });
}

unsigned int OrientationItem::GetSerialDataSize() const { return sizeof(Parts); }

int OrientationItem::Serialize(SerialStruct_t* record) const
{
    return Detail::WriteNumbers(*this, record, PartsOf(m_value));
}

int OrientationItem::Deserialize(ConstSerialStruct_t const* record)
{
    Parts parts;
    if (int const code = Detail::ReadNumbers(*this, record, parts))
        return code;
    m_value = {parts[0], parts[1], parts[2]};
    return 0;
}

std::shared_ptr<ResultElem const> OrientationItem::Validate(boost::intrusive_ptr<InfoBase const> const&) { return {}; }

bool OrientationItem::SetValFromStream(std::istream&, std::ostream& out, boost::intrusive_ptr<InfoBase const> const&)
{
    return Detail::NotReadable(out);
}

void OrientationItem::DumpVal(std::ostream& os) const
{
    Detail::DumpHead(os, *this);
    Detail::DumpLine(os, "bearing: ", m_value.bearing);
    Detail::DumpLine(os, "inclination: ", m_value.inclination);
    Detail::DumpLine(os, "roll: ", m_value.roll);
}

std::ostream& OrientationItem::operator<<(std::ostream& os) const { return os << "OrientationItem"; }

} // namespace Legacy::If
