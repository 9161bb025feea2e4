#include "options/FaultOptions.h"

#include "io/Output.h"
#include "io/ToolError.h"
#include "options/Numbers.h"
#include "tqx/gnss/observation/SatelliteId.h"
#include "tqx/log/DataError.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tqx::tool
{

namespace
{

using simulation::Fault;
using simulation::FaultKind;

enum class Target : uint8_t { None, System, Satellite };

struct Kind {
    FaultKind kind;
    const char* name;
    Target target;
    bool hasDuration;
};

constexpr Kind kinds[] = {
    {FaultKind::Outage, "outage", Target::None, true},
    {FaultKind::SystemOutage, "system_outage", Target::System, true},
    {FaultKind::Multipath, "multipath", Target::Satellite, true},
    {FaultKind::Slip, "slip", Target::Satellite, false},
    {FaultKind::LossOfLock, "loss_of_lock", Target::Satellite, false},
    {FaultKind::Interference, "interference", Target::None, true},
    {FaultKind::Antenna, "antenna", Target::None, true},
    {FaultKind::Corrections, "corrections", Target::None, true},
};

std::string kindNames()
{
    std::vector<std::string> names;
    for (const Kind& kind : kinds)
        names.emplace_back(kind.name);
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string subjectOf(const Fault& fault)
{
    const Target target = kinds[static_cast<size_t>(fault.kind)].target;
    if (target == Target::None)
        return {};
    const char system = systemLetters[indexOf(fault.system)];
    return target == Target::System
               ? std::string(1, system)
               : SatelliteId{system, static_cast<uint8_t>(fault.number)}.text();
}

/// System and satellite of "G" or "G05".
void readTarget(Fault& fault, Target wanted, const std::string& text)
{
    const std::string_view letters(systemLetters, systemCount);
    const size_t system = text.empty() ? std::string_view::npos : letters.find(text.front());
    if (wanted == Target::None ? !text.empty() : system == std::string_view::npos) {
        throw DataError(wanted == Target::None ? "it has no target"
                                               : "it needs a target, such as G or G05");
    }
    if (wanted == Target::None)
        return;
    fault.system = static_cast<System>(system);
    if (wanted == Target::Satellite) {
        fault.number = static_cast<unsigned>(numbers::whole(text.substr(1), 1, 99));
    } else if (text.size() > 1) {
        throw DataError("its target is a system, such as G");
    }
}

Fault readFault(const std::string& text)
{
    constexpr double longest = 1e8;
    const size_t at = text.find('@');
    const std::string head = text.substr(0, at);
    const size_t colon = head.find(':');
    const std::string name = head.substr(0, colon);
    const Kind* const kind = std::find_if(std::begin(kinds), std::end(kinds),
                                          [&name](const Kind& each) { return each.name == name; });
    if (kind == std::end(kinds))
        throw DataError("unknown kind; kinds are " + kindNames());
    if (at == std::string::npos)
        throw DataError("it needs a time, such as @600");
    Fault fault;
    fault.kind = kind->kind;
    readTarget(fault, kind->target, colon == std::string::npos ? "" : head.substr(colon + 1));
    const std::string times = text.substr(at + 1);
    const size_t plus = times.find('+');
    fault.start = numbers::real(times.substr(0, plus), 0, longest);
    if (kind->hasDuration != (plus != std::string::npos)) {
        throw DataError(kind->hasDuration ? "it needs a duration, such as @600+60"
                                          : "it has no duration");
    }
    if (kind->hasDuration)
        fault.duration = numbers::real(times.substr(plus + 1), 0, longest);
    return fault;
}

} // namespace

void FaultOptions::add(CLI::App& command)
{
    command
        .add_option("--fault", m_texts,
                    "Fault to simulate: kind@START+DURATION in seconds from the start; can be "
                    "given more than once. outage@600+30, system_outage:E@600+120, "
                    "multipath:G05@900+300, slip:G05@1500, loss_of_lock:G05@1500, "
                    "interference@2000+60, antenna@2500+30, corrections@3000+90")
        ->allow_extra_args(false)
        ->type_name("KIND[:TARGET]@START[+LENGTH]");
    command.add_option("--truth", m_truth, "Write the faults with their times to a file, as JSON")
        ->type_name("FILE");
}

std::vector<Fault> FaultOptions::get() const
{
    std::vector<Fault> faults;
    for (const std::string& text : m_texts) {
        try {
            faults.push_back(readFault(text));
        } catch (const DataError& error) {
            throw ToolError(fmt::format("simulate: --fault {}: {}", shortened(text), error.what()));
        }
    }
    return faults;
}

void FaultOptions::writeTruth(const std::vector<Fault>& faults, GnssMillis start) const
{
    if (m_truth.empty())
        return;
    const auto timeAt = [start](double seconds) {
        const GnssMillis time = start + static_cast<GnssMillis>(std::llround(seconds * 1e3));
        return nlohmann::ordered_json{{"week", time / millisPerWeek},
                                      {"tow", static_cast<double>(time % millisPerWeek) / 1000},
                                      {"date", dateText(time)}};
    };
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Fault& fault : faults) {
        list.push_back({{"kind", kinds[static_cast<size_t>(fault.kind)].name},
                        {"subject", subjectOf(fault)},
                        {"start", timeAt(fault.start)},
                        {"end", timeAt(fault.start + fault.duration)},
                        {"epochs", fault.epochs}});
    }
    Output output(m_truth);
    output.write(nlohmann::ordered_json{{"faults", std::move(list)}}.dump(2) + "\n");
}

} // namespace tqx::tool
