// korcg_probe <command> [<argument>...]: one use of the diagnostics, for dbg_test.cpp.

#include "korcg_dbg.h"

#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace
{

const char* orNone(const char* text)
{
    return text != nullptr ? text : "(null)";
}

void printSettings()
{
    const dbg_Settings_s& settings = *dbg_GetSettings();
    std::printf("levels=%" PRIu32 " fields=%" PRIu32 " start=%" PRIu64 " stop=%" PRIu64
                " modules=%s subModules=%s stream=%s\n",
                settings.levelMask, settings.fieldMask, settings.startTime, settings.stopTime,
                orNone(settings.modules), orNone(settings.subModules),
                settings.stream == stdout ? "stdout" : "file");
}

void traceAllLevels()
{
    for (const uint32_t level : {1u, 2u, 4u, 8u, 16u, 64u}) {
        dbg_Trace(level, "Mod", "Class", "func", "file.cpp", 42, "[%s %d]", "level",
                  static_cast<int>(level));
    }
}

void fail(const char* text)
{
    dbg_Assert("Mod", "Class", "func", "file.cpp", 42, "[%s]", text);
}

const char* lookUp(void* context, const char* name)
{
    const auto& values = *static_cast<std::map<std::string, std::string>*>(context);
    const auto found = values.find(name);
    return found != values.end() ? found->second.c_str() : nullptr;
}

void say(const char* what)
{
    std::printf("<%s>", what);
}

void useCallBacks()
{
    static std::map<std::string, std::string> values = {{"KOR_TRACEINFO", "LINE"},
                                                        {"KOR_TRACELEVEL", "1"}};
    dbg_CallBacks_s callBacks = {};
    callBacks.context = &values;
    callBacks.lookup = lookUp;
    callBacks.setStream = [](void*, FILE* stream) { say(stream == stdout ? "stdout" : "?"); };
    callBacks.lock = [](void* context) { say(context == &values ? "lock" : "?"); };
    callBacks.unlock = [](void* context) { say(context == &values ? "unlock" : "?"); };
    callBacks.report = [](void*, const char* line) { say(line); };
    dbg_SetCallBacks(&callBacks);
    callBacks = {};
    dbg_Init(nullptr, false);
    traceAllLevels();
    fail("broken");
}

} // namespace

int main(int argc, char** argv)
{
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "settings") {
        dbg_Init(argc > 2 ? argv[2] : nullptr, false);
        printSettings();
    } else if (command == "check" && argc == 4) {
        std::printf("%d ", dbg_CheckModule(argv[2], argv[3]));
        dbg_Init(nullptr, false);
        std::printf("%d\n", dbg_CheckModule(argv[2], argv[3]));
    } else if (command == "trace") {
        traceAllLevels();
        dbg_Init(nullptr, false);
        traceAllLevels();
        std::printf("lines=%" PRIu64 "\n", dbg_GetLineCount());
    } else if (command == "assert") {
        dbg_Init(nullptr, false);
        fail("broken");
        std::printf("went on\n");
    } else if (command == "assert-returns") {
        dbg_Init(nullptr, true);
        dbg_Init(nullptr, false);
        fail("broken");
        std::printf("went on, initialised %" PRIu32 " times\n", dbg_GetInitCount());
    } else if (command == "assert-first") {
        fail("broken");
        std::printf("went on\n");
    } else if (command == "callbacks") {
        useCallBacks();
    } else {
        return 2;
    }
    return 0;
}
