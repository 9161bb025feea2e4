#pragma once

#include "Command.h"

#include <cstdint>
#include <optional>

namespace tool
{

class Buffer;

/// `tqx error`: names of codec results and codes of names.
class ErrorCommand : public Command
{
public:
    explicit ErrorCommand(CLI::App& program);
    ExitStatus run() override;

private:
    static void explain(Buffer& out, const std::string& item);

    bool all = false;
};

} // namespace tool
