#include "output/SqliteDump.h"

#include "io/NewFile.h"
#include "io/Sink.h"
#include "io/ToolError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/sqlite/SqliteWriter.h"

namespace tqx::tool
{

namespace
{

class Rows : public BlockConsumer
{
public:
    Rows(SqliteWriter& writer, const Schema& schema) : m_writer(writer), m_decoder(schema) {}

    void take(BlockStream& stream, const Block& block) override
    {
        const int32_t result = m_decoder.decode(block, stream.getContext());
        if (result > 0)
            return m_writer.write(m_decoder.getDecoded(), stream.getName());
        if (result != unknownNumber)
            stream.reportUndecodable(block, result);
        m_writer.writeOther({block, nullptr, result}, stream.getName());
    }
    void end(InputStream& stream) override { m_writer.finish(stream.getCounts()); }

private:
    SqliteWriter& m_writer;
    RecordDecoder m_decoder;
};

} // namespace

ExitStatus dumpSqlite(StreamOptions& streams, const FieldFilter& filter, bool isStored,
                      const std::string& target)
{
    if (target == "-")
        throw ToolError("dump: --format sqlite writes a file, name it with -o");
    NewFile file(target);
    SqliteWriter writer(file.getPath(), target, filter, isStored);
    Rows rows(writer, streams.getSchema());
    NoSink sink;
    const ExitStatus status = streams.read(rows, sink);
    file.putInPlace();
    return status;
}

} // namespace tqx::tool
