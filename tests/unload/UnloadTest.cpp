#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

/// The plugin, loaded for as long as this lives.
class Plugin
{
public:
    Plugin() : m_handle(dlopen(PLUGIN, RTLD_NOW | RTLD_LOCAL), &dlclose)
    {
        if (!m_handle)
            throw std::runtime_error(dlerror());
    }

    bool Use() const { return Find<bool()>("Use")(); }
    void UseInThread() const { Find<void()>("UseInThread")(); }

    static bool IsLoaded()
    {
        std::unique_ptr<void, int (*)(void*)> const handle(dlopen(PLUGIN, RTLD_NOW | RTLD_NOLOAD), &dlclose);
        return handle != nullptr;
    }

private:
    template<typename Function>
    Function* Find(char const* name) const
    {
        return reinterpret_cast<Function*>(dlsym(m_handle.get(), name));
    }

    std::unique_ptr<void, int (*)(void*)> m_handle;
};

TEST(Unload, PluginIsLoadedAgain)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(Plugin().Use());
        EXPECT_FALSE(Plugin::IsLoaded());
    }
}

TEST(Unload, PluginIsLoadedByThreadsThatEnd)
{
    for (int i = 0; i < 3; ++i) {
        std::thread([] {
            Plugin const plugin;
            EXPECT_TRUE(plugin.Use());
            plugin.UseInThread();
        }).join();
    }
}

TEST(Unload, ThreadEndsAfterThePlugin)
{
    std::promise<void> used;
    std::promise<void> unloaded;
    auto plugin = std::make_unique<Plugin>();
    std::thread thread([&] {
        EXPECT_TRUE(plugin->Use());
        used.set_value();
        unloaded.get_future().wait();
    });
    used.get_future().wait();
    plugin.reset();
    EXPECT_FALSE(Plugin::IsLoaded());
    unloaded.set_value();
    thread.join();
}

// The child ends as a program does, with static and thread-local objects that still hold values.
TEST(Unload, ForkedChildGoesOn)
{
    Plugin const plugin;
    EXPECT_TRUE(plugin.Use());
    plugin.UseInThread();
    pid_t const child = fork();
    if (child == 0)
        std::exit(plugin.Use() && Plugin().Use() ? 0 : 1);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

} // namespace
