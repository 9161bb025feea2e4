#include "korcg_dbg.h"

#include "korcg_dbg_line.h"
#include "korcg_dbg_settings.h"

#include <atomic>
#include <cstdarg>
#include <cstdlib>

namespace
{

constexpr dbg_Settings_s uninitialised = {DBG_LEVEL_ALWAYS, 0,       nullptr, nullptr, 0,
                                          UINT64_MAX,       nullptr, false,   false};

// None of these needs a destructor, so that tracing works to the very end of the process.
dbg_CallBacks_s g_callBacks = {};
bool g_hasCallBacks = false;
dbg_Settings_s g_storage = uninitialised;
std::atomic<const dbg_Settings_s*> g_settings{&uninitialised};
std::atomic<uint32_t> g_initCount{0};
std::atomic<uint64_t> g_lineCount{0};

const dbg_Settings_s& settings()
{
    return *g_settings.load(std::memory_order_acquire);
}

const char* orEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

/// Writes the text in one piece between the host's lock and unlock.
void writeLocked(const std::string& text)
{
    FILE* stream = settings().stream;
    if (g_callBacks.lock != nullptr) {
        g_callBacks.lock(g_callBacks.context);
    }
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
    if (g_callBacks.unlock != nullptr) {
        g_callBacks.unlock(g_callBacks.context);
    }
}

void writeLine(const std::string& line)
{
    g_lineCount.fetch_add(1, std::memory_order_relaxed);
    writeLocked(line + '\n');
}

} // namespace

void dbg_SetCallBacks(const dbg_CallBacks_s* callBacks)
{
    g_hasCallBacks = callBacks != nullptr;
    g_callBacks = callBacks != nullptr ? *callBacks : dbg_CallBacks_s{};
}

const dbg_CallBacks_s* dbg_GetCallBacks()
{
    return g_hasCallBacks ? &g_callBacks : nullptr;
}

void dbg_Init(const char* logFileVariable, bool assertionsReturn)
{
    if (g_initCount.fetch_add(1) != 0) {
        return;
    }
    const int error = korcg::readSettings(g_callBacks, logFileVariable, &g_storage);
    if (error != DBG_SUCCESS) {
        std::printf("dbg_Init failed :%s", dbg_ErrorText(error));
        std::exit(1);
    }
    g_storage.assertionsReturn = assertionsReturn;
    g_storage.initialised = true;
    g_settings.store(&g_storage, std::memory_order_release);
}

int dbg_CheckModule(const char* module, const char* subModule)
{
    const dbg_Settings_s& current = settings();
    if (!current.initialised) {
        return -1;
    }
    return korcg::passesFilter(current.modules, orEmpty(module)) &&
                   korcg::passesFilter(current.subModules, orEmpty(subModule))
               ? 1
               : 0;
}

void dbg_Trace(uint32_t level, const char* module, const char* subModule, const char* function,
               const char* file, int line, const char* format, ...)
{
    const dbg_Settings_s& current = settings();
    if (!current.initialised || (current.levelMask & level) == 0) {
        return;
    }
    const uint64_t now = korcg::currentTime();
    if (now < current.startTime || now > current.stopTime) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    const std::string text = korcg::formatLine(
        current.fieldMask,
        {level, orEmpty(module), orEmpty(subModule), orEmpty(function), orEmpty(file), line, now},
        format, arguments);
    va_end(arguments);
    writeLine(text);
}

void dbg_Assert(const char* module, const char* subModule, const char* function, const char* file,
                int line, const char* format, ...)
{
    const dbg_Settings_s& current = settings();
    if (!current.initialised) {
        std::exit(1);
    }
    va_list arguments;
    va_start(arguments, format);
    const std::string text =
        korcg::formatLine(current.fieldMask,
                          {DBG_LEVEL_ASSERT, orEmpty(module), orEmpty(subModule), orEmpty(function),
                           orEmpty(file), line, korcg::currentTime()},
                          format, arguments);
    va_end(arguments);
    writeLine(text);
    if (g_callBacks.report != nullptr) {
        g_callBacks.report(g_callBacks.context, text.c_str());
    }
    if (!current.assertionsReturn) {
        writeLocked("Abnormal program termination...\n");
        std::exit(1);
    }
}

const char* dbg_ErrorText(int code)
{
    switch (code) {
    case DBG_SUCCESS:
        return " success.";
    case DBG_ERROR_UNKNOWN_TYPE:
        return " unknown type.";
    case DBG_ERROR_OPEN_FILE:
        return " could not open file.";
    case DBG_ERROR_NULL_POINTER:
        return " illegal nullpointer passed as argument.";
    case DBG_ERROR_NO_FUNCTION:
        return " functionality not yet implemented.";
    case DBG_ERROR_MUTEX_INIT:
        return " Mutex init failed.";
    case DBG_ERROR_CLOSE_FILE:
        return " could not close file.";
    default:
        return "Unknown Error";
    }
}

const dbg_Settings_s* dbg_GetSettings()
{
    return &settings();
}

uint32_t dbg_GetInitCount()
{
    return g_initCount.load();
}

uint64_t dbg_GetLineCount()
{
    return g_lineCount.load();
}
