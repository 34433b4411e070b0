// How much memory parameters take: bytes of the heap for each, the allocator's own share included; and how much a whole
// program does.
#include "Rows.h"

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/String.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>

#ifdef BENCH_PROGRAM
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#ifdef BENCH_HAS_GLIB
#include <glib-object.h>
#endif

namespace {

using namespace Legacy::If;
using namespace Bench;

constexpr std::size_t k_count = 100'000;

/// Makes many objects and keeps them all; `make` takes a number. What holds them is not counted. The most that a run
/// took is told: later runs find memory that an allocator kept from earlier ones.
template<typename Make>
void Hold(benchmark::State& state, Make const& make)
{
    static double bytes = 0; // one for each row, since each has a `Make` of its own
    for (auto _ : state) {
        std::vector<decltype(make(0U))> objects;
        objects.reserve(k_count);
        std::size_t const before = HeapBytesInUse();
        for (unsigned int i = 0; i < k_count; ++i)
            objects.push_back(make(i));
        bytes = std::max(bytes, static_cast<double>(HeapBytesInUse()) - static_cast<double>(before));
        benchmark::DoNotOptimize(objects.data());
    }
    state.counters["bytes/object"] = bytes / static_cast<double>(k_count);
    state.SetItemsProcessed(state.iterations() * static_cast<benchmark::IterationCount>(k_count));
}

/// The name of a parameter, of 22 letters.
std::string NameOf(unsigned int id)
{
    std::string name = k_name;
    std::string const number = std::to_string(id);
    return name.replace(name.size() - number.size(), number.size(), number);
}

/// A schema of one's own.
struct OwnSchema
{
    unsigned int id;
    unsigned short permission;
    std::string name;
    unsigned int min;
    unsigned int max;
    unsigned int value;
};

#ifdef BENCH_PROGRAM
/// Runs a program up to the point where it has done everything but go, when its memory is still there to be looked at.
/// What a parent learns of a child that has gone counts the parent's own pages.
void Run(benchmark::State& state, char const* program)
{
    std::string key;
    for (auto _ : state) {
        pid_t const child = fork();
        if (child == 0) {
            dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
            execl(program, program, nullptr);
            _exit(127);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_EXITKILL | PTRACE_O_TRACEEXIT);
        ptrace(PTRACE_CONT, child, nullptr, 0);
        waitpid(child, &status, 0);
        std::ifstream memory("/proc/" + std::to_string(child) + "/status");
        for (double kibibytes = 0; memory >> key;)
            if (key == "VmHWM:" && memory >> kibibytes)
                state.counters["resident-KiB"] = kibibytes;
            else if (key == "RssAnon:" && memory >> kibibytes)
                state.counters["private-KiB"] = kibibytes;
        ptrace(PTRACE_CONT, child, nullptr, 0);
        waitpid(child, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != EXIT_SUCCESS || state.counters.empty())
            state.SkipWithError("the program did not run to its end");
    }
}
#endif

struct Rows
{
    Rows()
    {
#ifdef BENCH_PROGRAM
        AddRow("memory", "program", k_ours, [](benchmark::State& state) { Run(state, BENCH_PROGRAM); });
        AddRow("memory", "program", "empty", [](benchmark::State& state) { Run(state, BENCH_EMPTY_PROGRAM); });
#endif
        AddRow("memory", "u32-schema", k_ours, [](benchmark::State& state) {
            Hold(state, [](unsigned int id) {
                return boost::intrusive_ptr<InfoBase>(new NumericInfo<U32Traits>(id, NameOf(id), Permission_t{}));
            });
        });
        AddRow("memory", "u32-schema", "std-shared", [](benchmark::State& state) {
            Hold(state, [](unsigned int id) {
                return std::make_shared<OwnSchema>(OwnSchema{id, 0, NameOf(id), 0, 100, 7});
            });
        });
        // With a name of eleven letters, of which the schema takes 80 bytes.
        AddRow("memory", "directory", k_ours, [](benchmark::State& state) {
            InfoItemDirectory directory;
            SectionId section;
            Hold(state, [&](unsigned int i) {
                if (i % 62 == 0)
                    directory.AddSection('s' + std::to_string(i / 62 / 60) + '/' + std::to_string(i / 62 % 60),
                                         section);
                std::string const name = "para" + std::to_string(10'000'000 + i).substr(1);
                unsigned int const id = section.GetInfoItemSectionId().CreateInfoItemId(i % 62);
                directory.AddInfo(new InfoHolder(new NumericInfo<U32Traits>(id, name, Permission_t{})));
                return i;
            });
            Check(state, !directory.Empty());
        });
        AddRow("memory", "u32-value", k_ours, [](benchmark::State& state) {
            Hold(state, [](unsigned int id) {
                return boost::intrusive_ptr<ItemBase>(NumericItem<U32Traits>::Create(id, id));
            });
        });
        AddRow("memory", "u32-value", "std-shared", [](benchmark::State& state) {
            Hold(state, [](unsigned int id) { return std::make_shared<std::pair<unsigned, unsigned>>(id, id); });
        });
        AddRow("memory", "text-value", k_ours, [](benchmark::State& state) {
            Hold(state,
                 [](unsigned int id) { return boost::intrusive_ptr<ItemBase>(StringItem::Create(id, NameOf(id))); });
        });
        AddRow("memory", "text-value", "std-shared", [](benchmark::State& state) {
            Hold(state,
                 [](unsigned int id) { return std::make_shared<std::pair<unsigned, std::string>>(id, NameOf(id)); });
        });
#ifdef BENCH_HAS_GLIB
        AddRow("memory", "u32-schema", "glib", [](benchmark::State& state) {
            struct Unref
            {
                void operator()(GParamSpec* schema) const { g_param_spec_unref(schema); }
            };
            Hold(state, [](unsigned int id) {
                auto* const schema =
                    g_param_spec_uint(NameOf(id).c_str(), nullptr, nullptr, 0, 100, 7, G_PARAM_READWRITE);
                return std::unique_ptr<GParamSpec, Unref>(g_param_spec_ref_sink(schema));
            });
        });
#endif
    }
} const k_rows;

} // namespace
