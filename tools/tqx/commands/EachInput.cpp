#include "commands/EachInput.h"

#include "io/Words.h"
#include "tqx/log/DataError.h"

namespace tqx::tool
{

ExitStatus forEachInput(Output& output, const std::vector<std::string>& inputs,
                        const std::function<bool(const std::string&)>& action)
{
    ExitStatus status = ExitStatus::Done;
    for (const std::string& input : inputs) {
        try {
            if (!action(input))
                status = ExitStatus::Failed;
        } catch (const SourceError& error) {
            output.flush();
            words::say(error.what());
            status = ExitStatus::Failed;
        }
    }
    output.flush();
    return status;
}

} // namespace tqx::tool
