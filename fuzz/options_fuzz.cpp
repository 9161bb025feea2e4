// Arguments of the program, one per line: they are accepted, or refused with a short message. No
// command runs.

#include "FuzzInput.h"
#include "commands/Command.h"
#include "options/Numbers.h"
#include "reference/CommandLine.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/select/Selection.h"
#include "tqx/log/text/PrintableText.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdlib>
#include <sstream>

namespace
{

using namespace tqx;

constexpr size_t longestMessage = 1500;

void checkMessage(const std::string& message)
{
    if (message.empty() || message.size() > longestMessage)
        std::abort();
}

template<typename Action>
void tried(Action action)
{
    try {
        action();
    } catch (const DataError& error) {
        checkMessage(error.what());
    }
}

void tryCommandLine(std::vector<std::string> arguments)
{
    CLI::App program("", "tqx");
    program.set_version_flag("--version", "0");
    program.require_subcommand(1);
    const auto commands = tool::makeCommands(program);
    std::reverse(arguments.begin(), arguments.end());
    try {
        program.parse(arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0)
            checkMessage(tool::describe(program, error));
    }
}

void tryNumbers(const std::string& text)
{
    tried([&] {
        if (tool::numbers::whole(text, 3, 1000000) - 3 > 999997)
            std::abort();
    });
    tried([&] {
        if (!(std::fabs(tool::numbers::real(text, -1e6, 1e6)) <= 1e6))
            std::abort();
    });
    tried([&] { tool::numbers::bytes(text); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    std::vector<std::string> arguments;
    for (std::string line; std::getline(lines, line);)
        arguments.push_back(line);
    tryCommandLine(arguments);
    if (arguments.empty())
        return 0;
    const std::string& first = arguments.front();
    const std::string& last = arguments.back();
    tryNumbers(first);
    if (hasControls(shortened(first)) || shortened(first).size() > longestMessage)
        std::abort();
    tried([&] {
        const FieldFilter filter({first, last});
        for (const Kor::MessageApi::TQX_TypeLayout* type : mainTypes()) {
            for (const FieldFilter::Shown& shown : filter.shownIn(*type)) {
                if (shown.row < 0 || shown.row >= type->fieldCount)
                    std::abort();
            }
        }
    });
    tried([&] { Selection({{first}, {last}, "", "", "", 1, 0}); });
    tried([&] { Selection({{}, {}, first, "", "", 1, 0}); });
    tried([&] { Selection({{}, {}, first, last, "", 1, 0}); });
    tried([&] { Selection({{}, {}, "", "", last, 1, 0}); });
    return 0;
}
