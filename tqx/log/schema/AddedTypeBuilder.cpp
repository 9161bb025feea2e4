#include "tqx/log/schema/AddedTypeBuilder.h"

#include "ArrayStorage.h"
#include "TQX_RecordAccess.h"
#include "model/Availability.h"
#include "model/CheckParts.h"
#include "model/Numbering.h"
#include "tqx/log/schema/RecordShape.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;
using namespace korcg::generator;

namespace
{

constexpr size_t mostRows = std::numeric_limits<int16_t>::max();
constexpr size_t mostTypes = 0x10000 - TQX_firstDescribedType;

bool isSubBlock(const Field& field)
{
    return field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded;
}

// The enumerations of the layout and of the model have the same order.
static_assert(static_cast<int>(TQX_FieldKind::Embedded) == static_cast<int>(FieldKind::Embedded));
static_assert(static_cast<int>(TQX_FieldKind::Text) == static_cast<int>(FieldKind::Text));
static_assert(static_cast<int>(TQX_MemberType::Char) == static_cast<int>(Scalar::Char));
static_assert(static_cast<int>(TQX_MemberType::U64) == static_cast<int>(Scalar::U64));
static_assert(static_cast<int>(TQX_Presence::Selected) == static_cast<int>(Presence::Selected));
static_assert(static_cast<int>(TQX_Summary::Least) == static_cast<int>(Summary::Least));

class Builder
{
public:
    Builder(const Format& format, Errors& errors)
        : m_format(format), m_errors(errors), m_made(std::make_shared<AddedTypes>())
    {
    }

    std::shared_ptr<const AddedTypes> run();

private:
    const char* keep(const std::string& text) { return m_made->texts.emplace_back(text).c_str(); }
    AddedType& madeOf(const std::string& name) const;
    void keepTables();
    void addLayout(const RecordType& type, AddedType& made);
    TQX_FieldLayout fieldLayout(const Field& field);
    void addFacts(const RecordType& type, AddedType& made);
    TQX_DescribedFacts fieldFacts(const RecordType& type, size_t row, AddedType& made);
    void addDerivations(const RecordType& type, AddedType& made);
    TQX_FieldInput inputOf(const RecordType& type, std::string_view name) const;

