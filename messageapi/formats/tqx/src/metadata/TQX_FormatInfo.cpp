#include "TQX_FormatInfo.h"

#include "TQX_Getters.h"
#include "TQX_Registration.h"

#include "MemLeakTracer.h"
#include "MessageInfo.h"

#include <QString>

#include <atomic>
#include <mutex>

// Over a framework of the host that offers no SetUp, the registry is listed from the start.
struct TQX_FormatInfo::NoSetUp {
};

template<typename Format>
typename Format::SetUp TQX_FormatInfo::withhold(int)
{
    return {};
}

template<typename>
TQX_FormatInfo::NoSetUp TQX_FormatInfo::withhold(long)
{
    return {};
}

TQX_FormatInfo::TQX_FormatInfo() : FormatInfo(QString::fromLatin1("TQX")), m_setupStarted(false)
{
    static std::atomic<int> traceLevel{-1};
    TQX_resolveTrace(traceLevel, "TQX_FormatInfo");
    MemLeakTracer::allocateObject("TQX_FormatInfo");
}

TQX_FormatInfo::~TQX_FormatInfo()
{
    MemLeakTracer::deallocateObject("TQX_FormatInfo");
}

const TQX_FormatInfo* TQX_FormatInfo::getInstance()
{
    static std::recursive_mutex setupMutex; // the set-up calls this function, too
    static std::atomic<bool> isComplete{false};
    if (!isComplete.load(std::memory_order_acquire)) {
        const std::lock_guard<std::recursive_mutex> lock(setupMutex);
        [[maybe_unused]] const auto setUp = withhold<FormatInfo>(0);
        TQX_FormatInfo& instance = theInstance();
        if (!instance.m_setupStarted) {
            instance.setupMessageInfos();
            isComplete.store(true, std::memory_order_release);
        }
    }
    return &theInstance();
}

TQX_FormatInfo& TQX_FormatInfo::theInstance()
{
    static TQX_FormatInfo instance;
    return instance;
}

void TQX_FormatInfo::setupMessageInfos()
{
    // First of all: every message and field info needs the registry while it is built.
    m_setupStarted = true;
    const TQX_RegistrationList list = TQX_registration();
    for (unsigned i = 0; i < list.count; ++i) {
        if (list.rows[i].isMain) {
            addMessageInfo(list.rows[i].getInstance());
        } else {
            addSubMessageInfo(list.rows[i].getInstance());
        }
    }
}
