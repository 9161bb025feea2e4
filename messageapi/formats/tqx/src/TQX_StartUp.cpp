#include "CallBackFunctions.h"
#include "korcg_dbg.h"

#include <QMetaType>

#include <cstdint>

namespace
{

bool isInstalled(const dbg_CallBacks_s& ours)
{
    const dbg_CallBacks_s* installed = dbg_GetCallBacks();
    return installed && installed->context == ours.context && installed->lookup == ours.lookup &&
           installed->setStream == ours.setStream && installed->lock == ours.lock &&
           installed->unlock == ours.unlock && installed->report == ours.report;
}

// Set-up needed as soon as the library is loaded. The diagnostics are set up, unless the host has
// done so: with its call-back table if it has installed one, else with that of korguibase. Their
// output goes to standard output unless KOR_TQX_LOGFILE names a file; a failed assertion ends the
// process. korguibase may be unloaded together with this library, so its table goes first, unless
// the host has put another in its place.
struct StartUp {
    StartUp()
    {
        if (!dbg_GetCallBacks() && dbg_GetInitCount() == 0) {
            dbg_SetCallBacks(getCallBackFunctions());
            installed = true;
        }
        dbg_Init("KOR_TQX_LOGFILE", false);

        // Any synchroniser's signals reach their slots through queued connections, too.
        qRegisterMetaType<uint32_t>("uint32_t");
    }

    ~StartUp()
    {
        if (installed && isInstalled(*getCallBackFunctions()))
            dbg_SetCallBacks(nullptr);
    }

    bool installed = false;
};

const StartUp startUp;

} // namespace
