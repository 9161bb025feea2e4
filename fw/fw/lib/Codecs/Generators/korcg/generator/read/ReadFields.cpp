#include "read/ReadFields.h"

#include "model/Limits.h"
#include "model/Values.h"
#include "read/Dictionary.h"
#include "read/Keys.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace korcg::generator
{

namespace
{

constexpr int highestRevisionNumber = 7;
constexpr int highestPrecision = 20;
constexpr int longestArray = 65535;
constexpr int longestWhole = 64;

Mention mention(const YamlMap& map, std::string_view key)
{
    return {map.text(key).value_or(""), map.where(key)};
}

/// Keys that every shape of a field may have.
void readCommon(const YamlMap& map, const YAML::Node& node, const Definition* definition,
                FieldDraft& draft)
{
    Field& field = draft.field;
    field.where = map.where();
    if (definition == nullptr) {
        field.name = map.requiredText("name");
    } else {
        field.name = node.IsMap() ? map.text("field").value_or("") : node.Scalar();
        if (map.has("name"))
            map.error("name", "and 'field' exclude each other");
    }
    field.differs = map.flag("differs").value_or(false);
    field.text = map.text("text").value_or("");
    draft.edition = map.integer("edition", 2, latestEdition);
    field.identifies = map.flag("identifies").value_or(false);
    field.hides = map.text("hides").value_or("");
    field.expectedOffset = map.integer("offset", 0, longestArray);

    if (const std::optional<std::string> role = map.text("role")) {
        draft.roleGiven = true;
        if (*role == "data") {
            field.role = Role::Data;
        } else if (*role == "structure") {
            field.role = Role::Structure;
        } else if (*role == "reserved") {
            field.role = Role::Reserved;
        } else {
            map.error("role", "must be data, structure or reserved");
        }
    }
}

void readPresence(const ReadContext& context, const YamlMap& map, FieldDraft& draft)
{
    Field& field = draft.field;
    if (map.has("since") + map.has("only") + map.has("when") > 1)
        context.errors.add(map.where(), "'since', 'only' and 'when' exclude each other");
    if (const std::optional<int> revision = map.integer("since", 1, highestRevisionNumber)) {
        field.presence = Presence::SinceRevision;
        field.presenceValue = *revision;
    }
    if (const std::optional<int> revision = map.integer("only", 0, highestRevisionNumber)) {
        field.presence = Presence::OnlyRevision;
        field.presenceValue = *revision;
    }
    if (map.has("when")) {
        const YAML::Node when = map.node("when");
        const bool isPair = when.IsMap() && when.size() == 1 && when.begin()->first.IsScalar();
        const std::optional<WholeNumber> number =
            isPair ? wholeNumber(when.begin()->second) : std::nullopt;
        const std::optional<int64_t> value = number ? number->within(0, 65535) : std::nullopt;
        if (!value) {
            map.error("when", "must be {field: whole number from 0 to 65535}");
        } else {
            field.presence = Presence::Selected;
            field.presenceValue = static_cast<int>(*value);
            draft.selector = {when.begin()->first.Scalar(), map.where("when")};
        }
    }
    field.alwaysSent = map.flag("always_sent").value_or(false);
    if (field.alwaysSent && field.presence != Presence::SinceRevision)
        map.error("always_sent", "needs 'since'");
}

/// The do-not-use value in the field's own type.
void readDoNotUse(const YamlMap& map, Field& field)
{
    if (!map.has("none"))
        return;
    const auto wrong = [&] {
        map.error("none", fmt::format("is not a value of {}", valueTypeName(field)));
    };
    if (isReal(field.type)) {
        const std::optional<double> value = realNumber(map.node("none"));
        if (value) {
            field.doNotUse = *value;
        } else {
            wrong();
        }
        return;
    }
    const std::optional<WholeNumber> number = wholeNumber(map.node("none"));
    if (!isInteger(field.type) || !number) {
        wrong();
        return;
    }
    Number value = number->magnitude;
    if (number->negative || isSignedInteger(field.type)) {
        const std::optional<int64_t> narrow = number->within(INT64_MIN, INT64_MAX);
        if (!narrow)
            return wrong();
        value = *narrow;
    }
    if (fits(field, value)) {
        field.doNotUse = value;
    } else {
        wrong();
    }
}

/// Keys for how a value is shown.
void readMetadata(const YamlMap& map, FieldDraft& draft)
{
    Field& field = draft.field;
    field.unit = map.text("unit").value_or("");
    field.scale = map.number("scale");
    field.precision = map.integer("precision", 0, highestPrecision);
    if (!field.precision && isReal(field.type))
        field.precision = 3;
    field.symbols = map.text("symbols").value_or("");
    field.bitMask = map.flag("mask").value_or(false);
    field.initial = map.number("initial");
    field.doNotUseNamed = !map.flag("unnamed_none").value_or(false);
    if (!field.doNotUseNamed && !map.has("none"))
        map.error("unnamed_none", "needs 'none'");
    readDoNotUse(map, field);
    if (const std::optional<bool> isVirtual = map.flag("virtual")) {
        field.isVirtual = *isVirtual;
        draft.virtualGiven = true;
    }
}

void readBitRange(const YamlMap& map, Field& field, int wordBits)
{
    const YAML::Node at = map.node("at");
    std::optional<int64_t> low;
    std::optional<int64_t> high;
    const auto bit = [](const YAML::Node& node) {
        const std::optional<WholeNumber> number = wholeNumber(node);
        return number ? number->within(0, 63) : std::nullopt;
    };
    if (at.IsScalar()) {
        low = high = bit(at);
    } else if (at.IsSequence() && at.size() == 2) {
        low = bit(at[0]);
        high = bit(at[1]);
    }
    if (!low || !high || *low > *high) {
        map.error("at", "must be a bit or [lowest bit, highest bit]");
    } else if (*high >= wordBits) {
        map.error("at", fmt::format("reaches bit {} of a word of {} bits", *high, wordBits));
    } else {
        field.shift = static_cast<int>(*low);
        field.width = static_cast<int>(*high - *low + 1);
    }
}

void readSummary(const ReadContext& context, const YamlMap& map, FieldDraft& draft)
{
    constexpr std::pair<std::string_view, Summary> keys[] = {{"any", Summary::Any},
                                                             {"all", Summary::All},
                                                             {"neither", Summary::Neither},
                                                             {"least", Summary::Least}};
    for (const auto& [key, summary] : keys) {
        if (!map.has(key))
            continue;
        if (draft.field.summary != Summary::None) {
            context.errors.add(map.where(),
                               "'any', 'all', 'neither' and 'least' exclude each other");
        }
        draft.field.summary = summary;
        for (const YAML::Node& name : map.list(key)) {
            if (name.IsScalar()) {
                draft.summed.push_back({name.Scalar(), map.where(key)});
            } else {
                map.error(key, "must hold names");
            }
        }
        if (draft.summed.empty())
            map.error(key, "names no sub-field");
    }
    if (draft.field.summary == Summary::None)
        return;
    if (map.has("virtual"))
        map.error("virtual", "is always so for a summary");
    draft.field.isVirtual = true;
    draft.virtualGiven = true;
}

FieldDraft readSubField(const ReadContext& context, const YAML::Node& node, int wordBits)
{
    const Definition* const definition = definitionOf(context, node);
    if (refersToDefinition(node) && definition == nullptr)
        return {};
    const YamlMap map(context, node, bitsKeys(), definition);
    FieldDraft draft;
    readCommon(map, node, definition, draft);
    Field& field = draft.field;
    field.kind = FieldKind::Bits;
    field.width = 1;
    if (!map.has("at")) {
        map.error("at", "is missing");
    } else {
        readBitRange(map, field, wordBits);
    }
    const bool isSigned = map.flag("signed").value_or(false);
    if (isSigned && field.width > 32)
        map.error("signed", "goes up to 32 bits only");
    field.type = integerOf(field.width, isSigned);
    readMetadata(map, draft);
    readSummary(context, map, draft);
    return draft;
}

void readBits(const YamlMap& map, FieldDraft& draft)
{
    if (!map.has("bits"))
        return;
    if (!isInteger(draft.field.type))
        map.error("bits", "needs an integer type");
    for (const YAML::Node& node : map.list("bits"))
        draft.bits.push_back(readSubField(map.contextOf("bits"), node, bitsOf(draft.field.type)));
    std::stable_sort(draft.bits.begin(), draft.bits.end(),
                     [](const FieldDraft& a, const FieldDraft& b) {
                         return std::pair(a.field.shift, a.edition.value_or(1)) <
                                std::pair(b.field.shift, b.edition.value_or(1));
                     });
}

/// Sets kind and number of elements from `count`, `bytes` and `capacity`.
void readElements(const ReadContext& context, const YamlMap& map, FieldDraft& draft, bool isText)
{
    Field& field = draft.field;
    const YAML::Node count = map.node("count");
    if (map.has("count") && map.has("bytes"))
        context.errors.add(map.where(), "'count' and 'bytes' exclude each other");

    const bool isFixed = count.IsScalar() && wholeNumber(count);
    if (isFixed) {
        field.elements = map.integer("count", 1, longestArray).value_or(1);
        field.kind = isText ? FieldKind::Text : FieldKind::Array;
    } else if (map.has("count") || map.has("bytes")) {
        field.countsBytes = map.has("bytes");
        draft.count = mention(map, field.countsBytes ? "bytes" : "count");
        field.kind = isText ? FieldKind::CountedText : FieldKind::CountedArray;
        if (!map.has("capacity"))
            context.errors.add(map.where(), "a counted field needs 'capacity'");
        field.elements = map.integer("capacity", 1, longestArray).value_or(1);
    } else if (isText) {
        context.errors.add(map.where(), "a text needs 'count'");
    } else if (field.isPadding) {
        field.kind = FieldKind::Array;
    }
    if (map.has("capacity") && (isFixed || !draft.count))
        map.error("capacity", "belongs to fields that another field counts");
}

/// Reads whether an array is one value; writers rely on plain numbers then.
void readWhole(const YamlMap& map, Field& field)
{
    field.isWhole = map.flag("whole").value_or(false);
    const bool isPlain = field.kind == FieldKind::Array && isInteger(field.type) &&
                         !isSignedInteger(field.type) && !field.scale && field.symbols.empty() &&
                         !field.bitMask && !map.has("bits");
    if (!field.isWhole)
        return;
    if (!map.has("none"))
        map.error("whole", "needs 'none'");
    if (!isPlain || field.elements > longestWhole) {
        map.error("whole", fmt::format("belongs to arrays of up to {} unsigned numbers without "
                                       "scale, names and bits",
                                       longestWhole));
    }
}

FieldDraft readWireField(const ReadContext& context, const YAML::Node& node)
{
    const Definition* const definition = definitionOf(context, node);
    if (refersToDefinition(node) && definition == nullptr)
        return {};
    const YamlMap map(context, node, fieldKeys(), definition);
    FieldDraft draft;
    readCommon(map, node, definition, draft);
    Field& field = draft.field;
    const std::string type = map.requiredText("type");
    const bool isText = type == "text";
    const std::optional<Scalar> scalar = isText ? Scalar::Char : scalarNamed(type);
    if (!scalar && map.has("type"))
        map.error("type", fmt::format("is not a type: '{}'", type));
    field.type = scalar.value_or(Scalar::U8);
    field.width = bitsOf(field.type);
    field.isPadding = field.name.rfind("_padding", 0) == 0;
    readPresence(context, map, draft);
    draft.takes = mention(map, "takes");
    field.takes = draft.takes.name;
    if (draft.takes && !draft.edition)
        map.error("takes", "needs 'edition'");
    if (draft.takes && field.presence != Presence::Always) {
        map.error("takes",
                  "excludes 'since', 'only' and 'when': they are those of the field taken");
    }
    if (field.presence == Presence::OnlyRevision && !field.isPadding)
        map.error("only", "belongs to padding, named _padding<revision>");
    readElements(context, map, draft, isText);
    readMetadata(map, draft);
    readWhole(map, field);
    readBits(map, draft);
    return draft;
}

FieldDraft readSubBlockField(const ReadContext& context, const YAML::Node& node)
{
    const YamlMap map(context, node, subBlockFieldKeys());
    FieldDraft draft;
    readCommon(map, node, nullptr, draft);
    readPresence(context, map, draft);
    Field& field = draft.field;
    if (map.has("blocks") && map.has("embeds"))
        context.errors.add(map.where(), "'blocks' and 'embeds' exclude each other");
    field.width = 0;
    if (map.has("embeds")) {
        field.kind = FieldKind::Embedded;
        field.subType = map.requiredText("embeds");
        if (map.has("count"))
            map.error("count", "belongs to 'blocks'");
    } else {
        field.kind = FieldKind::Blocks;
        field.subType = map.requiredText("blocks");
        if (!map.has("count"))
            map.error("count", "is missing");
        draft.count = mention(map, "count");
    }
    if (map.has("size")) {
        draft.size = mention(map, "size");
        constexpr std::string_view main = "main.";
        if (draft.size.name.rfind(main, 0) == 0) {
            draft.sizeInMain = true;
            draft.size.name.erase(0, main.size());
        }
    }
    return draft;
}

FieldDraft readDerivedField(const ReadContext& context, const YAML::Node& node)
{
    const YamlMap map(context, node, derivedKeys());
    FieldDraft draft;
    readCommon(map, node, nullptr, draft);
    Field& field = draft.field;
    field.kind = FieldKind::Derived;
    field.function = map.requiredText("derived");
    const std::string type = map.requiredText("type");
    const std::optional<Scalar> scalar = scalarNamed(type);
    if (!scalar && map.has("type"))
        map.error("type", fmt::format("is not a type of a single value: '{}'", type));
    field.type = scalar.value_or(Scalar::U8);
    field.width = bitsOf(field.type);
    readPresence(context, map, draft);
    if (!map.has("from"))
        map.error("from", "is missing");
    for (const YAML::Node& input : map.list("from")) {
        if (input.IsScalar()) {
            field.inputs.push_back(input.Scalar());
        } else {
            context.error(input, "an input must be the name of a field");
        }
    }
    draft.after = mention(map, "after");
    readMetadata(map, draft);
    return draft;
}

} // namespace

FieldDraft readField(const ReadContext& context, const YAML::Node& node)
{
    if (!node.IsMap() && !node.IsScalar()) {
        context.error(node, "a field must be a map or the name of one in 'fields'");
        return {};
    }
    if (node.IsScalar())
        return readWireField(context, node);
    if (node["blocks"] || node["embeds"])
        return readSubBlockField(context, node);
    if (node["derived"])
        return readDerivedField(context, node);
    return readWireField(context, node);
}

} // namespace korcg::generator
