#include "CallBackFunctions.h"
#include "korcg_dbg.h"

namespace
{

// The diagnostics are set up when the library is loaded. Their output goes to standard output
// unless KOR_TQX_LOGFILE names a file; a failed assertion ends the process.
struct StartUp {
    StartUp()
    {
        dbg_SetCallBacks(getCallBackFunctions());
        dbg_Init("KOR_TQX_LOGFILE", false);
    }
};

const StartUp startUp;

} // namespace
