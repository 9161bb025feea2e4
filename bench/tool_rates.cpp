// How fast the tool processes a log, compared with the library alone, which frames, decodes and
// publishes the same file, and with cat.
//
// usage: tool_rates [FILE]     without FILE a simulated log of about 200 MB
//
// All runs are separate processes, in turns. Output goes to /dev/null, tables to files, and lines
// once more to a file, for comparison with tables. Shown are medians of the elapsed time, from
// which the rates are computed, and of the processor time, which is longer where several threads
// work. Other load on the machine makes the elapsed time longer.

#include "TQXDecoder.h"
#include "TQXSynchronizer.h"
#include "TQX_FormatInfo.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/wait.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr int rounds = 5;
constexpr int pieceSize = 1 << 18;

/// What a program with the library would do: counts the published messages.
int readByLibrary(const char* path)
{
    TQX_FormatInfo::getInstance();
    TQXSynchronizer synchronizer;
    TQXDecoder decoder;
    uint64_t published = 0;
    QObject::connect(&decoder, &MessageSource::newMessage, [&published] { ++published; });
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 1;
    for (;;) {
        QByteArray piece = file.read(pieceSize);
        if (piece.isEmpty())
            break;
        synchronizer.appendBytes(piece);
        while (synchronizer.hasBlock()) {
            const QByteArray block = synchronizer.getBlockBytes();
            decoder.decodeMessage(reinterpret_cast<const uint8_t*>(block.constData()),
                                  static_cast<uint32_t>(block.size()));
        }
    }
    return published != 0 ? 0 : 1;
}

struct Work {
    const char* name;
    std::vector<std::string> command;
    std::vector<double> elapsed; ///< in seconds
    std::vector<double> processor;
};

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Elapsed time and processor time of one run in seconds.
std::pair<double, double> run(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
        std::fprintf(stderr, "%s failed\n", command.front().c_str());
        std::exit(1);
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return {elapsed.count(), secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime)};
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--library") == 0)
        return readByLibrary(argv[2]);
    QTemporaryDir folder;
    std::string log = argc > 1 ? argv[1] : folder.filePath("log.tqx").toStdString();
    if (argc == 1)
        run({TQX_TOOL, "simulate", "--size", "200MB", "-o", log});
    const std::string tables = folder.filePath("tables").toStdString();
    const std::string lines = folder.filePath("lines.jsonl").toStdString();
    const double megabytes = static_cast<double>(QFile(log.c_str()).size()) * 1e-6;

    std::vector<Work> works = {
        {"library alone", {argv[0], "--library", log}, {}, {}},
        {"info", {TQX_TOOL, "info", "-q", log}, {}, {}},
        {"dump", {TQX_TOOL, "dump", "-q", log}, {}, {}},
        {"dump --raw", {TQX_TOOL, "dump", "-q", "--raw", log}, {}, {}},
        {"dump --format jsonl", {TQX_TOOL, "dump", "-q", "--format", "jsonl", log}, {}, {}},
        {"dump --format jsonl --raw",
         {TQX_TOOL, "dump", "-q", "--format", "jsonl", "--raw", log},
         {},
         {}},
        {"dump --format jsonl, a file",
         {TQX_TOOL, "dump", "-q", "--format", "jsonl", "-o", lines, log},
         {},
         {}},
        {"dump --format csv, a folder",
         {TQX_TOOL, "dump", "-q", "--format", "csv", "-o", tables, log},
         {},
         {}},
        {"cat", {"cat", log}, {}, {}}};
    for (int round = 0; round < rounds; ++round)
        for (Work& work : works) {
            const auto [elapsed, processor] = run(work.command);
            work.elapsed.push_back(elapsed);
            work.processor.push_back(processor);
        }

    std::printf("%.1f MB, median of %d runs\n", megabytes, rounds);
    const double library = median(works.front().elapsed);
    for (const Work& work : works) {
        const double seconds = median(work.elapsed);
        std::printf("%-27s %7.3f s (%.3f s of processors) %6.0f MB/s %6.2f of the library's rate\n",
                    work.name, seconds, median(work.processor), megabytes / seconds,
                    library / seconds);
    }
}
