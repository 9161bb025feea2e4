#include "TQX_FieldInfo.h"

#include "TQX_FieldAccess.h"
#include "TQX_FormatInfo.h"
#include "TQX_RecordAccess.h"
#include "TQX_SharedText.h"
#include "TQX_SymbolNames.h"

#include "FieldType.h"
#include "FloatRepresentation.h"
#include "MemLeakTracer.h"
#include "Message.h"
#include "MessageApiEvent.h"

#include <QLocale>

#include <memory>

using namespace Kor::MessageApi;

namespace
{

FieldType typeOf(const TQX_FieldLayout& field, const TQX_FieldRow& row)
{
    switch (field.type) {
    case TQX_MemberType::Record:
        return FieldType::subMessage(row.subMessageInfo());
    case TQX_MemberType::F32:
        return FieldType::f32();
    case TQX_MemberType::F64:
        return FieldType::f64();
    case TQX_MemberType::Char:
        return FieldType::ch();
    case TQX_MemberType::I8:
    case TQX_MemberType::I16:
    case TQX_MemberType::I32:
        return FieldType::i(field.width);
    default:
        return FieldType::u(field.width);
    }
}

FieldValue integerValue(const TQX_FieldLayout& field, int64_t value)
{
    return TQX_isSigned(field) ? FieldValue::i(value, field.width)
                               : FieldValue::u(static_cast<uint64_t>(value), field.width);
}

bool isReal(const TQX_FieldLayout& field)
{
    return field.type == TQX_MemberType::F32 || field.type == TQX_MemberType::F64;
}

bool isText(const TQX_FieldLayout& field)
{
    return field.kind == TQX_FieldKind::Text || field.kind == TQX_FieldKind::CountedText;
}

/// On the heap, as all strings that leave the library: a literal would be gone once it is unloaded.
const QString& doNotUseName()
{
    static const QString name = QString::fromLatin1("DoNotUse");
    return name;
}

QString doNotUseText()
{
    return Message::useDoNotUseString ? Message::doNotUseString : QString();
}

} // namespace

TQX_FieldInfo::TQX_FieldInfo(const TQX_TypeRow& type, unsigned index)
    : TQX_FieldInfo(type, TQX_fieldFacts(type.recordType), index)
{
}

TQX_FieldInfo::TQX_FieldInfo(const TQX_TypeRow& type, const TQX_FieldFacts* facts, unsigned index)
    : TQX_FieldInfo(type, *TQX_layout(type.recordType), facts[index], index)
{
}

TQX_FieldInfo::TQX_FieldInfo(const TQX_TypeRow& type, const TQX_TypeLayout& layout,
                             const TQX_FieldFacts& facts, unsigned index)
    : FieldInfo(TQX_sharedText(layout.fields[index].name),
                typeOf(layout.fields[index], type.fields[index])),
      m_row(type.fields[index]), m_facts(facts), m_field(layout.fields[index]), m_type(layout)
{
    MemLeakTracer::allocateObject(m_row.className);
    TQX_FormatInfo::getInstance();

    if (m_facts.has(TQX_FieldFacts::Optional))
        setIsOptional(true);
    if (m_facts.has(TQX_FieldFacts::Repeated))
        setIsRepeated(true);
    if (m_facts.has(TQX_FieldFacts::Virtual))
        setVirtual(true);

    unsigned missing = m_facts.subFields;
    for (unsigned i = index + 1; missing > 0; ++i) {
        if (layout.fields[i].parent != static_cast<int>(index))
            continue;
        addSubFieldInfo(type.fields[i].instance());
        --missing;
    }

    if (m_facts.role != TQX_Role::Unset)
        setRole(static_cast<FieldInfo::Role>(m_facts.role));
    if (m_facts.unit != 0)
        setUnit(TQX_sharedText(TQX_unit(m_facts).data()));
    if (m_facts.scale != 0)
        setScaleFactor(TQX_scale(m_facts));
    addSymbolicValues();
    if (m_facts.has(TQX_FieldFacts::HasDoNotUse))
        setDoNotUseValue(doNotUseValue());
    if (m_facts.precision >= 0)
        setPrecision(m_facts.precision);
    if (m_facts.has(TQX_FieldFacts::BitMask))
        setRepresentationMode(FieldValue::BitMask);
}

