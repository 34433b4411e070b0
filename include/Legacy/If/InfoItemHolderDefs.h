#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>
#include <Orlek/IntrusiveBaseMT.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstdint>
#include <string>

namespace Legacy::If {

namespace Detail {

/// Both tags of a schema or a value in one number, which stands in the holder so that comparing them does not touch
/// what is held; 0 for tags of an application's own that do not fit.
template<typename Subject>
std::uint32_t PackedTags(Subject const& subject)
{
    auto const type = static_cast<std::uint32_t>(subject.GetType());
    auto const numericType = static_cast<std::uint32_t>(subject.GetNumericType());
    return type <= 0xFFFF && numericType < 0xFFFF ? (numericType + 1) << 16 | type : 0;
}

} // namespace Detail

/// An envelope round one schema. Applications derive from it to give a parameter data and behaviour of their own; the
/// library reads the schema, copies the holder, and leaves everything else to the application.
///
/// Made with `new` with the count 0: wrap it at once. Any thread may take and drop references, and const
/// operations may run on many threads.
class LEGACY_IF_API InfoHolder : public Orlek::IntrusiveBaseMT
{
public:
    /// Shares the schema. A holder of null may exist, but no container and no directory takes it.
    explicit InfoHolder(boost::intrusive_ptr<InfoBase> const& info);
    /// A holder of its own, with the count 0, that shares the schema.
    InfoHolder(InfoHolder const&) = default;
    /// Containers and directories know a holder by what it holds, so that stays.
    InfoHolder& operator=(InfoHolder const&) = delete;
    ~InfoHolder() override;

    /// What a user interface calls the parameter; here the schema's name. The library never asks.
    virtual std::string GetDisplayName() const;
    /// A sentence about the parameter; here empty. The library never asks.
    virtual std::string GetDescription() const;
    /// The unit of the values, such as "ms"; here empty. The library never asks.
    virtual std::string GetUnit() const;

    /// A new holder round a copy of the schema. The caller owns it: count 0. A derived class must override it: what it
    /// adds is otherwise lost wherever containers copy their holders, which then are plain ones.
    [[nodiscard]] virtual InfoHolder* DeepCopy() const;

    boost::intrusive_ptr<InfoBase> const& GetInfo() const noexcept { return m_info; }

private:
    boost::intrusive_ptr<InfoBase> m_info;
};

/// An envelope round one value, for the same ends and under the same rules as `InfoHolder`.
class LEGACY_IF_API ItemHolder : public Orlek::IntrusiveBaseMT
{
public:
    /// Shares the value. A holder of null may exist, but no container and no directory takes it.
    explicit ItemHolder(boost::intrusive_ptr<ItemBase> const& item);
    /// A holder of its own, with the count 0, that shares the value.
    ItemHolder(ItemHolder const&) = default;
    ItemHolder& operator=(ItemHolder const&) = delete;
    ~ItemHolder() override;

    /// What a user interface shows for the value; here its text. The library never asks.
    virtual std::string GetDisplayText() const;

    /// A new holder round a copy of the value. The caller owns it: count 0. A derived class must override it, as there.
    [[nodiscard]] virtual ItemHolder* DeepCopy() const;

    boost::intrusive_ptr<ItemBase> const& GetItem() const noexcept { return m_item; }

private:
    friend class InfoItemHolder;

    std::uint32_t m_tags; // in the room that the count leaves
    boost::intrusive_ptr<ItemBase> m_item;
};

/// One parameter of a directory: its schema and, once one is set, its value.
///
/// Made with `new` with the count 0: wrap it at once. It may be shared between threads while none calls
/// #SetInfo or #SetItem.
class LEGACY_IF_API InfoItemHolder : public Orlek::IntrusiveBaseMT
{
public:
    /// Takes the schema; there is no value yet.
    /// @throws Orlek::LogicError with #IfErrNullArgument for a null pointer and for a holder of nothing.
    explicit InfoItemHolder(boost::intrusive_ptr<InfoHolder const> const& info);
    InfoItemHolder(InfoItemHolder const&) = default;
    InfoItemHolder& operator=(InfoItemHolder const&) = delete;
    ~InfoItemHolder() override;

    /// Takes another schema of the same parameter: id, name, type and element type must agree, while bounds, default
    /// and permission may differ.
    /// @return whether it was taken; otherwise, as for null, the former one stays.
    bool SetInfo(boost::intrusive_ptr<InfoHolder const> const& info);
    /// Takes a value whose id, type and element type are those of the schema. The value is not validated.
    /// @return whether it was taken; otherwise, as for null, the former one stays.
    bool SetItem(boost::intrusive_ptr<ItemHolder const> const& item);

    /// Never null.
    boost::intrusive_ptr<InfoHolder const> const& GetInfo() const noexcept { return m_info; }
    /// Null until a value is set.
    boost::intrusive_ptr<ItemHolder const> const& GetItem() const noexcept { return m_item; }

private:
    friend class InfoItemDirectory;
    friend class InfoItemHolderMap;

    bool SetItem_(boost::intrusive_ptr<ItemHolder const> const& item, boost::intrusive_ptr<ItemHolder const>& former);

    std::uint32_t m_tags; // of the schema
    boost::intrusive_ptr<InfoHolder const> m_info;
    boost::intrusive_ptr<ItemHolder const> m_item; // released before the schema that it was set under
    InfoBase const* m_schema;                      // what `m_info` holds, without the way through it
};

} // namespace Legacy::If
