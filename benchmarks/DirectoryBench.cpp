// What finding, adding, updating and copying parameters costs, each row beside what else one would use for it.
#include "Rows.h"

#include <Legacy/If/InfoItemContainer.h>
#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>
#include <Legacy/If/InfoItemHolderMap.h>
#include <Legacy/If/Numeric.h>

#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/mem_fun.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index_container.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

#ifdef BENCH_HAS_GLIB
#include <glib.h>
#endif

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

using namespace Legacy::If;
using Bench::AddRow;
using Bench::k_ours;

using Info = boost::intrusive_ptr<InfoBase>;
using InfoItem = boost::intrusive_ptr<InfoItemHolder>;

constexpr unsigned int k_perSection = 62;

/// Parameters in the sections of a four-level tree that is as wide on each level, in ascending id order.
struct World
{
    explicit World(std::size_t size)
    {
        auto const leaves = static_cast<double>((size + k_perSection - 1) / k_perSection);
        auto const width = static_cast<unsigned int>(std::ceil(std::sqrt(std::sqrt(leaves))));
        Grow(SectionId(), 0, width, size);
        std::sort(infos.begin(), infos.end(), [](auto const& a, auto const& b) { return *a < *b; });
        std::vector<Info> asked(infos);
        std::shuffle(asked.begin(), asked.end(), std::mt19937(7));
        questions.reserve(size);
        for (Info const& info : asked)
            questions.push_back({info->GetId(), info.get(), PathOf(*info), info->GetName()});
    }

    static World const& Of(std::size_t size)
    {
        static std::unordered_map<std::size_t, World> worlds;
        return worlds.try_emplace(size, size).first->second;
    }

    std::string const& PathOf(InfoBase const& info) const
    {
        return pathOf.at(InfoItemSectionId(info.GetId()).GetSectionId(4));
    }

    /// The keys stand by themselves, so that a row measures the lookup and not the way to its question.
    struct Question
    {
        unsigned int id;
        InfoBase const* answer;
        std::string path;
        std::string name;
    };

    std::vector<SectionId> sections;
    std::vector<Info> infos;
    std::vector<Question> questions;

private:
    void Grow(SectionId const& parent, unsigned int depth, unsigned int width, std::size_t size)
    {
        for (unsigned char sub = 0; sub < width && infos.size() < size; ++sub) {
            std::string const name = "section_" + std::to_string(10 + sub);
            SectionId const section = depth == 0 ? SectionId(name, InfoItemSectionId::CreateLevel1SectionId(sub))
                                                 : parent.CreateSectionId(name, sub);
            sections.push_back(section);
            if (depth < 3) {
                Grow(section, depth + 1, width, size);
                continue;
            }
            pathOf.emplace(section.GetInfoItemSectionId(), section.GetSectionName());
            for (unsigned int item = 0; item < k_perSection && infos.size() < size; ++item) {
                std::string const label = "parameter_name_" + std::to_string(10000000 + infos.size()).substr(1);
                infos.emplace_back(new NumericInfo<U32Traits>(section.GetInfoItemSectionId().CreateInfoItemId(item),
                                                              label, Permission_t{}));
            }
        }
    }

    std::unordered_map<unsigned int, std::string> pathOf;
};

/// The subjects: each is filled from a world and finds by id, by name, or by path and name.

struct OurContainer
{
    explicit OurContainer(World const& world)
    {
        for (Info const& info : world.infos)
            container.Add(info);
    }
    Info Find(unsigned int id) const { return container.Get(id); }
    Info Find(std::string const& name) const { return container.Find(name); }
    InfoContainer container;
};

struct OurHolderMap
{
    explicit OurHolderMap(World const& world)
    {
        for (Info const& info : world.infos)
            map.Insert(InfoItem(new InfoItemHolder(new InfoHolder(info))));
        map.Find(""); // entries are sorted by name when first asked for one
    }
    Info Find(unsigned int id)
    {
        auto const [found, place] = map.Find(id);
        return found ? place->second->GetInfo()->GetInfo() : nullptr;
    }
    Info Find(std::string const& name)
    {
        auto const [first, last] = map.Find(name);
        return first != last ? first->second->GetInfo()->GetInfo() : nullptr;
    }
    InfoItemHolderMap map;
};

