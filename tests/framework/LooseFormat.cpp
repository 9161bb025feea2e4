// A format whose texts are all literals of this library, and so go away with it.

#include "Toy.h"

extern "C" Q_DECL_EXPORT void setUpLooseFormat()
{
    static ToyFormat format(QStringLiteral("Loose"));
    static ToyInfo info(QStringLiteral("LooseMessage"));
    static ToyField field(QStringLiteral("Loose Field"), FieldType::u(8));
    if (!format.getMessageInfos().isEmpty())
        return;
    field.setUnit(QStringLiteral("loose unit"));
    field.addSymbolicValue(FieldValue::u(1, 8), QStringLiteral("loose name"));
    info.setShortDescriptiveText(QStringLiteral("loose description"));
    info.setAttribute(QStringLiteral("loose key"), QStringLiteral("loose text"));
    info.addFieldInfo(&field, 0, false);
    format.addMessageInfo(&info);
}
