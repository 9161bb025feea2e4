#pragma once

namespace tqx::tool
{

/// Where the data of a command goes, seen by what drives the command.
class Sink
{
public:
    virtual ~Sink() = default;

    /// Writes out what has become big. Throws as flush().
    virtual void commit() = 0;

    /// Gives those who read along what there is, before more of an input is waited for. Throws as
    /// flush().
    virtual void handOn() { flush(); }

    /// Writes everything out. Throws ClosedPipe when nobody reads any more, ToolError when
    /// writing fails otherwise.
    virtual void flush() = 0;
};

/// For data that go elsewhere, and not to those who read along.
class NoSink final : public Sink
{
public:
    void commit() override {}
    void flush() override {}
};

} // namespace tqx::tool
