#pragma once

#include <Legacy/If/AppEndpoint.h>
#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/ValueItem.h>
#include <Legacy/If/Export.h>

#include <memory>
#include <string>
#include <vector>

namespace Legacy::If {

/// The value of a list of application endpoints.
using AppEndpointList = std::vector<AppEndpoint<Net::Endpoint<Net::AddrStr>>>;

/// Schema of a list of application endpoints: two sizes, which nothing enforces, and a default.
class LEGACY_IF_API AppEndpointArrayInfo : public Detail::InfoFamily<AppEndpointArrayInfo, IfType_t::AppEndpointArray>
{
public:
    static constexpr unsigned int k_initialMaxSize = 0x7FFFFFFF;

    /// An empty default, a least size of 0 and a greatest of #k_initialMaxSize.
    AppEndpointArrayInfo(unsigned int const& id, std::string const& name, Permission_t const& permission);

    using InfoFamily::DeepCopy;
    /// Contract: the copy takes the default over but has the sizes of a new schema; only `operator=` and the copy
    /// constructor carry them. Callers that copy a schema set the sizes themselves.
    [[nodiscard]] AppEndpointArrayInfo* DeepCopy(unsigned int id, std::string const& name,
                                                 Permission_t const& permission) const override;
    [[nodiscard]] ItemBase* CreateItem() const override;

    AppEndpointList const& GetDefault() const noexcept { return m_default; }
    unsigned int GetMinSize() const noexcept { return m_minSize; }
    unsigned int GetMaxSize() const noexcept { return m_maxSize; }
    /// Stores the list, whatever its size. Always 0.
    int SetDefault(AppEndpointList const& list);
    /// Stores the size and touches nothing else. Always 0.
    int SetMinSize(unsigned int n);
    /// Stores the size and touches nothing else. Always 0.
    int SetMaxSize(unsigned int n);

    /// Equal types; the sizes are not compared.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override;
    /// Changes nothing.
    /// @return 0; #IfErrBoundsTypeMismatch.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override;
    /// From a schema of the same family: the first of default, least size and greatest size that differs.
    ///
    /// Contract: one call takes over one difference and leaves the rest; callers repeat it until nothing changes.
    int AssignValue(boost::intrusive_ptr<InfoBase const> const& source, bool* changed) override;

    /// Contract: the default shows as an empty list whatever it holds; dumps are compared with that text.
    void DumpVal(std::ostream& os) const override;
    /// The bare name of the class.
    std::ostream& operator<<(std::ostream& os) const override;

private:
    unsigned int m_minSize = 0;
    unsigned int m_maxSize = k_initialMaxSize;
    AppEndpointList m_default;
};

/// Value of a parameter that is a list of application endpoints.
class LEGACY_IF_API AppEndpointArrayItem
    : public Detail::ValueItem<AppEndpointArrayItem, IfType_t::AppEndpointArray, AppEndpointList>
{
public:
    explicit AppEndpointArrayItem(unsigned int id); ///< empty

    using ValueItem::DeepCopy;
    [[nodiscard]] AppEndpointArrayItem* DeepCopy(unsigned int id) const override;

    unsigned int GetSize() const noexcept { return static_cast<unsigned int>(m_value.size()); }
    bool IsEmpty() const override; ///< there are no elements

    /// From an application endpoint, into the element at `index`: the list grows to hold it, with default elements
    /// before it. From a list as a whole, with `index` ignored.
    int AssignArrayValue(boost::intrusive_ptr<ItemBase const> const& source, unsigned int index,
                         bool* changed) override;

    /// Each element as in `AppEndpointItem`, with no count.
    unsigned int GetSerialDataSize() const override;
    int Serialize(SerialStruct_t* record) const override;
    /// Takes the elements that are whole and ignores what follows them.
    ///
    /// Contract: the list is emptied for any record but a null one, also for one that is then refused.
    int Deserialize(ConstSerialStruct_t const* record) override;

    /// Contract: always passes. The schema's sizes are carried for callers, which accept lists of any size.
    std::shared_ptr<ResultElem const> Validate(boost::intrusive_ptr<InfoBase const> const& info) override;
    /// A list cannot be read: writes "Impl. me" to `out` and returns false.
    bool SetValFromStream(std::istream& in, std::ostream& out,
                          boost::intrusive_ptr<InfoBase const> const& info) override;
    std::ostream& operator<<(std::ostream& os) const override;

private:
    using ValueItem::Create; // a list is made by its constructor or by its schema
    friend class AppEndpointArrayInfo;
};

} // namespace Legacy::If
