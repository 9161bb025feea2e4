#include "commands/Command.h"
#include "io/Interrupt.h"
#include "io/Terminal.h"
#include "io/ToolError.h"
#include "io/Words.h"
#include "reference/CommandLine.h"
#include "reference/HelpFormatter.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>

namespace
{

using tqx::tool::Command;
using tqx::tool::ExitStatus;

constexpr const char* version = "tqx " TQX_VERSION;

constexpr const char* about = "Reads and writes streams of TQX blocks, the binary format of a "
                              "family of GNSS receivers.";

constexpr const char* notes =
    "Data goes to standard output, messages to standard error. Exit status: 0 done, 1\n"
    "failed, 2 done, but the stream was damaged and --strict was given, 3 done, but a\n"
    "figure does not meet report --require. When the reader of the output goes away\n"
    "early, the program ends quietly with status 0. An interruption (Ctrl-C) ends the\n"
    "input: what has been read is still written and summarised, then the program ends as\n"
    "interrupted.\n"
    "\n"
    "`tqx help COMMAND` explains a command and shows examples.\n";

/// A bad command line is reported in one line; help and version are not errors.
ExitStatus explain(const CLI::App& program, const CLI::ParseError& error)
{
    if (error.get_exit_code() == 0) {
        program.exit(error);
        if (std::cout.flush())
            return ExitStatus::Done;
        tqx::tool::words::say(std::string("standard output: ") + std::strerror(errno));
        return ExitStatus::Failed;
    }
    tqx::tool::words::say(tqx::tool::describe(program, error));
    return ExitStatus::Failed;
}

ExitStatus run(int argc, char** argv)
{
    CLI::App program(about, "tqx");
    program.footer(notes);
    program.set_version_flag("--version", version);
    program.require_subcommand(1);
    program.formatter(std::make_shared<tqx::tool::HelpFormatter>(tqx::tool::outputWidth()));
    program.get_formatter()->label("SUBCOMMAND", "COMMAND");
    program.get_formatter()->label("Positionals", "Arguments");
    // Scripts ask for the version only, which needs none of the commands and their options.
    std::vector<std::unique_ptr<Command>> commands;
    if (argc != 2 || std::strcmp(argv[1], "--version") != 0)
        commands = tqx::tool::makeCommands(program);
    try {
        program.parse(argc, argv);
        for (const std::unique_ptr<Command>& command : commands) {
            if (command->getApp().parsed())
                return command->run();
        }
    } catch (const CLI::ParseError& error) {
        return explain(program, error);
    } catch (const tqx::tool::ClosedPipe&) {
        return ExitStatus::Done;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        tqx::tool::words::say(error.what());
        return ExitStatus::Failed;
    }
    return ExitStatus::Failed;
}

/// Libraries may need memory where they cannot fail, such as for destroying a deep tree of JSON.
[[noreturn]] void endWithoutMemory()
{
    try {
        if (const std::exception_ptr failure = std::current_exception())
            std::rethrow_exception(failure);
    } catch (const std::bad_alloc&) {
        tqx::tool::words::sayOutOfMemory();
        std::_Exit(static_cast<int>(ExitStatus::Failed));
    } catch (...) {
        std::abort();
    }
    std::abort();
}

} // namespace

int main(int argc, char** argv)
{
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
    std::set_terminate(endWithoutMemory);
    ExitStatus status = ExitStatus::Failed;
    try {
        tqx::tool::interrupt::watch();
        status = run(argc, argv);
    } catch (const std::bad_alloc&) {
        tqx::tool::words::sayOutOfMemory();
    }
    tqx::tool::interrupt::obey();
    return static_cast<int>(status);
}
