#include "tqx/log/sqlite/SqliteWriter.h"

#include "TQX_codec.h"
#include "tqx/log/sqlite/SqlTable.h"
#include "tqx/log/time/LeapSeconds.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

const char* const ownTables = R"(
CREATE TABLE tqx_log (
    bytes INTEGER, blocks INTEGER, dropped_bytes INTEGER, crc_errors INTEGER,
    invalid_lengths INTEGER, undecodable INTEGER, written_blocks INTEGER,
    first_gnss_time TEXT, last_gnss_time TEXT, value_form TEXT);
CREATE TABLE tqx_files (id INTEGER PRIMARY KEY, name TEXT NOT NULL, written_blocks INTEGER);
CREATE TABLE tqx_tables (
    table_name TEXT PRIMARY KEY, parent TEXT, block TEXT, number INTEGER, row_count INTEGER,
    description TEXT);
CREATE TABLE tqx_columns (
    table_name TEXT NOT NULL, column_name TEXT NOT NULL, field TEXT, unit TEXT, scale REAL,
    description TEXT, PRIMARY KEY (table_name, column_name));
CREATE TABLE tqx_other_blocks (
    id INTEGER PRIMARY KEY, file_id INTEGER NOT NULL REFERENCES tqx_files,
    file_offset INTEGER NOT NULL, gnss_time TEXT, utc_time TEXT, number INTEGER NOT NULL,
    block TEXT, error_code INTEGER, error TEXT, bytes BLOB NOT NULL);
)";

void setIfAny(SqlInsert& row, int parameter, std::string_view text)
{
    if (!text.empty())
        row.setText(parameter, text);
}

} // namespace

class SqliteWriter::Core
{
public:
    Core(const std::string& path, const std::string& name, const FieldFilter& filter, bool isStored)
        : m_database(SqlDatabase::create(path, name)), m_tables{*m_database, {}, isStored},
          m_filter(filter)
    {
        for (const char* own :
             {"tqx_log", "tqx_files", "tqx_tables", "tqx_columns", "tqx_other_blocks"})
            m_tables.names.take(own);
        m_database->execute("BEGIN");
        m_database->execute(ownTables);
        m_others = m_database->prepare("INSERT INTO tqx_other_blocks VALUES (?,?,?,?,?,?,?,?,?,?)");
    }

    void write(const DecodedBlock& decoded, const std::string& file);
    void writeOther(const DecodedBlock& decoded, const std::string& file);
    void finish(const StreamCounts& counts);

private:
    struct File {
        int64_t id;
        int64_t blocks;
    };
    struct Type {
        RecordPlan plan;
        std::unique_ptr<SqlTable> table;
    };

    void begin(const Block& block, const std::string& file);
    Type& open(uint32_t recordType);
    void describe(const SqlTable& table, SqlInsert& tables, SqlInsert& columns);

    std::unique_ptr<SqlDatabase> m_database; // before what belongs to it
    SqlTables m_tables;
    const FieldFilter& m_filter;
    std::unique_ptr<SqlInsert> m_others;
    std::vector<std::unique_ptr<Type>> m_types; ///< by record type
    std::map<std::string, File> m_files;
    File* m_file = nullptr; ///< of the last block
    std::string m_fileName;
    SqlBlock m_block = {};
    std::optional<GnssMillis> m_time; ///< that its texts say
    std::optional<GnssMillis> m_first;
    std::optional<GnssMillis> m_last;
};

/// Records what a row says about a block.
void SqliteWriter::Core::begin(const Block& block, const std::string& file)
{
    if (!m_file || file != m_fileName) {
        const auto next = static_cast<int64_t>(m_files.size()) + 1;
        m_file = &m_files.insert({file, {next, 0}}).first->second;
        m_fileName = file;
    }
    ++m_file->blocks;
    ++m_block.id;
    m_block.file = m_file->id;
    m_block.offset = block.offset;
    const std::optional<GnssMillis> time = block.getTime();
    if (time) {
        m_first = std::min(m_first.value_or(*time), *time);
        m_last = std::max(m_last.value_or(*time), *time);
    }
    if (time != m_time) {
        m_time = time;
        m_block.gnssTime = time ? dateText(*time) : "";
        m_block.utcTime = time ? utcText(*time) : "";
    }
}

SqliteWriter::Core::Type& SqliteWriter::Core::open(uint32_t recordType)
{
    if (m_types.size() <= recordType)
        m_types.resize(recordType + 1);
    std::unique_ptr<Type>& type = m_types[recordType];
    if (type)
        return *type;
    const TQX_TypeLayout& layout = *m_filter.getSchema().getType(recordType);
    type = std::make_unique<Type>();
    type->plan = planRecord(layout, m_filter, ShownFields::WithoutFiller);
    std::vector<RecordPlan::Member>& members = type->plan.members;
    // Tables have columns of their own for them.
    members.erase(
        std::remove_if(members.begin(), members.end(),
                       [](const RecordPlan::Member& member) {
                           return member.field->recordOffset == offsetof(TQX_MainHeader_s, TOW) ||
                                  member.field->recordOffset == offsetof(TQX_MainHeader_s, WNc);
                       }),
        members.end());
    if (m_filter.matches(layout))
        type->table = std::make_unique<SqlTable>(m_tables, type->plan);
    return *type;
}

