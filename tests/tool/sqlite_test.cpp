#include "Database.h"
#include "RandomStream.h"
#include "StreamBuilder.h"
#include "TemporaryFolder.h"
#include "Tool.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <QProcess>

#include <filesystem>
#include <set>

// Databases against the same messages as JSON.

using nlohmann::json;

namespace
{

ToolRun writeDatabase(const std::string& path, const QStringList& options, const std::string& input)
{
    return runTool(QStringList{"dump", "--format", "sqlite", "-o", QString::fromStdString(path)} +
                       options + QStringList{"-"},
                   input);
}

/// Fields that tables leave out unless they are asked for.
bool isFiller(const std::string& field)
{
    static const std::set<std::string> header = {"Sync1",       "Sync2",    "CRC",    "ID",
                                                 "BlockNumber", "Revision", "Length", "TOWc"};
    return header.count(field) != 0 || field.find("_padding") != std::string::npos;
}

/// Whether a cell holds what JSON has for the field.
bool isSame(const json& cell, const json& value)
{
    if (value == "NaN" && cell.is_null())
        return true;
    if (value == "Infinity" || value == "-Infinity")
        return cell == (value == "Infinity" ? HUGE_VAL : -HUGE_VAL) || cell == value;
    if (value.is_array())
        return cell.is_string() && json::parse(cell.get<std::string>()) == value;
    if (value.is_number() && cell.is_string()) // a code without name, or 2^63 or more
        return cell == value.dump();
    if (value.is_number() && cell.is_number_float()) {
        return cell == value.get<double>() ||
               cell.get<float>() == value.get<float>(); // the shortest text of 32 bits
    }
    return cell == value && cell.type() != json::value_t::number_float;
}

/// The tables of a database, read row by row beside the JSON of their messages.
class DatabaseTables
{
public:
    DatabaseTables(const Database& database, bool isStored) : m_isStored(isStored)
    {
        for (const DatabaseRow& row : database.query("SELECT * FROM tqx_tables")) {
            const std::string name = row.at("table_name");
            Table& table = m_tables[name];
            table.rows = database.query("SELECT * FROM \"" + name + "\" ORDER BY id");
            EXPECT_EQ(row.at("row_count"), table.rows.size()) << name;
            for (const DatabaseRow& column :
                 database.query("SELECT * FROM tqx_columns WHERE table_name = '" + name + "'")) {
                if (!column.at("field").is_null())
                    table.columns[column.at("field")] = column.at("column_name");
            }
        }
    }

    /// Compares the next row of a table with a message or an entry of an array, and those of its
    /// sub-blocks. Returns the row.
    const DatabaseRow& check(const std::string& name, const json& fields,
                             const std::string& path = "")
    {
        static const DatabaseRow none;
        Table& table = m_tables[name];
        if (table.next == table.rows.size()) {
            ADD_FAILURE() << name << " has only " << table.next << " rows";
            return none;
        }
        const DatabaseRow& row = table.rows[table.next++];
        std::set<std::string> seen;
        checkFields(name, row, fields, path, path, seen);
        for (const auto& [field, column] : table.columns) {
            const bool isOwn = field.rfind(path, 0) == 0;
            if (isOwn && seen.count(field) == 0 && !m_isStored) {
                EXPECT_TRUE(row.at(column).is_null()) << name << ' ' << field << row.at(column);
            }
        }
        return row;
    }

    bool areRead() const
    {
        for (const auto& [name, table] : m_tables) {
            if (table.next != table.rows.size())
                return false;
        }
        return !m_tables.empty();
    }

    size_t getCells() const { return m_cells; }
    size_t getOwnerCells() const { return m_ownerCells; }

private:
    struct Table {
        std::vector<DatabaseRow> rows;
        size_t next = 0;
        std::map<std::string, std::string> columns; ///< by path of the field
    };

