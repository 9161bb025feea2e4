// A format whose texts are all literals of this library, and so go away with it.

#include <FormatInfo.h>
#include <MemLeakTracer.h>
#include <MessageApiEvent.h>

#include <QtGlobal>

namespace
{

class LooseField final : public FieldInfo
{
public:
    LooseField() : FieldInfo(QStringLiteral("Loose Field"), FieldType::u(8))
    {
        MemLeakTracer::allocateObject("LooseField");
        setUnit(QStringLiteral("loose unit"));
        addSymbolicValue(FieldValue::u(1, 8), QStringLiteral("loose name"));
    }
    ~LooseField() override { MemLeakTracer::deallocateObject("LooseField"); }

    bool hasValue(const Message*) const override { return false; }
    unsigned getNumberOfValues(const Message*) const override { return 0; }
    FieldValue getValue(const Message*, unsigned) const override
    {
        throw MessageApiEvent(MessageApiEvent::FieldAccess, QStringLiteral("loose event"), nullptr);
    }
    FieldValue getValueUnchecked(const Message*, unsigned) const override { return FieldValue(); }
};

class LooseInfo final : public MessageInfo
{
public:
    LooseInfo() : MessageInfo(QStringLiteral("LooseMessage"))
    {
        MemLeakTracer::allocateObject(QStringLiteral("LooseInfo"));
        setShortDescriptiveText(QStringLiteral("loose description"));
        setAttribute(QStringLiteral("loose key"), QStringLiteral("loose text"));
        static LooseField field;
        addFieldInfo(&field, 0, false);
    }
    ~LooseInfo() override { MemLeakTracer::deallocateObject(QStringLiteral("LooseInfo")); }
};

class LooseFormat final : public FormatInfo
{
public:
    LooseFormat() : FormatInfo(QStringLiteral("Loose")) {}

    void setUp()
    {
        static const LooseInfo info;
        addMessageInfo(&info);
    }
};

} // namespace

extern "C" Q_DECL_EXPORT void setUpLooseFormat()
{
    static LooseFormat format;
    if (format.getMessageInfos().isEmpty()) {
        format.setUp();
    }
}