void SqliteWriter::Core::write(const DecodedBlock& decoded, const std::string& file)
{
    const uint32_t recordType = decoded.getHeader().korcg_type;
    if (!m_filter.getSchema().getType(recordType)->hasMessage)
        return writeOther(decoded, file);
    Type& type = open(recordType);
    if (!type.table)
        return;
    begin(decoded.block, file);
    type.table->insert(m_block, decoded.record);
}

void SqliteWriter::Core::writeOther(const DecodedBlock& decoded, const std::string& file)
{
    if (!m_filter.isEverything())
        return;
    enum Column { Id = 1, FileId, FileOffset, Time, Utc, Number, Name, ErrorCode, Error, Bytes };
    const Block& block = decoded.block;
    begin(block, file);
    m_others->setInteger(Id, m_block.id);
    m_others->setInteger(FileId, m_block.file);
    m_others->setInteger(FileOffset, static_cast<int64_t>(block.offset));
    setIfAny(*m_others, Time, m_block.gnssTime);
    setIfAny(*m_others, Utc, m_block.utcTime);
    m_others->setInteger(Number, block.getNumber());
    if (const TQX_TypeLayout* type = m_filter.getSchema().getBlockType(block.getNumber()))
        m_others->setText(Name, type->name);
    if (!decoded.record && decoded.consumed != unknownNumber) {
        m_others->setInteger(ErrorCode, decoded.consumed);
        m_others->setText(Error, m_filter.getSchema().getErrorName(decoded.consumed));
    }
    m_others->setBytes(Bytes, block.data, block.size);
    m_others->run();
}

void SqliteWriter::Core::describe(const SqlTable& table, SqlInsert& tables, SqlInsert& columns)
{
    const TQX_TypeLayout& type = table.getType();
    tables.setText(1, table.getName());
    setIfAny(tables, 2, table.getParent());
    tables.setText(3, type.name);
    if (type.blockNumber != 0)
        tables.setInteger(4, type.blockNumber);
    tables.setInteger(5, table.getRows());
    const std::string_view description = TQX_description(TQX_factsOf(type));
    setIfAny(tables, 6, description);
    tables.run();
    for (const SqlColumn& column : table.getColumns()) {
        columns.setText(1, table.getName());
        columns.setText(2, column.name);
        setIfAny(columns, 3, column.field);
        setIfAny(columns, 4, column.unit);
        if (column.scale != 0)
            columns.setReal(5, column.scale);
        setIfAny(columns, 6, column.description);
        columns.run();
    }
    for (const SqlTable* child : table.getChildren())
        describe(*child, tables, columns);
}

void SqliteWriter::Core::finish(const StreamCounts& counts)
{
    {
        const auto tables = m_database->prepare("INSERT INTO tqx_tables VALUES (?,?,?,?,?,?)");
        const auto columns = m_database->prepare("INSERT INTO tqx_columns VALUES (?,?,?,?,?,?)");
        for (const std::unique_ptr<Type>& type : m_types) {
            if (!type || !type->table)
                continue;
            describe(*type->table, *tables, *columns);
            type->table->addIndexes(m_tables);
        }
        const auto files = m_database->prepare("INSERT INTO tqx_files VALUES (?,?,?)");
        for (const auto& [name, file] : m_files) {
            files->setInteger(1, file.id);
            files->setText(2, name);
            files->setInteger(3, file.blocks);
            files->run();
        }
        const auto log = m_database->prepare("INSERT INTO tqx_log VALUES (?,?,?,?,?,?,?,?,?,?)");
        int parameter = 0;
        for (const uint64_t count :
             {counts.bytes, counts.blocks, counts.droppedBytes, counts.crcErrors,
              counts.invalidLengths, counts.undecodable, static_cast<uint64_t>(m_block.id)})
            log->setInteger(++parameter, static_cast<int64_t>(count));
        const std::string first = m_first ? dateText(*m_first) : "";
        const std::string last = m_last ? dateText(*m_last) : "";
        setIfAny(*log, ++parameter, first);
        setIfAny(*log, ++parameter, last);
        log->setText(++parameter, m_tables.isStored ? "stored" : "scaled");
        log->run();
    }
    m_database->execute("COMMIT");
    m_others.reset();
    m_types.clear();
    m_database.reset();
}

SqliteWriter::SqliteWriter(const std::string& path, const std::string& name,
                           const FieldFilter& filter, bool isStored)
    : m_core(std::make_unique<Core>(path, name, filter, isStored))
{
}

SqliteWriter::~SqliteWriter() = default;

void SqliteWriter::write(const DecodedBlock& decoded, const std::string& file)
{
    m_core->write(decoded, file);
}

void SqliteWriter::writeOther(const DecodedBlock& decoded, const std::string& file)
{
    m_core->writeOther(decoded, file);
}

void SqliteWriter::finish(const StreamCounts& counts)
{
    m_core->finish(counts);
}

} // namespace tqx
