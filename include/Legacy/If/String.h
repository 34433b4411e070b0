#pragma once

#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>

namespace Legacy::If {

/// Schema of a text: a greatest length in bytes and a default. Text is a plain sequence of bytes without an encoding.
class LEGACY_IF_API StringInfo : public Detail::InfoFamily<StringInfo, IfType_t::String>
{
public:
    /// An empty default and room for 256 bytes.
    StringInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    [[nodiscard]] StringInfo* DeepCopy(unsigned int id, std::string const& name,
                                       Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    std::string const& GetDefault() const noexcept { return m_default; }
    /// Stores the text, cut to the greatest length. Always 0.
    ///
    /// Contract: with a greatest length of 0 nothing is cut here, although 0 is a bound everywhere else, so that values
    /// made from the schema fail its own validation. Callers close a parameter with the length 0 and keep in the
    /// default the text that it is to have when it is opened again.
    int SetDefault(std::string const& text);

    unsigned int GetMaxLength() const noexcept { return m_maxLength; }
    /// Stores the greatest length and cuts the default to it, also to 0. Always 0.
    int SetMaxLength(unsigned int maxLength);

    /// Equal types and greatest lengths; the default is not compared.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Takes the smaller greatest length.
    ///
    /// Contract: a merge that was made reports #IfErrTypeNotAssignable and never 0; callers tell a refusal by
    /// #IfErrBoundsTypeMismatch alone.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a text schema: default, whole and uncut, and greatest length.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    void DumpVal(std::ostream& os) const override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    std::string m_default;
    unsigned int m_maxLength;
};

/// Value of a text parameter.
class LEGACY_IF_API StringItem : public Detail::ValueItem<StringItem, IfType_t::String, std::string>
{
public:
    explicit StringItem(unsigned int id); ///< empty

    using ValueItem::DeepCopy;
    [[nodiscard]] StringItem* DeepCopy(unsigned int id) const override;

    using ValueItem::SetVal;
    /// Stores the text, cut to the schema's greatest length, also to 0.
    /// @{
    void SetVal(std::string const& value, StringInfo const& info);
    void SetVal(std::string&& value, StringInfo const& info);
    /// @}

    bool IsEmpty() const override; ///< the text has no bytes
    /// From a boolean ("True" or "False"), a text, or the element at `index` of a list of texts, whose end is
    /// #IfErrInvalidArgument.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// The text and a zero byte. Reading takes the text up to the first zero byte.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Fails if the text is longer than the schema allows.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// Reads one word, so that a value with a blank cannot be entered. Always true: at the end of input nothing is
    /// read, and a failed read leaves an empty text. Nothing is written to `out`.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;
};

} // namespace Legacy::If
