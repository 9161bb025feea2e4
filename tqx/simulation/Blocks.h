#pragma once

#include "tqx/simulation/BlockLog.h"
#include "tqx/simulation/Faults.h"
#include "tqx/simulation/Random.h"
#include "tqx/simulation/Receiver.h"

/// The blocks of the simulated receiver, made from what it tracks, measures and computes.
namespace tqx::simulation
{

class GlonassAlmanacs;

/// Code, carrier, Doppler and C/N0 of all signals, and the end of the epoch's measurements.
void addMeasurements(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// How the signals of each satellite are tracked and used.
void addChannels(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Where the satellites are in the sky.
void addVisibility(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Positions and clocks of the satellites used.
void addSatellitePositions(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Position, velocity and clock in both kinds of coordinates, their covariances and dilution of
/// precision, and the end of the epoch's solution.
void addPosition(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// The vector from the first antenna to the second, the attitude that follows from it with its
/// covariances, and the end of the epoch's attitude.
void addAttitude(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// The four covariance matrices.
void addCovariances(BlockLog& log, const Epoch& epoch, const Solution& solution);

/// Residuals of each code and Doppler that the solution uses.
void addResiduals(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Test of the residuals.
void addIntegrity(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Times of the other systems against GPS time, including the receiver's path delays.
void addTimeOffsets(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// The date and the time of day.
void addTime(BlockLog& log, const Epoch& epoch);

/// The ephemeris of a GPS, Galileo, BeiDou, QZSS or NavIC satellite, from each of its messages.
void addKeplerEphemeris(BlockLog& log, const Epoch& epoch, const Satellite& satellite);

/// The ephemeris of an SBAS satellite.
void addSbasEphemeris(BlockLog& log, const Epoch& epoch, const Satellite& satellite);

/// The ephemeris of a GLONASS satellite.
void addGlonassEphemeris(BlockLog& log, const Epoch& epoch, const Satellite& satellite);

/// Ionosphere, UTC and system time parameters of all systems.
void addSystemPages(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Almanacs of all satellites of GPS, GLONASS, Galileo, BeiDou and QZSS, and of SBAS those of the
/// services that are received.
void addAlmanacs(BlockLog& log, const Epoch& epoch, const Receiver& receiver,
                 GlonassAlmanacs& glonass);

/// Names of the site, the receiver and its antenna.
void addSetup(BlockLog& log, const Epoch& epoch, const Geodetic& marker);

/// Load, temperature, state and gain of the receiver.
void addReceiverState(BlockLog& log, const Epoch& epoch, Random& random, const FaultPlan& faults);

/// Two batteries, the first of which is being discharged, and the power inputs.
void addPower(BlockLog& log, const Epoch& epoch, Random& random);

/// Grades of the signals.
void addQuality(BlockLog& log, const Epoch& epoch);

/// Acceleration and angular rate of a sensor that moves with the antenna.
void addSensor(BlockLog& log, const Epoch& epoch, const Track& track, Random& random);

/// A line from a weather station connected to a port.
void addText(BlockLog& log, const Epoch& epoch, Random& random);

/// Correction messages with position, receiver and antenna of a base station some kilometres from
/// the place where the antenna started.
void addCorrections(BlockLog& log, const Epoch& epoch, const Geodetic& start);

// What a port with output other than blocks sends between them:

/// The position as the NMEA 0183 sentence GGA.
void addPositionSentence(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

/// Position and names of the receiver itself as a base station, in frames of RTCM 3.
void addBaseFrames(BlockLog& log, const Geodetic& marker);

/// The reply to a question about its state, and a prompt.
void addReply(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

} // namespace tqx::simulation
