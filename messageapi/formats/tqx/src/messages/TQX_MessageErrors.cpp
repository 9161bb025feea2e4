#include "TQX_MessageErrors.h"

#include "TQX_FormatInfo.h"

#include "MessageApiEvent.h"

#include <QtGlobal>

namespace
{

[[noreturn]] void throwFieldAccess(const char* before, const char* block, const char* field,
                                   const char* after)
{
    const QString text = QLatin1String(before) + QLatin1String(block) + QLatin1String("::") +
                         QLatin1String(field) + QLatin1String(after);
    throw MessageApiEvent(MessageApiEvent::FieldAccess, text, TQX_FormatInfo::getInstance());
}

} // namespace

void TQX_failUninitialized(const char* className)
{
    qFatal("%s::assertRepresentation() failed when trying to access data of an uninitialized "
           "message.",
           className);
}

void TQX_throwAbsent(const char* block, const char* field)
{
    throwFieldAccess("Requesting value for a non-present optional field ", block, field, ".");
}

void TQX_throwOutOfRange(const char* block, const char* field)
{
    throwFieldAccess("Requesting value for an repeated field ", block, field,
                     " with out of range index.");
}
