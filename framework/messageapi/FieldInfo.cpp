#include "FieldInfo.h"

#include "OwnedString.h"

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
    m_symbolicValues.add(value, name);
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
