#include "Blocks.h"

#include "CallBackFunctions.h"
#include "korcg_dbg.h"

#include <gtest/gtest.h>

namespace
{

TEST(StartUp, SetsUpTheDiagnostics)
{
    TQX_FormatInfo::getInstance(); // keeps the library linked
    EXPECT_EQ(dbg_GetInitCount(), 1U);
    EXPECT_FALSE(dbg_GetSettings()->assertionsReturn);
    EXPECT_NE(dbg_CheckModule("MessageAPI_TQX", "TQXDecoder"), -1);
    EXPECT_EQ(getDiagnosticsStream(), dbg_GetSettings()->stream) << "the host was not told";
    EXPECT_NE(getDiagnosticsStream(), nullptr);
}

} // namespace