    void checkFields(const std::string& name, const DatabaseRow& row, const json& fields,
                     const std::string& path, const std::string& top, std::set<std::string>& seen)
    {
        for (const auto& [key, value] : fields.items()) {
            const std::string field = path + key;
            if (value.is_object()) {
                checkFields(name, row, value, field + '.', top, seen);
            } else if (value.is_array() && !value.empty() && value[0].is_object()) {
                for (size_t i = 0; i < value.size(); ++i) {
                    const DatabaseRow& entry =
                        check(name + '_' + field.substr(top.size()), value[i], field + '.');
                    ASSERT_FALSE(entry.empty());
                    EXPECT_EQ(entry.at("element"), i) << name;
                    EXPECT_EQ(entry.at("parent_id"), row.at("id")) << name;
                    if (entry.count("block_id") != 0) {
                        EXPECT_EQ(entry.at("block_id"), row.at("parent_id")) << name;
                    }
                    checkOwner(name + '_' + field.substr(top.size()), entry, name, row);
                }
            } else if (const auto column = m_tables[name].columns.find(field);
                       column != m_tables[name].columns.end()) {
                seen.insert(field);
                ++m_cells;
                EXPECT_TRUE(isSame(row.at(column->second), value))
                    << name << ' ' << field << ": " << row.at(column->second) << ' ' << value;
            } else {
                EXPECT_TRUE(isFiller(field) || (value.is_array() && value.empty()))
                    << name << ' ' << field;
            }
        }
    }

    /// An entry repeats what identifies the rows that it is in.
    void checkOwner(const std::string& name, const DatabaseRow& entry, const std::string& ownerName,
                    const DatabaseRow& owner)
    {
        const auto& known = m_tables[ownerName].columns;
        for (const auto& [field, column] : m_tables[name].columns) {
            if (known.count(field) == 0)
                continue;
            ++m_ownerCells;
            EXPECT_EQ(entry.at(column), owner.at(known.at(field))) << name << ' ' << field;
        }
    }

    bool m_isStored;
    std::map<std::string, Table> m_tables;
    size_t m_ownerCells = 0;
    size_t m_cells = 0;
};

class SqliteTest : public testing::TestWithParam<bool>
{
};

} // namespace

TEST_P(SqliteTest, HoldsEveryCellOfEveryType)
{
    const TemporaryFolder folder;
    const std::string path = folder.fileName("log.sqlite");
    const std::string unknown =
        runTool({"encode", "-"}, R"({"number":8191,"bytes":"JECbZf8fEADQ7d8MYAk0Eg=="})").output;
    const std::string stream = randomStream() + unknown;
    QStringList options;
    if (GetParam())
        options << "--raw";
    const ToolRun run = writeDatabase(path, options, stream);
    EXPECT_EQ(run.status, 0) << run.words;
    EXPECT_EQ(run.words + run.output, "");

    const Database database(path);
    DatabaseTables tables(database, GetParam());
    std::vector<DatabaseRow> others = database.query("SELECT * FROM tqx_other_blocks ORDER BY id");
    size_t otherCount = 0;
    size_t id = 0;
    for (const std::string& line : linesOf(
             runTool(QStringList{"dump", "--format", "jsonl"} + options + QStringList{"-"}, stream)
                 .output)) {
        ++id;
        const json message = json::parse(line);
        if (!message.contains("fields")) {
            ASSERT_LT(otherCount, others.size());
            const DatabaseRow& row = others[otherCount++];
            EXPECT_EQ(row.at("id"), id);
            EXPECT_EQ(row.at("number"), message["number"]);
            EXPECT_EQ(row.at("bytes")["bytes"].get<std::string>().substr(0, 2), "$@");
            continue;
        }
        const DatabaseRow& row = tables.check(message["block"], message["fields"]);
        ASSERT_FALSE(row.empty());
        EXPECT_EQ(row.at("id"), id);
        if (GetParam())
            continue;
        const json& time = message["time"];
        EXPECT_EQ(row.at("gnss_time"), time.is_null() ? time : time["gnss"]);
        EXPECT_EQ(row.at("utc_time"), time.is_null() ? time : time["utc"]);
    }
    EXPECT_EQ(otherCount, others.size());
    EXPECT_GT(otherCount, 0U);
    EXPECT_TRUE(tables.areRead());
    EXPECT_GT(tables.getCells(), 10000U);
    EXPECT_GT(tables.getOwnerCells(), 100U);
    EXPECT_EQ(database.texts("SELECT written_blocks FROM tqx_log"),
              std::vector<std::string>{std::to_string(id)});
    EXPECT_EQ(database.texts("SELECT bytes FROM tqx_log"),
              std::vector<std::string>{std::to_string(stream.size())});
    EXPECT_EQ(database.texts("SELECT name FROM tqx_files"),
              std::vector<std::string>{"standard input"});
    EXPECT_EQ(database.texts("PRAGMA integrity_check"), std::vector<std::string>{"ok"});
    EXPECT_TRUE(database.texts("PRAGMA foreign_key_check").empty());
}

