#pragma once

#include "tqx/gnss/navigation/Ephemeris.h"

/// Conversions of each system's blocks, one function per block. Headers have a time.
namespace tqx::navigation
{

void fillGps(Ephemeris& ephemeris, const void* record);
void fillGpsCnav(Ephemeris& ephemeris, const void* record);
void fillGpsCnav2(Ephemeris& ephemeris, const void* record);
void fillQzss(Ephemeris& ephemeris, const void* record);
void fillQzssCnav(Ephemeris& ephemeris, const void* record);
void fillQzssCnav2(Ephemeris& ephemeris, const void* record);
void fillGalileo(Ephemeris& ephemeris, const void* record);
void fillBeiDou(Ephemeris& ephemeris, const void* record);
void fillBeiDouCnav1(Ephemeris& ephemeris, const void* record);
void fillBeiDouCnav2(Ephemeris& ephemeris, const void* record);
void fillBeiDouCnav3(Ephemeris& ephemeris, const void* record);
void fillNavic(Ephemeris& ephemeris, const void* record);
void fillGlonass(Ephemeris& ephemeris, const void* record);
void fillSbas(Ephemeris& ephemeris, const void* record);

/// Whether a block holds an ephemeris of NavIC from the message on L1, which is not read: it has
/// fields and a record in files of its own.
bool isNavicOnL1(const DecodedBlock& decoded);

/// Metres of a user range accuracy index of GPS (IS-GPS-200), QZSS, BeiDou, NavIC and SBAS.
double accuracyOf(unsigned index);

/// A value of a field, NaN for the number that means "not available".
double available(double value);

} // namespace tqx::navigation