    const Format& m_format;
    Errors& m_errors;
    std::shared_ptr<AddedTypes> m_made;
};

AddedType& Builder::madeOf(const std::string& name) const
{
    const RecordType* type = m_format.find(name);
    return *m_made->types[static_cast<size_t>(type - m_format.types.data())];
}

void Builder::keepTables()
{
    for (const auto& [name, table] : m_format.symbols) {
        std::vector<TQX_NamedValue>& values = m_made->tables[name];
        for (const SymbolicValue& value : table.values)
            values.push_back({value.value, keep(value.name)});
    }
}

TQX_FieldLayout Builder::fieldLayout(const Field& field)
{
    const bool isSub = isSubBlock(field);
    TQX_FieldLayout layout = {};
    layout.name = keep(field.name);
    layout.meaning = keep(field.text);
    layout.code = field.code;
    layout.wireOffset = field.wireOffset;
    layout.sub = isSub ? &madeOf(field.subType).layout : nullptr;
    layout.recordType = static_cast<uint16_t>(isSub ? m_format.find(field.subType)->record : 0);
    layout.elements = static_cast<uint16_t>(field.elements);
    layout.presenceValue = static_cast<uint16_t>(field.presenceValue);
    layout.parent = static_cast<int16_t>(field.parent);
    layout.selector = static_cast<int16_t>(field.selector);
    layout.count = static_cast<int16_t>(field.count);
    layout.length = static_cast<int16_t>(field.length);
    layout.kind = static_cast<TQX_FieldKind>(field.kind);
    layout.type = isSub ? TQX_MemberType::Record : static_cast<TQX_MemberType>(field.type);
    layout.presence = static_cast<TQX_Presence>(field.presence);
    layout.width = static_cast<uint8_t>(field.width);
    layout.shift = static_cast<uint8_t>(field.shift);
    layout.lengthInMain = field.lengthInMain;
    layout.alwaysSent = field.alwaysSent;
    layout.countsBytes = field.countsBytes;
    layout.isPadding = field.isPadding;
    layout.edition = 1;
    layout.summary = static_cast<TQX_Summary>(field.summary);
    layout.summed = field.summed;
    return layout;
}

void Builder::addLayout(const RecordType& type, AddedType& made)
{
    for (const Field& field : type.fields)
        made.fields.push_back(fieldLayout(field));
    const auto firstSub = std::find_if(type.fields.begin(), type.fields.end(), isSubBlock);
    TQX_TypeLayout& layout = made.layout;
    layout.name = keep(type.name);
    layout.fields = made.fields.data();
    layout.fieldCount = static_cast<uint16_t>(type.fields.size());
    layout.firstSubBlock = static_cast<uint16_t>(firstSub - type.fields.begin());
    layout.recordType = static_cast<uint16_t>(type.record);
    layout.blockNumber = static_cast<uint16_t>(type.number);
    layout.linksToMain = static_cast<uint8_t>(type.linksToMain);
    layout.highestRevision = static_cast<uint8_t>(type.highestRevision);
    layout.ownRevision = static_cast<uint8_t>(type.ownRevision);
    layout.edition = 1;
    layout.hasMessage = type.hasMessage;
    layout.sizeUnderflow = type.sizeUnderflow;
    layout.internal = type.internal;
    layout.crcChecksum = type.crcChecksum;
    layout.disabled = type.disabled;
    layout.described = &made.described;
}

uint16_t flagsOf(const Field& field)
{
    using Facts = TQX_FieldFacts;
    const std::pair<bool, unsigned> all[] = {
        {true, Facts::Described},
        {field.isOptional, Facts::Optional},
        {field.isRepeated, Facts::Repeated},
        {field.isVirtual, Facts::Virtual},
        {field.bitMask, Facts::BitMask},
        {field.identifies, Facts::Identifying},
        {field.doNotUse.has_value(), Facts::HasDoNotUse},
        {field.doNotUse && field.doNotUseNamed, Facts::NamesDoNotUse},
        {field.isWhole, Facts::Whole},
    };
    unsigned flags = 0;
    for (const auto& [isSet, flag] : all)
        flags |= isSet ? flag : 0U;
    return static_cast<uint16_t>(flags);
}

bool isReal(const Field& field)
{
    return field.type == Scalar::F32 || field.type == Scalar::F64;
}

TQX_DescribedFacts Builder::fieldFacts(const RecordType& type, size_t row, AddedType& made)
{
    const Field& field = type.fields[row];
    TQX_DescribedFacts facts = {};
    facts.type = &made.layout;
    facts.flags = flagsOf(field);
    facts.precision = static_cast<int8_t>(isSubBlock(field) ? -1 : field.precision.value_or(-1));
    facts.role = static_cast<TQX_Role>(field.role);
    facts.subFields = static_cast<uint8_t>(
        std::count_if(type.fields.begin(), type.fields.end(),
                      [row](const Field& other) { return other.parent == static_cast<int>(row); }));
    facts.unitWord = keep(field.unit);
    facts.scaleFactor = field.scale.value_or(0);
    if (field.doNotUse && isReal(field)) {
        facts.realValueDoNotUse =
            std::visit([](auto value) { return static_cast<double>(value); }, *field.doNotUse);
    } else if (field.doNotUse) {
        facts.integerDoNotUse =
            std::visit([](auto value) { return static_cast<uint64_t>(value); }, *field.doNotUse);
    }
    if (const auto table = m_made->tables.find(field.symbols); table != m_made->tables.end()) {
        facts.names = table->second.data();
        facts.nameCount = static_cast<uint32_t>(table->second.size());
    }
    std::vector<TQX_FieldInput>& inputs = made.inputs.emplace_back();
    for (const NeededField& needed : neededFields(m_format, type, field)) {
        inputs.push_back({static_cast<uint16_t>(needed.row), static_cast<uint8_t>(needed.linksUp)});
    }
    facts.inputRows = inputs.data();
    facts.inputCount = static_cast<uint8_t>(std::min<size_t>(inputs.size(), UINT8_MAX));
    return facts;
}

void Builder::addFacts(const RecordType& type, AddedType& made)
{
    for (size_t row = 0; row < type.fields.size(); ++row)
        made.facts.push_back(fieldFacts(type, row, made));
    TQX_DescribedTypeFacts& facts = made.described.facts;
    facts.firstField = 0;
    facts.registration = static_cast<uint16_t>(type.registration);
    facts.description = TQX_DescribedTypeFacts::ownDescription;
    facts.text = keep(type.text);
    facts.generation = static_cast<uint8_t>(type.generation);
    facts.flexrate = type.flexrate;
    facts.esoc = type.esoc;
    facts.timestamp = type.timestamp;
    made.described.fields = made.facts.data();
}

TQX_FieldInput Builder::inputOf(const RecordType& type, std::string_view name) const
{
    constexpr std::string_view parent = "parent.";
    const RecordType* owner = &type;
    uint8_t links = 0;
    for (; name.rfind(parent, 0) == 0; name.remove_prefix(parent.size())) {
        owner = &m_format.types[static_cast<size_t>(owner->owners.front())];
        ++links;
    }
    return {static_cast<uint16_t>(findRow(*owner, std::string(name))), links};
}

void Builder::addDerivations(const RecordType& type, AddedType& made)
{
    for (size_t row = 0; row < type.fields.size(); ++row) {
        const Field& field = type.fields[row];
        if (field.initial) {
            made.starts.push_back({static_cast<uint16_t>(row), *field.initial});
        }
        if (field.kind != FieldKind::Derived || field.isHeader)
            continue;
        std::vector<TQX_FieldInput>& inputs = made.inputs.emplace_back();
        for (const std::string& input : field.inputs)
            inputs.push_back(inputOf(type, input));
        made.derivations.push_back({static_cast<uint16_t>(row), static_cast<uint16_t>(field.after),
                                    TQX_findFormula(field.function.c_str()), inputs.data()});
    }
    TQX_DescribedType& described = made.described;
    described.derivations = made.derivations.data();
    described.derivationCount = static_cast<uint16_t>(made.derivations.size());
    described.starts = made.starts.data();
    described.startCount = static_cast<uint16_t>(made.starts.size());
}

std::shared_ptr<const AddedTypes> Builder::run()
{
    if (m_format.types.size() > mostTypes) {
        m_errors.add(m_format.types.back().where,
                     fmt::format("a schema has room for {} added types", mostTypes));
        return nullptr;
    }
    for (const RecordType& type : m_format.types) {
        if (type.fields.size() > mostRows) {
            m_errors.add(type.where, fmt::format("{} has {} fields, more than {}", type.name,
                                                 type.fields.size(), mostRows));
            return nullptr;
        }
        m_made->types.push_back(std::make_unique<AddedType>());
        m_made->layouts.push_back(&m_made->types.back()->layout);
    }
    keepTables();
    for (size_t i = 0; i < m_format.types.size(); ++i) {
        const RecordType& type = m_format.types[i];
        AddedType& made = *m_made->types[i];
        addLayout(type, made);
        addFacts(type, made);
        addDerivations(type, made);
        made.described.schema = m_made->layouts.data();
        made.described.schemaSize = static_cast<uint16_t>(m_made->layouts.size());
        if (type.isMain())
            m_made->blocks.emplace(static_cast<uint16_t>(type.number), &made.layout);
    }
    shapeRecords(m_format, *m_made, m_errors);
    m_made->codeNames = m_format.codeNames;
    return m_errors.empty() ? m_made : nullptr;
}

} // namespace

std::shared_ptr<const AddedTypes> buildAddedTypes(const Format& format, Errors& errors)
{
    return Builder(format, errors).run();
}

} // namespace tqx
