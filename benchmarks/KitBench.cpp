// What the companion costs: files of records beside a plain copy of the file, the observable directory beside the plain
// one, a visitor beside a chain of casts.
#include "Records.h"

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/IfKit/ObservableDirectory.h>
#include <Legacy/IfKit/RecordFile.h>
#include <Legacy/IfKit/Visit.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <memory>

namespace {

using namespace Legacy::If;
using namespace Legacy::IfKit;
using namespace Bench;

/// Files that end with the program.
class Folder
{
public:
    Folder() : m_path(std::filesystem::temp_directory_path() / ("kit_bench-" + std::to_string(::getpid())))
    {
        std::filesystem::create_directory(m_path);
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    ~Folder() { std::filesystem::remove_all(m_path); }

    std::string operator/(std::string const& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

Folder const& Files()
{
    static Folder const folder;
    return folder;
}

bool WriteValues(std::string const& path, std::size_t count)
{
    RecordFileWriter writer(path);
    boost::intrusive_ptr<NumericItem<U32Traits>> const item(NumericItem<U32Traits>::Create(k_id, 7));
    for (std::size_t i = 0; i < count; ++i) {
        item->SetVal(static_cast<unsigned int>(i));
        writer.Append(*item);
    }
    return !writer.Commit();
}

std::size_t ReadValues(std::string const& path)
{
    RecordFileReader reader(path);
    std::size_t count = 0;
    ItemPtr item;
    while (auto const record = reader.Next())
        count += record->Rebuild(item) == 0;
    return count;
}

/// Copies a file with plain reads and writes, and brings the copy to the disk as our own writing does.
std::size_t CopyFile(std::string const& from, std::string const& to)
{
    int const in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    int const out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    static std::array<char, 64 * 1024> buffer;
    std::size_t copied = 0;
    for (ssize_t size = 0; (size = ::read(in, buffer.data(), buffer.size())) > 0;) {
        ssize_t const written = ::write(out, buffer.data(), static_cast<std::size_t>(size));
        copied += static_cast<std::size_t>(written);
    }
    ::fsync(out);
    ::close(in);
    ::close(out);
    return copied;
}

/// By the clock, since much of it is waiting for the disk.
void AddFiles(std::size_t count)
{
    std::string const subject = std::to_string(count);
    std::string const path = Files() / subject;
    AddRow("write-file", subject, k_ours, [=](benchmark::State& state) {
        bool right = true;
        Measure(state, [&] { right &= WriteValues(path, count); });
        Check(state, right);
    })->UseRealTime();
    AddRow("read-file", subject, k_ours, [=](benchmark::State& state) {
        bool right = WriteValues(path, count);
        Measure(state, [&] { right &= ReadValues(path) == count; });
        Check(state, right);
    })->UseRealTime();
    for (char const* const operation : {"write-file", "read-file"})
        AddRow(operation, subject, "file-copy", [=](benchmark::State& state) {
            bool right = WriteValues(path, count);
            Measure(state, [&] { right &= CopyFile(path, path + ".copy") == std::filesystem::file_size(path); });
            Check(state, right);
        })->UseRealTime();
}

template<typename Directory>
void SetItem(benchmark::State& state)
{
    Directory directory;
    SectionId section;
    directory.AddSection("a", section);
    unsigned int const id = section.GetInfoItemSectionId().CreateInfoItemId(0);
    directory.AddInfo(new InfoHolder(new NumericInfo<U32Traits>(id, k_name, Permission_t{})));
    boost::intrusive_ptr<ItemHolder const> const holder(new ItemHolder(NumericItem<U32Traits>::Create(id, 7)));
    bool right = true;
    Measure(state, [&] { right &= directory.SetItem(holder) == 0; });
    Check(state, right);
}

/// One value of each class, none of them first in any order.
std::vector<ItemPtr> OneOfEach()
{
    std::vector<ItemPtr> items;
    AllFamilies::ForEach([&]<typename Info, typename Item>(Family<Info, Item>) { items.emplace_back(new Item(k_id)); });
    return items;
}

/// The place of a value's class in the list, found by one cast after the other.
template<typename... Families>
std::size_t PlaceByCasts(ItemBase const& item, FamilyList<Families...>)
{
    std::size_t place = 0;
    static_cast<void>(((++place, dynamic_cast<typename Families::Item const*>(&item) != nullptr) || ...));
    return place;
}

std::size_t PlaceByVisit(ItemBase const& item)
{
    return Visit(item, []<typename Item>(Item const&) -> std::size_t {
        std::size_t place = 0;
        std::size_t found = 0;
        AllFamilies::ForEach([&]<typename Info, typename Class>(Family<Info, Class>) {
            ++place;
            if constexpr (std::is_same_v<Item, Class>)
                found = place;
        });
        return found;
    });
}

template<typename Find>
void FindPlaces(benchmark::State& state, Find const& find)
{
    auto const items = OneOfEach();
    std::size_t sum = 0;
    std::size_t rounds = 0;
    Measure(
        state,
        [&] {
            for (auto const& item : items)
                sum += find(*item);
            ++rounds;
        },
        items.size());
    Check(state, sum == rounds * items.size() * (items.size() + 1) / 2);
}

struct Rows
{
    Rows()
    {
        AddFiles(10'000);
        AddFiles(1'000'000);
        AddRow("set-item", "nobody-listens", k_ours, SetItem<ObservableDirectory>);
        AddRow("set-item", "nobody-listens", "plain-directory", SetItem<InfoItemDirectory>);
        AddRow("visit", "all-classes", k_ours, [](benchmark::State& state) { FindPlaces(state, PlaceByVisit); });
        AddRow("visit", "all-classes", "dynamic-cast", [](benchmark::State& state) {
            FindPlaces(state, [](ItemBase const& item) { return PlaceByCasts(item, AllFamilies()); });
        });
    }
} const k_rows;

} // namespace