struct OurDirectory
{
    explicit OurDirectory(World const& world)
    {
        for (SectionId const& section : world.sections)
            directory.AddSection(section);
        for (Info const& info : world.infos)
            directory.AddInfo(new InfoHolder(info));
    }
    Info Find(unsigned int id) const
    {
        auto const infoItem = directory.FindInfoItem(id);
        return infoItem ? infoItem->GetInfo()->GetInfo() : nullptr;
    }
    Info Find(std::string const& path, std::string const& name) const
    {
        auto const infoItem = directory.FindInfoItem(path, name);
        return infoItem ? infoItem->GetInfo()->GetInfo() : nullptr;
    }
    InfoItemDirectory directory;
};

template<typename Map>
Info Lookup(Map const& map, typename Map::key_type const& key)
{
    auto const place = map.find(key);
    return place == map.end() ? nullptr : place->second;
}

template<template<typename...> typename Map>
struct TwoMaps
{
    explicit TwoMaps(World const& world)
    {
        for (Info const& info : world.infos) {
            byId.emplace(info->GetId(), info);
            byName.emplace(info->GetName(), info);
        }
    }
    Info Find(unsigned int id) const { return Lookup(byId, id); }
    Info Find(std::string const& name) const { return Lookup(byName, name); }
    Map<unsigned int, Info> byId;
    Map<std::string, Info> byName;
};

template<template<typename...> typename Map>
struct PathMap
{
    explicit PathMap(World const& world)
    {
        for (Info const& info : world.infos)
            byPath.emplace(world.PathOf(*info) + '/' + info->GetName(), info);
    }
    Info Find(std::string const& path, std::string const& name) const { return Lookup(byPath, path + '/' + name); }
    Map<std::string, Info> byPath;
};

#ifdef BENCH_HAS_GLIB
struct GLibPathTable
{
    explicit GLibPathTable(World const& world)
    {
        for (Info const& info : world.infos)
            g_hash_table_insert(table, g_strconcat(world.PathOf(*info).c_str(), "/", info->GetName().c_str(), nullptr),
                                info.get());
    }
    GLibPathTable(GLibPathTable const&) = delete;
    GLibPathTable& operator=(GLibPathTable const&) = delete;
    ~GLibPathTable() { g_hash_table_destroy(table); }
    Info Find(std::string const& path, std::string const& name) const
    {
        return static_cast<InfoBase*>(g_hash_table_lookup(table, (path + '/' + name).c_str()));
    }
    GHashTable* table = g_hash_table_new_full(g_str_hash, g_str_equal, g_free, nullptr);
};
#endif

template<typename... Arguments>
using StdMap = std::unordered_map<Arguments...>;
template<typename... Arguments>
using FlatMap = boost::unordered_flat_map<Arguments...>;

struct SortedVector
{
    explicit SortedVector(World const& world) : byId(world.infos) {}
    Info Find(unsigned int id) const
    {
        auto const place = std::lower_bound(byId.begin(), byId.end(), id,
                                            [](Info const& info, unsigned int wanted) { return *info < wanted; });
        return place != byId.end() && **place == id ? *place : nullptr;
    }
    std::vector<Info> byId;
};

struct MultiIndex
{
    explicit MultiIndex(World const& world)
    {
        for (Info const& info : world.infos)
            store.insert(info);
    }
    Info Find(unsigned int id) const { return Get(store.get<1>(), id); }
    Info Find(std::string const& name) const { return Get(store.get<2>(), name); }

    using Id = boost::multi_index::const_mem_fun<InfoBase, unsigned int const&, &InfoBase::GetId>;
    using Name = boost::multi_index::const_mem_fun<InfoBase, std::string const&, &InfoBase::GetName>;
    boost::multi_index_container<Info, boost::multi_index::indexed_by<boost::multi_index::ordered_unique<Id>,
                                                                      boost::multi_index::hashed_unique<Id>,
                                                                      boost::multi_index::hashed_non_unique<Name>>>
        store;

private:
    template<typename Index, typename Key>
    static Info Get(Index const& index, Key const& key)
    {
        auto const place = index.find(key);
        return place == index.end() ? nullptr : *place;
    }
};

