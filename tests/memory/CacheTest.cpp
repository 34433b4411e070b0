#include "Failing.h"

#include <Legacy/If/Bool.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdlib>
#include <thread>

namespace {

using namespace Legacy::If;

/// Runs before the libraries start: in each thread a value under a key beyond the first 32 takes memory.
void TakeFirstKeys(int, char**, char**)
{
    for (int i = 0; i < 32; ++i) {
        pthread_key_t key{};
        static_cast<void>(pthread_key_create(&key, nullptr));
    }
}
[[gnu::used, gnu::section(".preinit_array")]] void (*const s_takeFirstKeys)(int, char**, char**) = TakeFirstKeys;

std::int64_t KeptBy(auto&& call)
{
    std::int64_t const before = Failing::s_blocks;
    call();
    return Failing::s_blocks - before;
}

void MakeAndRelease() { boost::intrusive_ptr<ItemBase> const item(new BoolItem(1)); }

TEST(ObjectCache, KeepsWhatAThreadFreesUntilItEnds)
{
    std::int64_t const keptBlocks = std::getenv("LEGACYIF_NO_OBJECT_CACHE") ? 0 : 1;
    std::thread([] {}).join(); // the C library keeps a stack for the next thread
    std::int64_t const keptAtEnd = KeptBy([&] {
        std::thread([&] {
            EXPECT_EQ(KeptBy(MakeAndRelease), keptBlocks * 2); // the block, and the thread's room for the key
            EXPECT_EQ(KeptBy(MakeAndRelease), 0);              // the same block again
        }).join();
    });
    EXPECT_EQ(keptAtEnd, 0);
}

TEST(ObjectCache, FirstReleaseNeedsNoMemory)
{
    std::thread([] {
        boost::intrusive_ptr<ItemBase> item(new BoolItem(1));
        EXPECT_EQ(KeptBy([&] {
                      Failing::Arm(1, true);
                      item.reset();
                      Failing::Disarm();
                  }),
                  -1);
        EXPECT_EQ(KeptBy(MakeAndRelease), 0); // closed, it stays closed
    }).join();
}

} // namespace
