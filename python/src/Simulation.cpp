#include "tqx/simulation/Simulation.h"
#include "Bindings.h"
#include "Interrupts.h"
#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/log/DataError.h"
#include "tqx/log/write/ProductFile.h"

#include <nanobind/stl/string.h>

#include <string>

namespace tqx::python
{

namespace nb = nanobind;
using simulation::SimulationSettings;

namespace
{

void setPosition(SimulationSettings& settings, double latitude, double longitude, double height)
{
    constexpr double degree = pi / 180;
    settings.track.start = {latitude * degree, longitude * degree, height};
}

void setTrack(SimulationSettings& settings, const std::string& kind, double speed)
{
    using Kind = simulation::TrackSettings::Kind;
    if (kind != "static" && kind != "circle" && kind != "line")
        throw DataError("there is no track named " + kind + "; they are static, circle and line");
    settings.track.kind = kind == "circle" ? Kind::Circle
                          : kind == "line" ? Kind::Line
                                           : Kind::Static;
    settings.track.speed = speed;
}

nb::bytes toBytes(const SimulationSettings& settings)
{
    Buffer buffer;
    {
        const nb::gil_scoped_release unlocked;
        simulation::simulate(settings, buffer, [](uint64_t) {
            checkInterrupt();
            return true;
        });
    }
    return nb::bytes(buffer.data(), buffer.size());
}

void toFile(const SimulationSettings& settings, const std::string& path)
{
    const nb::gil_scoped_release unlocked;
    ProductFile file(path);
    simulation::simulate(settings, file.getBuffer(), [&](uint64_t) {
        checkInterrupt();
        file.commit();
        return true;
    });
    file.finish();
}

} // namespace

void bindSimulation(nb::module_& module)
{
    nb::class_<SimulationSettings>(module, "SimulationSettings")
        .def(nb::init<>())
        .def_rw("period_millis", &SimulationSettings::periodMillis)
        .def_rw("duration", &SimulationSettings::duration)
        .def_rw("size", &SimulationSettings::size)
        .def_rw("seed", &SimulationSettings::seed)
        .def_rw("week", &SimulationSettings::week)
        .def_rw("tow_millis", &SimulationSettings::towMillis)
        .def_rw("damage", &SimulationSettings::damage)
        .def_rw("mixed", &SimulationSettings::mixed)
        .def_rw("compact", &SimulationSettings::compact)
        .def_rw("almanacs", &SimulationSettings::almanacs)
        .def_rw("pulse_period", &SimulationSettings::pulsePeriod)
        .def("set_position", setPosition)
        .def("set_track", setTrack)
        .def("set_slips", [](SimulationSettings& settings,
                             double perHour) { settings.receiver.slipsPerHour = perHour; })
        .def("set_two_antennas", [](SimulationSettings& settings, bool two) {
            settings.receiver.hasSecondAntenna = two;
        });
    module.def("simulate_bytes", toBytes);
    module.def("simulate_file", toFile);
}

} // namespace tqx::python
