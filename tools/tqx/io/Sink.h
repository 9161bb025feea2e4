#pragma once

namespace tqx::tool
{

/// Where the data of a command goes, as seen by what drives the command.
class Sink
{
public:
    virtual ~Sink() = default;

    /// Flushes buffers that have become large. Throws as flush().
    virtual void commit() = 0;

    /// Flushes before blocking on input, for readers of a live stream. Throws as flush().
    virtual void handOn() { flush(); }

    /// Writes everything out. Throws ClosedPipe when nobody reads any more, ToolError when
    /// writing fails otherwise.
    virtual void flush() = 0;
};

/// For data that go elsewhere, not to readers of a live stream.
class NoSink final : public Sink
{
public:
    void commit() override {}
    void flush() override {}
};

} // namespace tqx::tool
