#pragma once

#include <QString>

namespace tqx::view
{

/// What arrives on standard input, decompressed if it is compressed, in a temporary file that grows
/// with it.
class StandardInput
{
public:
    /// The file; reading begins with the first call and ends with the process, which removes it.
    static QString path();

    /// The file; empty until it was requested.
    static QString pathIfOpen();

    StandardInput() = delete;
};

} // namespace tqx::view
