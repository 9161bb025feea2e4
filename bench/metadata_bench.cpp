// Cost of the metadata: setting up the registry, beside the same calls into plain containers with
// strings of their own, and reading messages field by field through it.
//
// The registry is set up once per process, so each measurement of it runs in a child process, in
// processor time.

#include "TQX_FieldFacts.h"
#include "TQX_FieldRow.h"
#include "TQX_FormatInfo.h"
#include "TQX_MessageFactory.h"
#include "TQX_SymbolNames.h"
#include "TQX_codec.h"

#include "FieldInfo.h"
#include "Message.h"
#include "MessageInfo.h"

#include <QCoreApplication>
#include <QProcess>
#include <QVariant>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <utility>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

constexpr uint32_t lastRecordType = TQX_lastRecordType;

/// A field as a straightforward framework would keep it.
struct PlainField {
    QString name;
    QString unit;
    std::map<int64_t, QString> symbols;
    std::vector<PlainField*> subFields;
    double scale = 1;
    uint64_t doNotUse = 0;
    int precision = -1;
    int role = 0;
    uint16_t flags = 0;
};

struct PlainMessage {
    QString description;
    std::map<QString, QVariant> attributes;
    std::map<QString, PlainField*> byName;
    std::vector<std::pair<std::unique_ptr<PlainField>, bool>> fields;
    std::vector<std::pair<const PlainField*, uint64_t>> discriminants;
    bool isMain = true;
};

struct PlainRegistry {
    std::map<QString, int> tracer;
    std::map<QString, PlainMessage> types;
    size_t fieldCount = 0;
};

std::unique_ptr<PlainField> plainField(const TQX_FieldLayout& layout, const TQX_FieldFacts& facts)
{
    auto field = std::make_unique<PlainField>();
    field->name = QString::fromLatin1(layout.name);
    field->role = static_cast<int>(facts.role);
    field->flags = facts.flags;
    if (facts.unit != 0)
        field->unit = QString::fromLatin1(TQX_unit(facts).data());
    field->scale = TQX_scale(facts);
    if (facts.namedValues != 0) {
        const TQX_SymbolNames& symbols = TQX_SymbolNames::of(facts);
        for (unsigned i = 0; i < symbols.size(); ++i) {
            const QString& name = symbols.name(i);
            field->symbols.emplace(symbols.value(i), QString(name.constData(), name.size()));
        }
    }
    field->doNotUse = TQX_doNotUse(facts);
    if (facts.has(TQX_FieldFacts::NamesDoNotUse))
        field->symbols.emplace(static_cast<int64_t>(field->doNotUse),
                               QString::fromLatin1("DoNotUse"));
    field->precision = facts.precision;
    return field;
}

void addPlainFields(PlainRegistry& registry, PlainMessage& message, const TQX_TypeLayout& layout,
                    const TQX_TypeRow& type)
{
    const TQX_FieldFacts* facts = TQX_fieldFacts(layout.recordType);
    for (unsigned i = 0; i < layout.fieldCount; ++i) {
        ++registry.tracer[QString::fromLatin1(type.fields[i].className)];
        message.fields.emplace_back(plainField(layout.fields[i], facts[i]),
                                    facts[i].has(TQX_FieldFacts::Identifying));
        PlainField* field = message.fields.back().first.get();
        message.byName.emplace(field->name, field);
        const int parent = layout.fields[i].parent;
        if (parent >= 0)
            message.fields[static_cast<size_t>(parent)].first->subFields.push_back(field);
    }
    registry.fieldCount += layout.fieldCount;
}

void addPlainType(PlainRegistry& registry, const TQX_TypeLayout& layout, const TQX_TypeRow& type)
{
    ++registry.tracer[QString::fromLatin1(type.className)];
    PlainMessage& message = registry.types[QString::fromLatin1(layout.name)];
    message.isMain = layout.blockNumber != 0;
    addPlainFields(registry, message, layout, type);
    if (!message.isMain)
        return;
    const TQX_TypeFacts& facts = *TQX_typeFacts(layout.recordType);
    if (facts.description != 0)
        message.description = QString::fromLatin1(TQX_description(facts).data());
    const QString blockNumber = QString::fromLatin1("BlockNumber");
    message.discriminants.emplace_back(message.byName.at(blockNumber), layout.blockNumber);
    const auto set = [&message](const char* key, const QVariant& value) {
        message.attributes.emplace(QString::fromLatin1(key), value);
    };
    set("flexrate", facts.flexrate);
    set("esoc", facts.esoc);
    set("timestamp", static_cast<int>(facts.timestamp));
    set("version", static_cast<int>(facts.generation));
    set("blocknr", static_cast<int>(layout.blockNumber));
}

