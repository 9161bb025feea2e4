#include "model/MessageLog.h"

#include <FieldInfo.h>

namespace tqx::view
{

QString MessageLog::unitOf(const FieldInfo& field) const
{
    return field.getUnit();
}

} // namespace tqx::view
