#include "FieldInfo.h"

#include "OwnedString.h"

#include <algorithm>

FieldInfo::FieldInfo(QString name, const FieldType& type)
    : m_name(ownedString(std::move(name))), m_type(type)
{
}

FieldInfo::~FieldInfo() = default;

void FieldInfo::setUnit(QString unit)
{
    m_unit = ownedString(std::move(unit));
}

void FieldInfo::setScaleFactor(double factor)
{
    m_scaleFactor = factor;
    m_hasScaleFactor = true;
}

void FieldInfo::setPrecision(signed char decimals)
{
    m_precision = decimals;
}

void FieldInfo::addSymbolicValue(const FieldValue& value, QString name)
{
    const int count = m_symbolicValues.size();
    if (m_ascendingSymbols == count && (count == 0 || m_symbolicValues.constLast().value < value)) {
        ++m_ascendingSymbols;
    }
    m_symbolicValues.append(SymbolicValue{value, ownedString(std::move(name))});
}

void FieldInfo::setDoNotUseValue(FieldValue value)
{
    m_doNotUseValue = value;
}

void FieldInfo::setRole(Role role)
{
    m_role = static_cast<uint8_t>(role);
}

void FieldInfo::setIsOptional(bool isOptional)
{
    m_isOptional = isOptional;
}

void FieldInfo::setIsRepeated(bool isRepeated)
{
    m_isRepeated = isRepeated;
}

void FieldInfo::setVirtual(bool isVirtual)
{
    m_isVirtual = isVirtual;
}

void FieldInfo::setRepresentationMode(FieldValue::RepresentationMode mode)
{
    m_representationMode = static_cast<uint8_t>(mode);
}

void FieldInfo::addSubFieldInfo(FieldInfo* subField)
{
    m_subFieldInfos.append(subField);
}

const QString* FieldInfo::findSymbolicValue(const FieldValue& value) const
{
    const auto first = m_symbolicValues.cbegin();
    const auto ascendingEnd = first + m_ascendingSymbols;
    if (first == m_symbolicValues.cend()) {
        return nullptr;
    }
    if (value.getKind() == FieldKind::U && first->value.getKind() == FieldKind::U) {
        const uint64_t place = value.getU64() - first->value.getU64();
        if (place < static_cast<uint64_t>(m_ascendingSymbols) &&
            first[static_cast<int>(place)].value == value) {
            return &first[static_cast<int>(place)].name;
        }
    }
    const auto found = std::lower_bound(first, ascendingEnd, value,
                                        [](const SymbolicValue& symbol, const FieldValue& wanted) {
                                            return symbol.value < wanted;
                                        });
    if (found != ascendingEnd && found->value == value) {
        return &found->name;
    }
    const auto other =
        std::find_if(ascendingEnd, m_symbolicValues.cend(),
                     [&value](const SymbolicValue& symbol) { return symbol.value == value; });
    return other == m_symbolicValues.cend() ? nullptr : &other->name;
}
