#include "Bindings.h"
#include "LogReader.h"
#include "tqx/log/read/LineEncoder.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/select/TypeSelection.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/log/write/ValueJson.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <optional>
#include <string>
#include <utility>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

using Logs = std::vector<std::shared_ptr<LogFile>>;

/// Blocks of logs one by one, by type, time and condition.
class MessageReader
{
public:
    MessageReader(const Logs& logs, const std::vector<std::string>& types, const std::string& where,
                  std::optional<GnssMillis> from, std::optional<GnssMillis> to)
        : m_types(types, {}, logs.empty() ? Schema() : logs.front()->getSchema()),
          m_reader(logs, numbers(), from, to)
    {
        if (!where.empty())
            m_condition.emplace(where, m_types);
    }

    /// The next block as (file, number, revision, offset, time, bytes, week, tow), or None.
    nb::object next()
    {
        Block block = {};
        {
            const nb::gil_scoped_release unlocked;
            if (!find(block))
                return nb::none();
        }
        const WeekContext context = m_reader.getContext();
        const auto time = block.getTime();
        const ByteSource::Place place = m_reader.placeOf(block);
        return nb::make_tuple(place.file, block.getNumber(), block.getRevision(), place.offset,
                              time ? nb::cast(*time) : nb::none(),
                              nb::bytes(block.data, block.size), context.weekCounter,
                              context.lastTow);
    }

private:
    std::vector<uint16_t> numbers() const
    {
        if (m_types.isEverything())
            return {};
        return numbersOf([this](uint16_t number) { return m_types.accepts(number); });
    }

    bool find(Block& block)
    {
        while (m_reader.next(block)) {
            if (!m_condition)
                return true;
            const DecodedBlock decoded = m_reader.decode(block);
            if (decoded.record && m_condition->accepts(decoded.record))
                return true;
        }
        return false;
    }

    TypeSelection m_types;
    LogReader m_reader;
    std::optional<Condition> m_condition;
};

/// A block as a line of JSON with its values, or with the stored ones. For a block that does not
/// decode it has the code.
std::string describe(const nb::bytes& bytes, uint8_t week, uint32_t tow, bool isRaw,
                     const Schema& schema)
{
    const FieldFilter everything({}, schema);
    RecordDecoder decoder(schema);
    const auto size = static_cast<uint16_t>(bytes.size());
    const Block block = {static_cast<const uint8_t*>(bytes.data()), size, 0};
    const int32_t consumed = decoder.decode(block, {week, tow});
    const DecodedBlock decoded =
        consumed > 0 ? decoder.getDecoded() : DecodedBlock{block, nullptr, consumed};
    Buffer out;
    if (isRaw) {
        RawJson json(everything);
        if (consumed > 0) {
            json.write(out, decoded);
        } else {
            json.writeBytes(out, block);
        }
    } else {
        ValueJson json(everything);
        if (consumed > 0) {
            json.write(out, decoded);
        } else {
            json.writeBytes(out, decoded);
        }
    }
    return std::string(out.view());
}

nb::bytes encode(const std::string& line, const Schema& schema)
{
    LineEncoder encoder(schema);
    const std::vector<uint8_t>& block = encoder.encode(line);
    return nb::bytes(block.data(), block.size());
}

} // namespace

void bindMessages(nb::module_& module)
{
    nb::class_<MessageReader>(module, "MessageReader")
        .def(nb::init<const Logs&, const std::vector<std::string>&, const std::string&,
                      std::optional<GnssMillis>, std::optional<GnssMillis>>(),
             nb::arg("logs"), nb::arg("types"), nb::arg("where"), nb::arg("start").none(),
             nb::arg("end").none())
        .def("next", &MessageReader::next);
    module.def("describe", describe);
    module.def("encode", encode);
}

} // namespace tqx::python
