#pragma once

#include "tqx/gnss/orbit/Geodesy.h"

namespace tqx
{

/// Motion of a satellite on the rotating earth.
struct Motion {
    Vector position;
    Vector velocity;
};

/// Pull of the sun and the moon relative to that on the earth, on the rotating earth, at a time in
/// seconds since the start of GPS week 2400 (2026-01-04). Mean circular motions of both are
/// accurate to a few percent.
Vector lunisolarAcceleration(const Vector& position, double time);

/// Advances by one Runge-Kutta step of `step` seconds under the equations of motion of the GLONASS
/// interface document: central field, oblateness, rotation, and a constant acceleration.
Motion stepped(const Motion& motion, const Vector& acceleration, double step);

/// Advances from `time` to `target` (seconds since the start of GPS week 2400) in equal steps of at
/// most a minute, with the pull of the sun and the moon at each.
Motion integrated(Motion motion, double time, double target);

} // namespace tqx
