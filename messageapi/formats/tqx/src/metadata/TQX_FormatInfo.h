#pragma once

#include "tqx_export.h"

#include "FormatInfo.h"

/// Registry of the TQX format: all message types, main blocks and sub-blocks, in a fixed order.
class TQX_API TQX_FormatInfo : public FormatInfo
{
public:
    TQX_FormatInfo(const TQX_FormatInfo& other) = default;
    TQX_FormatInfo& operator=(const TQX_FormatInfo& other) = default;

    /// The registry. The first call builds it with all message and field metadata; it must come
    /// before any other use of metadata. Calls from within that set-up return the registry while it
    /// is still being filled, calls from other threads wait until it is complete. FormatInfo lists
    /// it once it is complete.
    static const TQX_FormatInfo* getInstance();

protected:
    ~TQX_FormatInfo() override;

private:
    struct NoSetUp;
    template<typename Format>
    static typename Format::SetUp withhold(int);
    template<typename>
    static NoSetUp withhold(long);

    TQX_FormatInfo();
    static TQX_FormatInfo& theInstance();
    void setupMessageInfos();

    bool m_setupStarted;
};
