#include "TQX_FormatInfo.h"

#include "Journal.h"

// The registry of the recording: notes that it is asked for and sets nothing up.

TQX_FormatInfo::TQX_FormatInfo() : FormatInfo(QString()), m_setupStarted(true) {}
TQX_FormatInfo::~TQX_FormatInfo() = default;

const TQX_FormatInfo* TQX_FormatInfo::getInstance()
{
    static TQX_FormatInfo instance;
    Journal::note("getInstance");
    return &instance;
}
