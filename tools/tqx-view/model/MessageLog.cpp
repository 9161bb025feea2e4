#include "model/MessageLog.h"

#include <FieldInfo.h>

namespace tqx::view
{

QString MessageLog::unitOf(const FieldInfo& field) const
{
    return field.getUnit();
}

std::vector<MessageLog::Damage> MessageLog::findDamage(size_t) const
{
    return {};
}

} // namespace tqx::view
