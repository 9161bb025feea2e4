#include "CallBackFunctions.h"

#include <QtGlobal>

#include <atomic>
#include <cstdlib>
#include <mutex>

namespace
{

/// Owns the state of the call-backs, and is their context.
struct Diagnostics {
    std::recursive_mutex mutex;
    std::atomic<FILE*> stream{nullptr};
};

/// Never destroyed: assertions may still be reported while the process ends.
Diagnostics& diagnostics()
{
    static auto* const instance = new Diagnostics;
    return *instance;
}

Diagnostics& fromContext(void* context)
{
    return *static_cast<Diagnostics*>(context);
}

const char* lookUp(void*, const char* name)
{
    return std::getenv(name);
}

void setStream(void* context, FILE* stream)
{
    fromContext(context).stream = stream;
}

void lock(void* context)
{
    fromContext(context).mutex.lock();
}

void unlock(void* context)
{
    fromContext(context).mutex.unlock();
}

void report(void*, const char* line)
{
    qCritical("%s", line);
}

} // namespace

const dbg_CallBacks_s* getCallBackFunctions()
{
    static const dbg_CallBacks_s callBacks{&diagnostics(), lookUp, setStream, lock, unlock, report};
    return &callBacks;
}

FILE* getDiagnosticsStream()
{
    return diagnostics().stream;
}
