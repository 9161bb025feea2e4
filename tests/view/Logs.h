#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <functional>

/// What a simulated receiver sends in `seconds`; the same for the same arguments.
QByteArray simulatedLog(double seconds, double startSecond = 0);

/// `first`, then an outage of a minute, then as much again, with one damaged byte in a block.
QByteArray logWithOutage(double seconds);

/// Where the damaged byte is that logWithOutage() has.
qint64 damagedByte(double seconds);

/// Writes a file into a folder and returns its path.
QString writeFile(const QTemporaryDir& folder, const QString& name, const QByteArray& content);

/// Runs the event loop until something holds; false when it does not within a minute.
bool waitFor(const std::function<bool()>& holds);
