#pragma once

#include "BlockLog.h"
#include "Random.h"
#include "Receiver.h"

/// The blocks of the simulated receiver, each made of what it tracks, measures and computes.
namespace tool
{

/// Code, carrier, Doppler and C/N0 of all signals.
void addMeasurements(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Where each satellite stands and how its signals are tracked and used.
void addChannels(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Position, velocity and clock.
void addPosition(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// The ephemeris of one satellite.
void addEphemeris(BlockLog& log, const Epoch& epoch, const Sight& sight);

/// Load, temperature, state and gain of the receiver.
void addReceiverState(BlockLog& log, const Epoch& epoch, Random& random);

/// Two batteries, the first of which is being discharged.
void addBatteries(BlockLog& log, const Epoch& epoch, Random& random);

/// Acceleration and angular rate of a sensor at rest.
void addSensor(BlockLog& log, const Epoch& epoch, Random& random);

/// A line of a weather station connected to a port.
void addText(BlockLog& log, const Epoch& epoch, Random& random);

/// A correction message with the position of a base station.
void addCorrection(BlockLog& log, const Epoch& epoch);

} // namespace tool