TQX_FieldInfo::~TQX_FieldInfo()
{
    delete m_locale.load(std::memory_order_acquire);
    MemLeakTracer::deallocateObject(m_row.className);
}

void TQX_FieldInfo::addSymbolicValues()
{
    if (m_facts.namedValues != 0) {
        const TQX_SymbolNames& symbols = TQX_SymbolNames::of(m_facts);
        for (unsigned i = 0; i < symbols.size(); ++i)
            addSymbolicValue(integerValue(m_field, symbols.value(i)), symbols.name(i));
    }
    if (m_facts.has(TQX_FieldFacts::NamesDoNotUse))
        addSymbolicValue(doNotUseValue(), doNotUseName());
}

FieldValue TQX_FieldInfo::doNotUseValue() const
{
    if (m_field.type == TQX_MemberType::F32)
        return FieldValue::f32(static_cast<float>(TQX_realDoNotUse(m_facts)));
    if (m_field.type == TQX_MemberType::F64)
        return FieldValue::f64(TQX_realDoNotUse(m_facts));
    return integerValue(m_field, static_cast<int64_t>(TQX_doNotUse(m_facts)));
}

bool TQX_FieldInfo::isOfOwnType(const Message* message) const
{
    return message && message->getInfo() == m_owner;
}

bool TQX_FieldInfo::isOptionalHere() const
{
    return m_field.presence != TQX_Presence::Always;
}

bool TQX_FieldInfo::isPresent(const void* record) const
{
    return !isOptionalHere() || TQX_isPresent(m_type, m_field, record);
}

/// First index that is out of range for a field that is present.
unsigned TQX_FieldInfo::indexLimit(const void* record) const
{
    if (!m_facts.has(TQX_FieldFacts::Repeated))
        return 1;
    return TQX_FieldAccess::readableElements(m_type, m_field, record);
}

bool TQX_FieldInfo::hasValue(const Message* message) const
{
    if (!isOfOwnType(message))
        return false;
    const bool isRepeated = m_facts.has(TQX_FieldFacts::Repeated);
    if (!isRepeated && !isOptionalHere())
        return true;
    const void* record = TQX_FieldAccess::record(*message, m_type);
    return isPresent(record) && (!isRepeated || TQX_elementCount(m_type, m_field, record) > 0);
}

unsigned TQX_FieldInfo::getNumberOfValues(const Message* message) const
{
    if (!isOfOwnType(message))
        return 0;
    const bool isRepeated = m_facts.has(TQX_FieldFacts::Repeated);
    if (!isRepeated && !isOptionalHere())
        return 1;
    const void* record = TQX_FieldAccess::record(*message, m_type);
    if (!isPresent(record))
        return 0;
    return isRepeated ? TQX_elementCount(m_type, m_field, record) : 1;
}

FieldValue TQX_FieldInfo::getValue(const Message* message, unsigned index) const
{
    if (!isOfOwnType(message))
        fail("Requesting value for a field ", " that is not present in the given kind of message.");
    const bool isRepeated = m_facts.has(TQX_FieldFacts::Repeated);
    if (!isRepeated && !isOptionalHere() && index > 0)
        fail("Requesting value for a non-repeated field ", " using non-zero index.");

    const void* record = TQX_FieldAccess::record(*message, m_type);
    if (!isPresent(record)) {
        if (m_field.isPadding)
            fail("Requesting value for an optional field ", " that is not present.");
        fail("Requesting value for a non-present optional field ", ".");
    }
    if (index >= indexLimit(record)) {
        if (isRepeated)
            fail("Requesting value for an repeated field ", " with out of range index.");
        fail("Requesting value for a non-repeated field ", " using non-zero index.");
    }
    return valueOf(*message, record, index);
}

FieldValue TQX_FieldInfo::getValueUnchecked(const Message* message, unsigned index) const
{
    return valueOf(*message, TQX_FieldAccess::record(*message, m_type), index);
}

