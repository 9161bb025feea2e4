#pragma once

#include "TQX_FieldRow.h"
#include "tqx_export.h"

#include "MessageInfo.h"

/// Metadata of one TQX message type. The generated classes pass their row and add their singleton.
///
/// Message infos rely on the registry: call TQX_FormatInfo::getInstance() before any other
/// getInstance(), otherwise the set-up of the registry waits for itself.
class TQX_API TQX_MessageInfo : public MessageInfo
{
public:
    /// Plain copies; like the copies of messages they are not reported to MemLeakTracer, their
    /// destruction is.
    TQX_MessageInfo(const TQX_MessageInfo& other) = default;
    TQX_MessageInfo& operator=(const TQX_MessageInfo& other) = default;

protected:
    /// Name, description or sub-block flag, and registry.
    explicit TQX_MessageInfo(const TQX_TypeRow& type);
    ~TQX_MessageInfo() override;

    /// Lists the field singletons in their order.
    void addFields();

    /// Main blocks: the discriminant, which is the field `blockNumber`, and the attributes.
    void addMainProperties(const FieldInfo* blockNumber);

private:
    const TQX_TypeRow* m_type;
};
