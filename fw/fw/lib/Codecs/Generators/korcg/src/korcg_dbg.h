#pragma once

#include "korcg_export.h"

#include <cstdint>
#include <cstdio>

#if defined(__GNUC__)
#define KORCG_PRINTF(text, arguments) __attribute__((format(printf, text, arguments)))
#else
#define KORCG_PRINTF(text, arguments)
#endif

/// Trace and assertion output, chosen at start-up by environment variables:
///
/// - KOR_TRACELEVEL: levels to print, "FUNC", "0", "1", "2"; or "none"; or "all", which wins.
///   Unset: DBG_LEVEL_ALWAYS alone.
/// - KOR_TRACEINFO: fields before each line, "MODULE", "SUBMOD", "FUNC", "FILE", "LINE", "LEVEL",
///   "TIME", "THREAD"; or "all". Unset: SUBMOD, FUNC, LINE and LEVEL.
/// - KOR_MODULES: modules to trace, a list of names, "none" or "all". Unset: all.
/// - KOR_SUBMODULES: classes to trace, likewise.
/// - KOR_STARTTIME, KOR_STOPTIME: first and last second to trace, counted from 1970-01-01 UTC.
///   Unset: no limit.
/// - KOR_LOGFILE, or the variable that dbg_Init is given: file to append the output to. Unset:
///   standard output.
///
/// Words are looked for anywhere in a value: "012" selects three levels. A module passes when its
/// name occurs in the value of KOR_MODULES: "TQXDecoder,TQXUtils" passes these two classes.
///
/// The settings are written once, by the first dbg_Init, and only read afterwards. Each line is
/// written whole, between `lock` and `unlock` of the call-back table.

/// Levels of trace lines; the bits of dbg_Settings_s::levelMask.
enum dbg_Level_e : uint32_t {
    DBG_LEVEL_ALWAYS = 1, ///< printed unless levels are "none"
    DBG_LEVEL_FUNC = 2,   ///< function entry and exit
    DBG_LEVEL_0 = 4,
    DBG_LEVEL_1 = 8,
    DBG_LEVEL_2 = 16,
    DBG_LEVEL_ASSERT = 32 ///< used by dbg_Assert
};

/// Fields before each line; the bits of dbg_Settings_s::fieldMask.
enum dbg_Field_e : uint32_t {
    DBG_FIELD_MODULE = 1,
    DBG_FIELD_SUBMOD = 2,
    DBG_FIELD_FUNC = 8,
    DBG_FIELD_FILE = 16,
    DBG_FIELD_LINE = 32,
    DBG_FIELD_LEVEL = 64,
    DBG_FIELD_TIME = 128, ///< milliseconds since 1970-01-01 UTC
    DBG_FIELD_THREAD = 256
};

/// Failures of the facility, see dbg_ErrorText.
enum dbg_Error_e : int {
    DBG_SUCCESS = 0,
    DBG_ERROR_UNKNOWN_TYPE = 1,
    DBG_ERROR_OPEN_FILE = 2,
    DBG_ERROR_NULL_POINTER = 3,
    DBG_ERROR_NO_FUNCTION = 4,
    DBG_ERROR_MUTEX_INIT = 5,
    DBG_ERROR_CLOSE_FILE = 6
};

/// What a host may take over from the facility. Every member may be null; `context` is passed to
/// every call.
struct dbg_CallBacks_s {
    void* context;
    /// Value of an environment variable, or null when it is unset. Without it the process
    /// environment is asked. The text needs to last for the call only.
    const char* (*lookup)(void* context, const char* name);
    /// Called once by dbg_Init with the stream that the output goes to. The stream stays open.
    void (*setStream)(void* context, FILE* stream);
    /// Called around each line.
    void (*lock)(void* context);
    void (*unlock)(void* context);
    /// Given each assertion line, without its line end, after it has been written and unlocked.
    void (*report)(void* context, const char* line);
};

/// The settings of the process.
struct dbg_Settings_s {
    uint32_t levelMask;     ///< dbg_Level_e bits to print
    uint32_t fieldMask;     ///< dbg_Field_e bits to print before each line
    const char* modules;    ///< value of KOR_MODULES or null
    const char* subModules; ///< value of KOR_SUBMODULES or null
    uint64_t startTime;     ///< first millisecond since 1970-01-01 UTC to trace
    uint64_t stopTime;      ///< last one; all ones: no end
    FILE* stream;           ///< log file or standard output
    bool assertionsReturn;  ///< dbg_Assert returns instead of ending the process
    bool initialised;       ///< dbg_Init has done its work
};

extern "C" {

/// Installs a copy of the host's table; null removes it. To be called before dbg_Init and while no
/// other thread uses the facility.
KORCG_API void dbg_SetCallBacks(const dbg_CallBacks_s* callBacks);

/// The copy of the table that is installed, or null. Valid until the next dbg_SetCallBacks.
KORCG_API const dbg_CallBacks_s* dbg_GetCallBacks();

/// Reads the settings on the first call, counts on later ones. `logFileVariable` names the variable
/// that holds the path of the log file, null stands for "KOR_LOGFILE"; a file that cannot be opened
/// means standard output. With `assertionsReturn` dbg_Assert returns. A start or stop time that is
/// not an integer prints "dbg_Init failed :" and the error's text to standard output and ends the
/// process with exit status 1; an empty one counts as unset.
KORCG_API void dbg_Init(const char* logFileVariable, bool assertionsReturn);

/// Whether tracing is on for a module and a class of it: -1 before dbg_Init, then 1 or 0. The
/// answer does not change any more once it is not -1.
KORCG_API int dbg_CheckModule(const char* module, const char* subModule);

/// Writes one line when the level is among those selected and the time is within the span selected.
/// Does not look at the module filters: ask dbg_CheckModule once per class and keep the answer.
/// Writes nothing before dbg_Init. `format` is that of printf, without a line end; the message
/// follows the last field with nothing in between.
KORCG_API void dbg_Trace(uint32_t level, const char* module, const char* subModule,
                         const char* function, const char* file, int line, const char* format, ...)
    KORCG_PRINTF(7, 8);

/// Writes one line whatever levels, modules and times are selected, passes it to the call-back
/// table, and ends the process with exit status 1 after "Abnormal program termination...", unless
/// dbg_Init said that assertions return. Before dbg_Init it writes nothing and ends the process.
KORCG_API void dbg_Assert(const char* module, const char* subModule, const char* function,
                          const char* file, int line, const char* format, ...) KORCG_PRINTF(6, 7);

/// Text of a dbg_Error_e, with a leading blank; "Unknown Error" for any other code.
KORCG_API const char* dbg_ErrorText(int code);

/// The settings in use, never null; before dbg_Init all defaults and a null stream.
KORCG_API const dbg_Settings_s* dbg_GetSettings();

/// How often dbg_Init has been called.
KORCG_API uint32_t dbg_GetInitCount();

/// How many lines have been written, those of assertions included.
KORCG_API uint64_t dbg_GetLineCount();
}
