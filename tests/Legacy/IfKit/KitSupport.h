#pragma once

#include "../If/TestSupport.h"

#include <Legacy/IfKit.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>

/// What the tests of the companion share.
namespace Legacy::IfKit::Test {

using namespace If;
using If::Test::Bytes;
using If::Test::Make;
using If::Test::Texts;
using ItemPtr = boost::intrusive_ptr<ItemBase>;
using InfoPtr = boost::intrusive_ptr<InfoBase>;

/// A new schema.
template<typename Info>
boost::intrusive_ptr<Info> Named(std::string const& name, unsigned int id = 1)
{
    return If::Test::FreshInfo<Info>(id, name, {});
}

/// A schema within so many composites.
inline InfoPtr Deep(InfoPtr info, int depth = 100'000)
{
    for (; depth > 0; --depth) {
        auto const around = Named<CompositeInfo>("around");
        around->AddInfo(info);
        info = around;
    }
    return info;
}

/// A value within so many composites.
inline ItemPtr Deep(ItemPtr item, int depth = 100'000)
{
    for (; depth > 0; --depth) {
        auto const around = Make<CompositeItem>(1U);
        around->AddItem(item);
        item = around;
    }
    return item;
}

/// A folder that ends with the object.
class Folder
{
public:
    Folder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "ifkit-XXXXXX").string();
        EXPECT_NE(::mkdtemp(name.data()), nullptr);
        m_path = name;
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    ~Folder() { std::filesystem::remove_all(m_path); }

    std::string operator/(std::string const& name) const { return (m_path / name).string(); }
    std::size_t Count() const
    {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(m_path), {}));
    }

private:
    std::filesystem::path m_path;
};

inline std::string Content(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// A directory with two sections, a parameter of each of three kinds, and values for two of them.
template<typename Directory = InfoItemDirectory>
std::unique_ptr<Directory> MakeDirectory()
{
    auto directory = std::make_unique<Directory>();
    SectionId section;
    EXPECT_EQ(directory->AddSection("network/eth0", section), 0);
    auto const id = [&](unsigned int number) { return section.GetInfoItemSectionId().CreateInfoItemId(number); };
    auto const mode = Named<EnumInfo>("mode", id(0));
    mode->SetTable({{"off", 0, false}, {"auto", 1, false}});
    for (InfoPtr const& info : {InfoPtr(mode), InfoPtr(Named<NumericInfo<U16Traits>>("mtu", id(1))),
                                InfoPtr(Named<StringInfo>("alias", id(2)))})
        EXPECT_EQ(directory->AddInfo(new InfoHolder(info)), 0);
    EXPECT_EQ(directory->SetItem(new ItemHolder(EnumItem::Create(id(0), 1))), 0);
    EXPECT_EQ(directory->SetItem(new ItemHolder(NumericItem<U16Traits>::Create(id(1), 1500))), 0);
    return directory;
}

/// The id of a parameter of #MakeDirectory.
inline InfoItemSectionId IdOf(unsigned int number)
{
    return InfoItemSectionId::CreateLevel1SectionId(0).CreateSectionId(0).CreateInfoItemId(number);
}

} // namespace Legacy::IfKit::Test
