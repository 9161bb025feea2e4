#pragma once

#include "io/Output.h"
#include "output/BatchText.h"

namespace tqx::tool
{

/// Where the text of batches goes, in the order of the stream. Used by one thread at a time.
class BatchTarget
{
public:
    virtual ~BatchTarget() = default;

    /// Takes the text of the next batch. Throws ClosedPipe when nobody reads any more, ToolError
    /// when writing fails for another reason.
    virtual void put(const BatchText& text) = 0;

    /// Flushes everything; called at the end and before waiting for more input. Throws as put().
    virtual void flush() = 0;
};

/// A single file or standard output.
class OutputTarget final : public BatchTarget
{
public:
    /// The output must outlive this.
    explicit OutputTarget(Output& output) : m_output(output) {}

    void put(const BatchText& text) override { m_output.write(text.text.view()); }
    void flush() override { m_output.flush(); }

private:
    Output& m_output;
};

} // namespace tqx::tool