/// Filled once for all rows that only look.
template<typename Subject>
Subject& Filled(std::size_t size)
{
    static std::unordered_map<std::size_t, std::unique_ptr<Subject>> subjects;
    auto& subject = subjects[size];
    if (!subject)
        subject = std::make_unique<Subject>(World::Of(size));
    return *subject;
}

template<typename Ask>
void Run(benchmark::State& state, std::size_t size, Ask&& ask)
{
    World const& world = World::Of(size);
    std::size_t next = 0;
    bool right = true;
    Allocations const allocations;
    for (auto _ : state) {
        World::Question const& question = world.questions[next];
        right &= ask(question).get() == question.answer;
        next = next + 1 == world.questions.size() ? 0 : next + 1;
    }
    allocations.Report(state);
    Check(state, right);
}

template<typename Subject>
void FindById(benchmark::State& state, std::size_t size)
{
    Subject& subject = Filled<Subject>(size);
    Run(state, size, [&](World::Question const& question) { return subject.Find(question.id); });
}

template<typename Subject>
void FindByName(benchmark::State& state, std::size_t size)
{
    Subject& subject = Filled<Subject>(size);
    Run(state, size, [&](World::Question const& question) { return subject.Find(question.name); });
}

template<typename Subject>
void FindByPathAndName(benchmark::State& state, std::size_t size)
{
    Subject& subject = Filled<Subject>(size);
    Run(state, size, [&](World::Question const& question) { return subject.Find(question.path, question.name); });
}

/// Fills a subject and ends it again; the time and the memory of one parameter.
template<typename Subject>
void Add(benchmark::State& state, std::size_t size)
{
    World const& world = World::Of(size);
    std::size_t bytes = 0;
    bool right = true;
    for (auto _ : state) {
        std::size_t const before = HeapBytesInUse();
        auto subject = std::make_unique<Subject>(world);
        state.PauseTiming();
        bytes = HeapBytesInUse() - before;
        right &= subject->Find(world.infos.back()->GetId()) == world.infos.back();
        subject.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(size));
    state.counters["bytes/param"] = static_cast<double>(bytes) / static_cast<double>(world.infos.size());
    Check(state, right);
}

/// All elements as a list. They were made in no order, as those of a program that has run for a while.
void GetAll(benchmark::State& state, std::size_t size)
{
    World const& world = World::Of(size);
    InfoContainer container;
    for (World::Question const& question : world.questions)
        container.Add(Info(question.answer->DeepCopy()));
    bool right = true;
    for (auto _ : state) {
        std::vector<Info> all;
        container.Get(all);
        right &= all.size() == world.infos.size() && *all.back() == *world.infos.back();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(size));
    Check(state, right);
}

void Copy(benchmark::State& state, std::size_t size)
{
    InfoContainer const& source = Filled<OurContainer>(size).container;
    bool right = true;
    for (auto _ : state) {
        auto copy = std::make_unique<InfoContainer>(source);
        state.PauseTiming();
        right &= copy->Size() == source.Size();
        copy.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(size));
    Check(state, right);
}

/// The same objects copied into peers.
template<typename Subject>
void CopyInto(benchmark::State& state, std::size_t size)
{
    World const& world = World::Of(size);
    World copies(0);
    copies.infos.reserve(world.infos.size());
    bool right = true;
    for (auto _ : state) {
        for (Info const& info : world.infos)
            copies.infos.emplace_back(info->DeepCopy());
        auto subject = std::make_unique<Subject>(copies);
        state.PauseTiming();
        right &= subject->Find(world.infos.back()->GetId()) == copies.infos.back();
        subject.reset();
        copies.infos.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(size));
    Check(state, right);
}

constexpr std::size_t k_deltaSize = 100000;

std::vector<boost::intrusive_ptr<ItemHolder>> DeltaItems(World const& world)
{
    std::vector<boost::intrusive_ptr<ItemHolder>> items;
    for (std::size_t i = 0; i < std::min(k_deltaSize, world.questions.size()); ++i)
        items.emplace_back(new ItemHolder(world.questions[i].answer->CreateItem()));
    return items;
}

