#include "Blocks.h"
#include "TQXDecoder.h"
#include "TQXSynchronizer.h"
#include "TQX_DiffCorrIn_Extractor.h"
#include "TqxTimeSource.h"

#include "CallBackFunctions.h"
#include "MemLeakTracer.h"
#include "korcg_dbg.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

TEST(StartUp, SetsUpTheDiagnostics)
{
    TQX_FormatInfo::getInstance(); // keeps the library linked
    EXPECT_EQ(dbg_GetInitCount(), 1U);
    EXPECT_FALSE(dbg_GetSettings()->assertionsReturn);
    EXPECT_NE(dbg_CheckModule("MessageAPI_TQX", "TQXDecoder"), -1);
    EXPECT_EQ(getDiagnosticsStream(), dbg_GetSettings()->stream) << "the host was not given it";
    EXPECT_NE(getDiagnosticsStream(), nullptr);
}

template<typename Service, typename... Arguments>
void expectReported(const char* name, Arguments... arguments)
{
    const qint64 before = MemLeakTracer::getObjectCount(name);
    auto service = std::make_unique<Service>(arguments...);
    EXPECT_EQ(MemLeakTracer::getObjectCount(name), before + 1) << name;
    service.reset();
    EXPECT_EQ(MemLeakTracer::getObjectCount(name), before) << name;
}

TEST(Services, ReportThemselvesToTheTracer)
{
    TQX_FormatInfo::getInstance();
    TQXDecoder decoder;
    expectReported<TQXDecoder>("TQXDecoder");
    expectReported<TQXSynchronizer>("TQXSynchronizer");
    expectReported<TqxTimeSource>("TqxTimeSource");
    expectReported<TQX_DiffCorrIn_Extractor>("TQX_DiffCorrIn_Extractor", &decoder, &decoder, 2);
}

} // namespace