size_t setUpPlainRegistry()
{
    static PlainRegistry registry;
    for (uint32_t number = 1; number <= lastRecordType; ++number)
        if (const TQX_TypeRow* type = TQX_typeRow(number))
            addPlainType(registry, *TQX_layout(number), *type);
    return registry.fieldCount;
}

size_t setUpRegistry()
{
    const TQX_FormatInfo& format = *TQX_FormatInfo::getInstance();
    size_t fields = 0;
    for (const MessageInfo* info : format.getMessageInfos() + format.getSubMessageInfos())
        fields += static_cast<size_t>(info->getFieldInfos().size());
    return fields;
}

/// Touches what both measurements read, so that neither pays for it.
void touchRows()
{
    for (uint32_t number = 1; number <= lastRecordType; ++number)
        if (const TQX_FieldFacts* facts = TQX_fieldFacts(number))
            for (unsigned i = 0; i < TQX_layout(number)->fieldCount; ++i)
                if (facts[i].namedValues != 0)
                    benchmark::DoNotOptimize(TQX_SymbolNames::of(facts[i]).size());
}

int measureChild(const char* what)
{
    touchRows();
    const std::clock_t start = std::clock();
    const size_t fields =
        std::strcmp(what, "registry") == 0 ? setUpRegistry() : setUpPlainRegistry();
    const std::clock_t end = std::clock();
    std::printf("%.9f %zu\n", static_cast<double>(end - start) / CLOCKS_PER_SEC, fields);
    return 0;
}

void setUpInChild(benchmark::State& state, const char* what)
{
    double fields = 0;
    for (auto _ : state) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {"--child", what});
        if (!child.waitForFinished()) {
            state.SkipWithError("the child process did not finish");
            return;
        }
        const auto words = child.readAllStandardOutput().trimmed().split(' ');
        state.SetIterationTime(words.value(0).toDouble());
        fields = words.value(1).toDouble();
    }
    state.counters["fields"] = fields;
}

size_t walk(const Message& message)
{
    size_t values = 0;
    for (const FieldInfo* field : message.getInfo()->getFieldInfos()) {
        if (!field->hasValue(&message))
            continue;
        const unsigned count = field->getNumberOfValues(&message);
        for (unsigned i = 0; i < count; ++i) {
            const FieldValue value = field->getValueUnchecked(&message, i);
            benchmark::DoNotOptimize(value);
            ++values;
            if (value.getKind() == FieldKind::SubMessage)
                values += walk(*value.getSubMessage());
        }
    }
    return values;
}

std::unique_ptr<Message> pvtGeodetic2()
{
    TQX_PVTGeodetic2_s record;
    TQX_init_PVTGeodetic2(&record);
    record.Revision = 2;
    return std::unique_ptr<Message>(TQX_createMessage(&record));
}

/// 40 channels with two sub-blocks each. The message takes the arrays over.
std::unique_ptr<Message> measEpoch2()
{
    alignas(TQX_MeasEpoch2_s) unsigned char storage[sizeof(TQX_MeasEpoch2_s)];
    auto* record = reinterpret_cast<TQX_MeasEpoch2_s*>(storage);
    TQX_init_MeasEpoch2(record);
    for (int i = 0; i < 40; ++i) {
        auto* channel = TQX_append_MeasEpoch2_Type1(record);
        TQX_append_MeasEpochChannelType1_Type2(channel);
        TQX_append_MeasEpochChannelType1_Type2(channel);
    }
    return std::unique_ptr<Message>(TQX_createMessage(record));
}

void walkFields(benchmark::State& state, std::unique_ptr<Message> (*make)())
{
    TQX_FormatInfo::getInstance();
    const std::unique_ptr<Message> message = make();
    size_t values = 0;
    for (auto _ : state)
        values += walk(*message);
    state.counters["time_per_value"] = benchmark::Counter(
        static_cast<double>(values), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void textOfFields(benchmark::State& state)
{
    TQX_FormatInfo::getInstance();
    const std::unique_ptr<Message> message = pvtGeodetic2();
    const auto& fields = message->getInfo()->getFieldInfos();
    for (auto _ : state)
        for (const FieldInfo* field : fields)
            benchmark::DoNotOptimize(field->getValueString(message.get(), 0, true));
    state.SetItemsProcessed(state.iterations() * fields.size());
}

constexpr int setUps = 41;

BENCHMARK_CAPTURE(setUpInChild, registry, "registry")->UseManualTime()->Iterations(setUps);
BENCHMARK_CAPTURE(setUpInChild, yardstick, "yardstick")->UseManualTime()->Iterations(setUps);
BENCHMARK_CAPTURE(walkFields, PVTGeodetic2, pvtGeodetic2);
BENCHMARK_CAPTURE(walkFields, MeasEpoch2, measEpoch2);
BENCHMARK(textOfFields);

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--child") == 0)
        return measureChild(argv[2]);
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
