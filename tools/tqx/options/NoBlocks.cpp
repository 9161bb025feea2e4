#include "options/NoBlocks.h"

#include "io/Words.h"
#include "tqx/log/stream/ContentGuess.h"

#include <fmt/format.h>

namespace tqx::tool
{

ExitStatus reportNoBlocks(const InputStream& stream, bool isQuiet)
{
    ExitStatus status = ExitStatus::Done;
    if (stream.getCounts().blocks != 0 || stream.isInterrupted())
        return status;
    for (const InputSequence::Head& head : stream.getHeads()) {
        const Content content =
            guessContent(head.bytes.data(), head.bytes.size(), stream.getSchema());
        const bool isFailure = !isReceiverOutput(content);
        if (isFailure || !isQuiet) {
            words::say(fmt::format("{}: holds no TQX blocks, it seems to be {}", head.name,
                                   describeContent(content)));
        }
        if (isFailure)
            status = ExitStatus::Failed;
    }
    return status;
}

} // namespace tqx::tool