INSTANTIATE_TEST_SUITE_P(Tool, SqliteTest, testing::Bool(),
                         [](const auto& instance) { return instance.param ? "Stored" : "Scaled"; });

TEST(SqliteDump, SelectsFieldsAndBlocks)
{
    const TemporaryFolder folder;
    const std::string path = folder.fileName("log.sqlite");
    const ToolRun run =
        writeDatabase(path,
                      {"--type", "PVTGeodetic2,MeasEpoch2", "--limit", "4", "--where",
                       "TOW >= 216002", "--field", "id,Height,Type1.Type2.CN0"},
                      runTool({"simulate", "--duration", "10", "--seed", "3"}).output);
    EXPECT_EQ(run.status, 0) << run.words;
    const Database database(path);
    EXPECT_EQ(
        database.texts("SELECT column_name FROM tqx_columns WHERE field IS NOT NULL "
                       "ORDER BY table_name, column_name"),
        (std::vector<std::string>{"ID_2", "TOW", "WNc", "CN0", "Type1_AntennaID", "Type1_SVID",
                                  "Type1_SignalType", "Height", "ID_2", "TOW", "WNc"}));
    EXPECT_EQ(database.texts("SELECT min(TOW) FROM PVTGeodetic2"),
              std::vector<std::string>{"216002.0"});
    EXPECT_EQ(database.texts("SELECT (SELECT count(*) FROM PVTGeodetic2) + "
                             "(SELECT count(*) FROM MeasEpoch2)"),
              std::vector<std::string>{"4"});
    EXPECT_TRUE(database.query("SELECT * FROM tqx_other_blocks").empty());
}

TEST(SqliteDump, KeepsWhatIsThereUntilItIsComplete)
{
    const TemporaryFolder folder;
    const std::string log = runTool({"simulate", "--duration", "60"}).output;
    const Bytes old = {'o', 'l', 'd'};
    const std::string path = folder.write("log.sqlite", old);
    const QString target = QString::fromStdString(path);
    const std::string source = folder.write("log.tqx", Bytes(log.begin(), log.end()));
    const struct {
        QStringList arguments;
        std::string words;
    } cases[] = {
        {{"-o", target, "missing.tqx"}, "missing.tqx: No such file or directory"},
        {{"-o", target, "--where", "Nothing > 1", QString::fromStdString(source)}, "Nothing"},
        {{"-o", target, target}, "is an input"},
        {{QString::fromStdString(source)}, "writes a file, name it with -o"},
        {{"-o", "/dev/null", QString::fromStdString(source)}, "is not a regular file"},
        {{"-o", QString::fromStdString(folder.fileName("no/log")), QString::fromStdString(source)},
         "No such file or directory"},
    };
    for (const auto& [arguments, words] : cases) {
        const ToolRun run = runTool(QStringList{"dump", "--format", "sqlite"} + arguments);
        EXPECT_EQ(run.status, 1) << words;
        EXPECT_NE(run.words.find(words), std::string::npos) << run.words;
    }
    // A file that may not grow is as good as a full disk.
    QProcess shell;
    const QString script =
        "trap '' XFSZ; ulimit -f 64; exec \"$0\" dump --format sqlite -o \"$1\" \"$2\"";
    shell.start("sh", {"-c", script, TQX_TOOL, target, QString::fromStdString(source)});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 1);
    EXPECT_EQ(shell.readAllStandardError().toStdString(),
              "tqx: " + path + ": disk I/O error (File too large)\n");

    EXPECT_EQ(folder.read("log.sqlite"), old);
    EXPECT_EQ(runTool({"dump", "--format", "sqlite", "-o", target, QString::fromStdString(source)})
                  .status,
              0);
    EXPECT_FALSE(Database(path).query("SELECT * FROM PVTGeodetic2").empty());
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.fileName("")))
        names.insert(entry.path().filename().string());
    EXPECT_EQ(names, (std::set<std::string>{"log.sqlite", "log.tqx"}));
}
