#include "tqx/gnss/navigation/NavigationTable.h"

namespace tqx
{

void writeEphemerides(TableTarget& target, const std::vector<Ephemeris>& ephemerides)
{
    std::vector<TableColumn> columns = {{"Satellite"}, {"Message"}, {"Reference"}};
    for (const EphemerisParameter& parameter : ephemerisParameters())
        columns.push_back({parameter.name, parameter.unit});
    const auto rows = target.open("ephemerides", TableRows::withTime(columns));
    for (const Ephemeris& ephemeris : ephemerides) {
        rows->begin();
        rows->time(ephemeris.received);
        rows->text(ephemeris.satellite.text());
        rows->text(nameOf(ephemeris.message));
        rows->text(dateText(ephemeris.reference));
        for (const EphemerisParameter& parameter : ephemerisParameters())
            rows->number(ephemeris.*parameter.member);
        rows->end();
    }
}

void writeIonosphere(TableTarget& target, const std::vector<Ionosphere>& list)
{
    const auto rows = target.open("ionosphere", TableRows::withTime({{"System"},
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
    for (const Ionosphere& data : list) {
        rows->begin();
        rows->time(data.received);
        rows->text({&data.system, 1});
        rows->text(dateText(data.reference));
        for (unsigned i = 0; i < data.values.size(); ++i)
            rows->number(i < data.getCount() ? data.values[i] : Ephemeris::none);
        if (data.system == 'E') {
            rows->whole(data.disturbance);
        } else {
            rows->missing();
        }
        rows->end();
    }
}

void writeTimeOffsets(TableTarget& target, const std::vector<TimeOffset>& list)
{
    const auto rows =
        target.open("time_offsets", TableRows::withTime({{"Offset"},
                                                         {"Reference"},
                                                         {"a_0", "second"},
                                                         {"a_1", "secondpersecond"},
                                                         {"a_2", "secondpersecondsquared"}}));
    for (const TimeOffset& offset : list) {
        rows->begin();
        rows->time(offset.received);
        rows->text(offset.kind);
        rows->text(dateText(offset.reference));
        rows->number(offset.a0);
        rows->number(offset.a1);
        rows->number(offset.a2);
        rows->end();
    }
}

} // namespace tqx
