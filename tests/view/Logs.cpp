#include "Logs.h"

#include "tqx/log/text/Buffer.h"
#include "tqx/simulation/Simulation.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

QByteArray simulatedLog(double seconds, double startSecond)
{
    tqx::simulation::SimulationSettings settings;
    settings.duration = seconds;
    settings.towMillis += static_cast<uint32_t>(startSecond * 1000);
    tqx::Buffer buffer;
    tqx::simulation::simulate(settings, buffer);
    return {buffer.data(), static_cast<int>(buffer.size())};
}

QByteArray logWithOutage(double seconds)
{
    constexpr double outage = 60;
    QByteArray log = simulatedLog(seconds) + simulatedLog(seconds, seconds + outage);
    const auto place = static_cast<int>(damagedByte(seconds));
    log[place] = static_cast<char>(log[place] ^ 1);
    return log;
}

qint64 damagedByte(double seconds)
{
    return simulatedLog(seconds).size() / 2;
}

QString writeFile(const QTemporaryDir& folder, const QString& name, const QByteArray& content)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(file.fileName()));
    return file.fileName();
}

bool waitFor(const std::function<bool()>& holds)
{
    constexpr qint64 patience = 60'000;
    QElapsedTimer clock;
    clock.start();
    while (!holds()) {
        if (clock.elapsed() > patience)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
    }
    return true;
}