/// A tenth of a million values, spread over all parameters, applied to the directory.
void Delta(benchmark::State& state, std::size_t size)
{
    InfoItemDirectory& directory = Filled<OurDirectory>(size).directory;
    auto const items = DeltaItems(World::Of(size));
    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    for (auto const& item : items)
        delta->AddItem(item);
    int code = 0;
    for (auto _ : state)
        code |= directory.UpdateFromDelta(delta, false, true);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items.size()));
    Check(state, code == 0 && directory.FindItem(items[0]->GetItem()->GetId()) == items[0]);
}

void DeltaIntoFlatMap(benchmark::State& state, std::size_t size)
{
    World const& world = World::Of(size);
    boost::unordered_flat_map<unsigned int, InfoItem> map;
    for (Info const& info : world.infos)
        map.emplace(info->GetId(), new InfoItemHolder(new InfoHolder(info)));
    auto items = DeltaItems(world);
    std::sort(items.begin(), items.end(), [](auto const& a, auto const& b) { return *a->GetItem() < *b->GetItem(); });
    bool right = true;
    for (auto _ : state)
        for (auto const& item : items) {
            auto const place = map.find(item->GetItem()->GetId());
            right &= place != map.end() && place->second->SetItem(item);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items.size()));
    Check(state, right);
}

using Step = void (*)(benchmark::State&, std::size_t);

void AddSized(char const* operation, std::size_t size, char const* library, Step step)
{
    AddRow(operation, std::to_string(size), library, [=](benchmark::State& state) { step(state, size); });
}

bool AddRows()
{
    for (std::size_t const size : {1000U, 100000U, 1000000U}) {
        AddSized("find-by-id", size, k_ours, FindById<OurContainer>);
        AddSized("find-by-id", size, "legacyif-map", FindById<OurHolderMap>);
        AddSized("find-by-id", size, "legacyif-directory", FindById<OurDirectory>);
        AddSized("find-by-id", size, "std-unordered", FindById<TwoMaps<StdMap>>);
        AddSized("find-by-id", size, "boost-flat", FindById<TwoMaps<FlatMap>>);
        AddSized("find-by-id", size, "boost-multi-index", FindById<MultiIndex>);
        AddSized("find-by-id", size, "sorted-vector", FindById<SortedVector>);

        AddSized("find-by-name", size, k_ours, FindByName<OurContainer>);
        AddSized("find-by-name", size, "legacyif-map", FindByName<OurHolderMap>);
        AddSized("find-by-name", size, "std-unordered", FindByName<TwoMaps<StdMap>>);
        AddSized("find-by-name", size, "boost-flat", FindByName<TwoMaps<FlatMap>>);
        AddSized("find-by-name", size, "boost-multi-index", FindByName<MultiIndex>);

        AddSized("find-by-path", size, k_ours, FindByPathAndName<OurDirectory>);
        AddSized("find-by-path", size, "std-unordered", FindByPathAndName<PathMap<StdMap>>);
        AddSized("find-by-path", size, "boost-flat", FindByPathAndName<PathMap<FlatMap>>);
#ifdef BENCH_HAS_GLIB
        AddSized("find-by-path", size, "glib", FindByPathAndName<GLibPathTable>);
#endif

        AddSized("delta-of-1e5", size, k_ours, Delta);
        AddSized("delta-of-1e5", size, "boost-flat", DeltaIntoFlatMap);

        AddSized("get-all", size, k_ours, GetAll);

        AddSized("add", size, k_ours, Add<OurContainer>);
        AddSized("add", size, "legacyif-map", Add<OurHolderMap>);
        AddSized("add", size, "legacyif-directory", Add<OurDirectory>);
        AddSized("add", size, "std-unordered", Add<TwoMaps<StdMap>>);
        AddSized("add", size, "boost-flat", Add<TwoMaps<FlatMap>>);
        AddSized("add", size, "boost-multi-index", Add<MultiIndex>);
    }
    AddSized("copy", 100000, k_ours, Copy);
    AddSized("copy", 100000, "boost-flat", CopyInto<TwoMaps<FlatMap>>);
    AddSized("copy", 100000, "boost-multi-index", CopyInto<MultiIndex>);
    AddSized("copy", 100000, "sorted-vector", CopyInto<SortedVector>);
    return true;
}

bool const added = AddRows();

} // namespace
