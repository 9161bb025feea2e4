// A host that loads the plug-in as it runs, and has its own idea of the diagnostics. Each host is a
// process of its own.

#include "korcg_dbg.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>

namespace
{

struct Calls {
    int lookups = 0;
    int locks = 0;
    int streams = 0;
};

dbg_CallBacks_s countingTable(Calls* calls)
{
    dbg_CallBacks_s table = {};
    table.context = calls;
    table.lookup = [](void* context, const char*) -> const char* {
        ++static_cast<Calls*>(context)->lookups;
        return nullptr;
    };
    table.setStream = [](void* context, FILE*) { ++static_cast<Calls*>(context)->streams; };
    table.lock = [](void* context) { ++static_cast<Calls*>(context)->locks; };
    return table;
}

void trace()
{
    dbg_Trace(DBG_LEVEL_ALWAYS, "Host", "Host", "trace", "host_test.cpp", 1, " a line of the host");
}

void require(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "%s\n", what);
        std::_Exit(1);
    }
}

void* load()
{
    void* library = dlopen(TQX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    require(library != nullptr, "the plug-in cannot be loaded");
    return library;
}

void unload(void* library)
{
    dlclose(library);
    require(dlopen(TQX_LIBRARY, RTLD_NOW | RTLD_NOLOAD) == nullptr, "the plug-in stays loaded");
    require(dlopen(KORGUIBASE_LIBRARY, RTLD_NOW | RTLD_NOLOAD) == nullptr, "korguibase stays");
}

[[noreturn]] void succeed()
{
    std::_Exit(0);
}

[[noreturn]] void hostWithTable()
{
    Calls calls;
    const dbg_CallBacks_s table = countingTable(&calls);
    dbg_SetCallBacks(&table);
    void* library = load();
    require(dbg_GetInitCount() == 1, "the plug-in does not initialise");
    require(calls.lookups > 0 && calls.streams == 1, "the host's table is not asked");
    trace();
    require(calls.locks == 1, "the host's lock is not used");
    unload(library);
    trace();
    require(calls.locks == 2, "the host's table is gone after unloading");
    succeed();
}

[[noreturn]] void hostThatInitialises()
{
    dbg_Init(nullptr, true);
    void* library = load();
    require(dbg_GetCallBacks() == nullptr, "a table is installed too late");
    require(dbg_GetSettings()->assertionsReturn, "the host's settings are gone");
    trace();
    unload(library);
    trace();
    succeed();
}

[[noreturn]] void hostWithoutDiagnostics()
{
    for (int round = 0; round < 2; ++round) {
        void* library = load();
        require((dbg_GetCallBacks() != nullptr) == (round == 0), "not the table of the start-up");
        trace();
        unload(library);
        require(dbg_GetCallBacks() == nullptr, "the table outlives the plug-in");
        trace();
    }
    succeed();
}

[[noreturn]] void hostThatReplacesTheTable()
{
    void* library = load();
    Calls calls;
    const dbg_CallBacks_s table = countingTable(&calls);
    dbg_SetCallBacks(&table);
    unload(library);
    trace();
    require(calls.locks == 1, "the host's table is taken out");
    succeed();
}

TEST(Host, KeepsItsDiagnosticsAcrossLoadingAndUnloading)
{
    const struct {
        const char* name;
        void (*run)();
    } hosts[] = {
        {"installs a table before", hostWithTable},
        {"initialises before", hostThatInitialises},
        {"knows no diagnostics", hostWithoutDiagnostics},
        {"installs a table later", hostThatReplacesTheTable},
    };
    for (const auto& host : hosts) {
        EXPECT_EXIT(host.run(), testing::ExitedWithCode(0), "") << host.name;
    }
}

} // namespace
