#include "FindingMessage.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Enum.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/NumericArray.h>
#include <Legacy/If/String.h>
#include <Legacy/If/StringArray.h>

#include <algorithm>
#include <sstream>
#include <string>

namespace Examples {

using namespace Legacy::If;

namespace {

/// One attempt after the other to tell what is wrong with one value; the first that applies leaves its message.
class Finder
{
public:
    Finder(InfoBase const* info, ItemBase const& item) : m_info(info), m_item(item) {}

    LocalizedString Find()
    {
        if (!m_info || m_info->GetType() != m_item.GetType() || m_info->GetNumericType() != m_item.GetNumericType())
            return Say_("TypesSystemValidateTypeMismatch", m_info ? TypeText_(*m_info) : "NULL-Info",
                        TypeText_(m_item));
        if (OfNumber_<U8Traits, S8Traits, U16Traits, S16Traits, U32Traits, S32Traits, U64Traits, S64Traits, FloatTraits,
                      DoubleTraits>() ||
            OfText_() || OfTexts_() || OfBool_() || OfEnum_() || OfComposite_())
            return m_message;
        return Say_("TypesSystemIllegalValidatationError", TypeText_(m_item));
    }

private:
    template<typename... Arguments>
    LocalizedString Say_(char const* key, Arguments const&... arguments)
    {
        m_message = LocalizedString(key);
        AddText_(m_info ? m_info->GetName() : "Unknown");
        (AddText_(Print_(arguments)), ...);
        return m_message;
    }

    template<typename... Traits>
    bool OfNumber_()
    {
        return ((OfNumberOf_<Traits>() || OfNumbersOf_<Traits>()) || ...);
    }

    template<typename Traits>
    bool OfNumberOf_()
    {
        auto const* info = dynamic_cast<NumericInfo<Traits> const*>(m_info);
        auto const* item = dynamic_cast<NumericItem<Traits> const*>(&m_item);
        return info && item && IsOutside_(item->GetVal(), *info);
    }

    template<typename Traits>
    bool OfNumbersOf_()
    {
        auto const* info = dynamic_cast<NumericArrayInfo<Traits> const*>(m_info);
        auto const* item = dynamic_cast<NumericArrayItem<Traits> const*>(&m_item);
        if (!info || !item)
            return false;
        if (item->GetSize() < info->GetMinSize())
            Say_("TypesSystemNumericArrayValidationMinSize", info->GetMinSize());
        else if (item->GetSize() > info->GetMaxSize())
            Say_("TypesSystemNumericArrayValidationMaxSize", info->GetMaxSize());
        else
            return std::any_of(item->Val().begin(), item->Val().end(),
                               [&](auto value) { return IsOutside_(value, *info); });
        return true;
    }

    template<typename Number, typename Info>
    bool IsOutside_(Number value, Info const& info)
    {
        // The bounds of 8-bit numbers are shown as numbers, and not as the characters of that code.
        if (value < info.GetMin())
            Say_("TypesSystemNumericValidationMin", +info.GetMin());
        else if (value > info.GetMax())
            Say_("TypesSystemNumericValidationMax", +info.GetMax());
        else
            return false;
        return true;
    }

    bool OfText_()
    {
        auto const* info = dynamic_cast<StringInfo const*>(m_info);
        if (info)
            Say_("TypesSystemStringValidationLength", info->GetMaxLength());
        return info;
    }

    bool OfTexts_()
    {
        auto const* info = dynamic_cast<StringArrayInfo const*>(m_info);
        auto const* item = dynamic_cast<StringArrayItem const*>(&m_item);
        if (!info || !item)
            return false;
        if (item->GetSize() < info->GetMinSize())
            Say_("TypesSystemStringArrayValidationMinSize", info->GetMinSize());
        else
            Say_("TypesSystemStringArrayValidationMaxSize", info->GetMaxSize());
        return true;
    }

    bool OfBool_()
    {
        auto const* info = dynamic_cast<BoolInfo const*>(m_info);
        if (info)
            Say_("TypesSystemBoolValidationFixedVal", info->GetDefault());
        return info;
    }

    bool OfEnum_()
    {
        auto const* item = dynamic_cast<EnumItem const*>(&m_item);
        if (item)
            Say_("TypesSystemEnumValidationValue", item->GetVal());
        return item;
    }

    bool OfComposite_()
    {
        auto const* info = dynamic_cast<CompositeInfo const*>(m_info);
        auto const* item = dynamic_cast<CompositeItem const*>(&m_item);
        if (!info || !item)
            return false;
        if (item->GetSize() != info->GetSize()) {
            Say_("TypesSystemCompositeValidationSize", item->GetSize());
            return true;
        }
        unsigned int index = 0;
        while (index < info->GetSize() && info->GetInfo(index)->IsEqualType(item->GetItem(index)))
            ++index;
        Say_("TypesSystemCompositeTypeMismatch", index);
        return true;
    }

    void AddText_(std::string const& text) { m_message.AddArgument(StringItem::Create(0, text)); }

    template<typename Value>
    static std::string Print_(Value const& value)
    {
        std::ostringstream os;
        os << value;
        return os.str();
    }

    /// "Numeric(U16)": the tags have names in the dump of an object alone.
    template<typename Object>
    static std::string TypeText_(Object const& object)
    {
        std::stringstream dump;
        object.DumpVal(dump);
        std::string type;
        std::string numericType = "Undefined";
        for (std::string line; std::getline(dump, line);) {
            if (type.empty() && line.starts_with("type: "))
                type = line.substr(6);
            else if (line.starts_with("numericType: "))
                numericType = line.substr(13);
        }
        return type + '(' + numericType + ')';
    }

    InfoBase const* m_info;
    ItemBase const& m_item;
    LocalizedString m_message;
};

} // namespace

LocalizedString FindingMessage(boost::intrusive_ptr<InfoBase const> const& info, ItemBase const& item)
{
    // Validation is not const in the interface of values, so a copy is asked.
    boost::intrusive_ptr<ItemBase> const copy(item.DeepCopy());
    bool const fits = (!info || info->IsEqualType(copy)) && !copy->Validate(info);
    return fits ? LocalizedString() : Finder(info.get(), item).Find();
}

} // namespace Examples