FieldValue TQX_FieldInfo::valueOf(const Message& message, const void* record, unsigned index) const
{
    if (m_field.type == TQX_MemberType::Record)
        return FieldValue::subMessage(m_row.subMessage(message, index));
    return TQX_FieldAccess::value(m_field, record, index);
}

void TQX_FieldInfo::fail(const char* before, const char* after) const
{
    const QString text = QLatin1String(before) + QLatin1String(m_type.name) + QLatin1String("::") +
                         QLatin1String(m_field.name) + QLatin1String(after);
    throw MessageApiEvent(MessageApiEvent::FieldAccess, text, TQX_FormatInfo::getInstance());
}

QString TQX_FieldInfo::getValueString(const Message* message) const
{
    // Without the children: a record that was filled by hand may count more than its array holds.
    if (m_field.type == TQX_MemberType::Record) {
        const auto count = static_cast<int>(getNumberOfValues(message));
        return QString::fromLatin1("submsg ").repeated(count).trimmed();
    }
    if (!isText(m_field))
        return FieldInfo::getValueString(message);
    if (!isOfOwnType(message))
        return {};
    const void* record = TQX_FieldAccess::record(*message, m_type);
    if (!isPresent(record))
        return {};
    const auto* text = static_cast<const char*>(TQX_element(m_field, record));
    return QString::fromLatin1(text, static_cast<int>(qstrnlen(text, m_field.elements + 1U)));
}

QString TQX_FieldInfo::getValueString(const Message* message, unsigned index, bool withUnit) const
{
    if (!isOfOwnType(message))
        return {};
    const void* record = TQX_FieldAccess::record(*message, m_type);
    if (!isPresent(record) || index >= indexLimit(record))
        return {};
    if (m_field.type == TQX_MemberType::Record)
        return QString::fromLatin1("submsg");
    if (m_field.type == TQX_MemberType::Char) {
        const auto character = static_cast<char>(TQX_unsignedValue(m_field, record, index));
        return character == '\0' ? QString() : QString(QLatin1Char(character));
    }
    return isReal(m_field) ? realText(record, index, withUnit)
                           : integerText(record, index, withUnit);
}

QString TQX_FieldInfo::realText(const void* record, unsigned index, bool withUnit) const
{
    const double value = TQX_FieldAccess::real(m_field, record, index);
    if (TQX_isRealDoNotUse(m_facts, value))
        return doNotUseText();
    if (m_field.type == TQX_MemberType::F32) {
        return withUnitWord(
            FloatRepresentation::getString(static_cast<float>(value), 'f', m_facts.precision, true),
            withUnit);
    }
    return withUnitWord(FloatRepresentation::getString(value, 'f', m_facts.precision, true),
                        withUnit);
}

QString TQX_FieldInfo::integerText(const void* record, unsigned index, bool withUnit) const
{
    const bool isSigned = TQX_isSigned(m_field);
    const uint64_t value = isSigned ? static_cast<uint64_t>(TQX_signedValue(m_field, record, index))
                                    : TQX_unsignedValue(m_field, record, index);
    if (const QString* name = findSymbolicValue(integerValue(m_field, static_cast<int64_t>(value))))
        return *name;
    if (TQX_isDoNotUse(m_facts, value))
        return doNotUseText();
    return withUnitWord(isSigned ? locale().toString(static_cast<qlonglong>(value))
                                 : locale().toString(static_cast<qulonglong>(value)),
                        withUnit);
}

QString TQX_FieldInfo::withUnitWord(const QString& number, bool withUnit) const
{
    if (!withUnit || m_facts.unit == 0)
        return number;
    return number + QLatin1Char(' ') + QLatin1String(TQX_unit(m_facts).data());
}

/// The default locale at the first use; a later change of the default has no effect.
const QLocale& TQX_FieldInfo::locale() const
{
    if (const QLocale* known = m_locale.load(std::memory_order_acquire))
        return *known;
    auto created = std::make_unique<const QLocale>();
    const QLocale* first = nullptr;
    if (m_locale.compare_exchange_strong(first, created.get(), std::memory_order_acq_rel))
        return *created.release();
    return *first;
}
