#include "tqx/gnss/navigation/NavigationTable.h"

namespace tqx
{

void writeEphemerides(Buffer& out, RowFormat format, const std::vector<Ephemeris>& ephemerides)
{
    std::vector<RowWriter::Column> columns = {{"Satellite"}, {"Message"}, {"Reference"}};
    for (const EphemerisParameter& parameter : ephemerisParameters())
        columns.push_back({parameter.name, parameter.unit});
    RowWriter rows(format, RowWriter::withTime(columns));
    rows.writeHead(out);
    for (const Ephemeris& ephemeris : ephemerides) {
        rows.begin(out);
        rows.time(out, ephemeris.received);
        rows.text(out, ephemeris.satellite.text());
        rows.text(out, nameOf(ephemeris.message));
        rows.text(out, dateText(ephemeris.reference));
        for (const EphemerisParameter& parameter : ephemerisParameters())
            rows.number(out, ephemeris.*parameter.member);
        rows.end(out);
    }
}

void writeIonosphere(Buffer& out, RowFormat format, const std::vector<Ionosphere>& list)
{
    RowWriter rows(format, RowWriter::withTime({{"System"},
                                                {"Reference"},
                                                {"a_0"},
                                                {"a_1"},
                                                {"a_2"},
                                                {"a_3"},
                                                {"b_0"},
                                                {"b_1"},
                                                {"b_2"},
                                                {"b_3"},
                                                {"Disturbance"}}));
    rows.writeHead(out);
    for (const Ionosphere& data : list) {
        rows.begin(out);
        rows.time(out, data.received);
        rows.text(out, {&data.system, 1});
        rows.text(out, dateText(data.reference));
        for (unsigned i = 0; i < data.values.size(); ++i)
            rows.number(out, i < data.getCount() ? data.values[i] : Ephemeris::none);
        if (data.system == 'E') {
            rows.whole(out, data.disturbance);
        } else {
            rows.missing(out);
        }
        rows.end(out);
    }
}

void writeTimeOffsets(Buffer& out, RowFormat format, const std::vector<TimeOffset>& list)
{
    RowWriter rows(format, RowWriter::withTime({{"Offset"},
                                                {"Reference"},
                                                {"a_0", "second"},
                                                {"a_1", "secondpersecond"},
                                                {"a_2", "secondpersecondsquared"}}));
    rows.writeHead(out);
    for (const TimeOffset& offset : list) {
        rows.begin(out);
        rows.time(out, offset.received);
        rows.text(out, offset.kind);
        rows.text(out, dateText(offset.reference));
        rows.number(out, offset.a0);
        rows.number(out, offset.a1);
        rows.number(out, offset.a2);
        rows.end(out);
    }
}

} // namespace tqx
