#include "RandomStream.h"
#include "Tool.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

// The tables against the same messages as JSON.

using nlohmann::ordered_json;

namespace
{

using Row = std::vector<std::string>;

/// Rows of cells as RFC 4180 has them.
std::vector<Row> parseCsv(const std::string& text)
{
    std::vector<Row> rows(1, Row(1));
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (character == '"' && quoted && text[i + 1] == '"') {
            rows.back().back() += text[++i];
        } else if (character == '"') {
            quoted = !quoted;
        } else if (quoted || (character != ',' && character != '\n')) {
            rows.back().back() += character;
        } else if (character == ',') {
            rows.back().emplace_back();
        } else {
            rows.emplace_back(1);
        }
    }
    EXPECT_FALSE(quoted);
    EXPECT_EQ(rows.back(), Row(1));
    rows.pop_back();
    return rows;
}

class Tables
{
public:
    explicit Tables(const QString& folder)
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder.toStdString())) {
            std::ostringstream content;
            content << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            m_tables[entry.path().stem().string()] = {parseCsv(content.str()), 1};
        }
    }

    /// The cells of the next row of a table, by the names of their columns without unit.
    std::map<std::string, std::string> next(const std::string& table)
    {
        std::map<std::string, std::string> cells;
        auto& [rows, at] = m_tables[table];
        if (rows.size() <= at || rows[at].size() != rows[0].size()) {
            ADD_FAILURE() << table << ": row " << at;
            return cells;
        }
        for (size_t i = 0; i < rows[0].size(); ++i)
            cells[rows[0][i].substr(0, rows[0][i].find(" ["))] = rows[at][i];
        ++at;
        return cells;
    }

    bool areRead() const
    {
        return std::all_of(m_tables.begin(), m_tables.end(), [](const auto& table) {
            return table.second.second == table.second.first.size();
        });
    }

private:
    std::map<std::string, std::pair<std::vector<Row>, size_t>> m_tables;
};

/// A value as a cell; numbers as those of JSON are read.
std::string asCell(const ordered_json& value)
{
    if (value.is_null())
        return "";
    if (value.is_string())
        return value.get<std::string>();
    if (!value.is_array())
        return value.dump();
    std::string cell;
    for (size_t i = 0; i < value.size(); ++i)
        cell += (i == 0 ? "" : ";") + asCell(value[i]);
    return cell;
}

bool isSameCell(const std::string& cell, const ordered_json& value)
{
    return value.is_number_float() ? std::strtod(cell.c_str(), nullptr) == value.get<double>()
                                   : cell == asCell(value);
}

/// Fields that the tables leave out.
bool isFiller(const std::string& name)
{
    static const std::set<std::string> header = {"Sync1",       "Sync2",    "CRC",    "ID",
                                                 "BlockNumber", "Revision", "Length", "TOWc"};
    return header.count(name) != 0 || name.rfind("_padding", 0) == 0;
}

size_t compare(Tables& tables, const std::string& table, const ordered_json& fields,
               const std::string& index);

size_t compareFields(Tables& tables, const std::string& table, const ordered_json& fields,
                     const std::map<std::string, std::string>& row, const std::string& prefix)
{
    size_t compared = 0;
    for (const auto& [name, value] : fields.items()) {
        const auto cell = row.find(prefix + name);
        if (value.is_object()) {
            compared += compareFields(tables, table, value, row, name + '.');
        } else if (value.is_array() && !value.empty() && value[0].is_object()) {
            for (size_t i = 0; i < value.size(); ++i)
                compared += compare(tables, table + '.' + name, value[i], std::to_string(i));
        } else if (cell != row.end()) {
            EXPECT_TRUE(isSameCell(cell->second, value)) << table << '.' << name << ": " << value;
            ++compared;
        } else {
            EXPECT_TRUE(isFiller(name) || value == ordered_json::array()) << table << '.' << name;
        }
    }
    return compared;
}

size_t compare(Tables& tables, const std::string& table, const ordered_json& fields,
               const std::string& index)
{
    const std::map<std::string, std::string> row = tables.next(table);
    const std::string field = table.substr(table.rfind('.') + 1);
    if (field != table) {
        EXPECT_EQ(row.at(field + " index"), index);
    }
    return compareFields(tables, table, fields, row, "");
}

/// Compares the tables of a folder with JSON Lines, dumped with the same arguments.
void compareDumps(const QStringList& arguments)
{
    const std::string stream = randomStream();
    const QTemporaryDir folder;
    const QString target = folder.filePath("a/b");
    const ToolRun run =
        runTool(QStringList{"dump", "-", "--format", "csv", "-o", target} + arguments, stream);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.words + run.output, "");
    Tables tables(target);
    size_t compared = 0;
    const ToolRun lines =
        runTool(QStringList{"dump", "-", "--format", "jsonl"} + arguments, stream);
    for (const std::string& line : linesOf(lines.output)) {
        ordered_json message = ordered_json::parse(line);
        if (!message.contains("block"))
            continue;
        // The key columns have these in units.
        if (arguments.contains("--raw")) {
            for (const char* name : {"TOW", "WNc"})
                message["fields"].erase(name);
        }
        compared += compare(tables, message["block"], message["fields"], "");
    }
    EXPECT_TRUE(tables.areRead());
    EXPECT_GT(compared, 5000U);
}

} // namespace

TEST(Csv, FolderHoldsWhatJsonLinesHold)
{
    compareDumps({});
}

TEST(Csv, StoredValuesAreThoseOfRawJsonLines)
{
    compareDumps({"--raw"});
}

TEST(Csv, FileIsWhatStandardOutputIs)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("position.CSV");
    const QStringList arguments = {"dump", "data/samples/random.tqx", "--type", "4007", "--format",
                                   "csv"};
    EXPECT_EQ(runTool(arguments + QStringList{"-o", file}).status, 0);
    std::ostringstream content;
    content << std::ifstream(file.toStdString(), std::ios::binary).rdbuf();
    EXPECT_EQ(content.str(), runTool(arguments).output);
    EXPECT_GT(linesOf(content.str()).size(), 1U);
}

// Spreadsheets take such texts for formulas.
TEST(Csv, SafeTextsDoNotBeginLikeFormulas)
{
    struct Case {
        const char* text;
        const char* cell;
        const char* safe;
    };
    const Case cases[] = {{"=1+2", "=1+2", "'=1+2"},
                          {"+1", "+1", "'+1"},
                          {"-1", "-1", "'-1"},
                          {"@x", "@x", "'@x"},
                          {"\\tx", "\tx", "'\tx"},
                          {"\\r=x", "\r=x", "'\r=x"},
                          {"=a,\\\"b\\\"", "=a,\"b\"", "'=a,\"b\""},
                          {"1=1", "1=1", "1=1"},
                          {"'=", "'=", "'="},
                          {"", "", ""}};
    for (const Case& one : cases) {
        const std::string line =
            R"({"block":"ASCIIIn","fields":{"TOW":1000,"WNc":2400,"ASCIIString":")" +
            std::string(one.text) + "\"}}";
        const std::string stream = runTool({"encode", "-"}, line).output;
        const QStringList arguments = {"dump",   "-",       "--format", "csv",
                                       "--type", "ASCIIIn", "--field",  "StringLn,ASCIIString"};
        const auto cellOf = [&](const QStringList& more) {
            const std::vector<Row> rows = parseCsv(runTool(arguments + more, stream).output);
            return rows.at(1).at(5);
        };
        EXPECT_EQ(cellOf({}), one.cell);
        EXPECT_EQ(cellOf({"--csv-safe"}), one.safe);
    }
}

// Numbers below zero begin like formulas, too, and stay numbers.
TEST(Csv, SafeTablesDifferInTextsAlone)
{
    const QStringList arguments = {
        "dump", "data/samples/random.tqx", "--type", "PVTGeodetic2", "--format", "csv"};
    const std::string table = runTool(arguments).output;
    EXPECT_NE(table.find(",-"), std::string::npos);
    EXPECT_EQ(runTool(arguments + QStringList{"--csv-safe"}).output, table);
}

TEST(Csv, FolderThatHoldsAnInputIsRefused)
{
    enum class Kind { File, Symbolic, Hard, Other };
    struct Case {
        Kind kind;
        const char* name;
        QStringList more;
        bool isRefused;
    };
    const Case cases[] = {{Kind::File, "PVTGeodetic2.csv", {}, true},
                          {Kind::Symbolic, "PVTGeodetic2.csv", {}, true},
                          {Kind::Hard, "MeasEpoch2.Type1.csv", {}, true},
                          {Kind::File, "PVTGeodetic2.csv", {"--type", "MeasEpoch2"}, false},
                          {Kind::File, "log.csv", {}, false},
                          {Kind::Other, "PVTGeodetic2.csv", {}, false}};
    const std::string content = testData("data/samples/random.tqx");
    for (const Case& one : cases) {
        const QTemporaryDir folder;
        namespace fs = std::filesystem;
        const fs::path place = fs::path(folder.path().toStdString()) / one.name;
        const fs::path log =
            one.kind == Kind::File ? place : fs::path(folder.path().toStdString()) / "log.tqx";
        std::ofstream(log, std::ios::binary) << content;
        if (one.kind == Kind::Symbolic) {
            fs::create_symlink(log, place);
        } else if (one.kind == Kind::Hard) {
            fs::create_hard_link(log, place);
        } else if (one.kind == Kind::Other) {
            std::ofstream(place) << "an older table\n";
        }
        const ToolRun run = runTool(QStringList{"dump", QString::fromStdString(log.string()),
                                                "--format", "csv", "-o", folder.path()} +
                                    one.more);
        EXPECT_EQ(run.status, one.isRefused ? 1 : 0) << one.name << ": " << run.words;
        EXPECT_EQ(run.words.find("is an input") != std::string::npos, one.isRefused) << run.words;
        std::ostringstream left;
        left << std::ifstream(log, std::ios::binary).rdbuf();
        EXPECT_TRUE(left.str() == content) << one.name;
        const auto files = std::distance(fs::directory_iterator(folder.path().toStdString()), {});
        EXPECT_EQ(files > 2, !one.isRefused);
    }
}

TEST(Csv, NameWithTheEndingAloneIsAFile)
{
    const QTemporaryDir folder;
    const ToolRun run = runTool({"dump", "data/samples/random.tqx", "--type", "4007", "--format",
                                 "csv", "-o", folder.filePath(".csv")});
    EXPECT_EQ(run.status, 0) << run.words;
    EXPECT_TRUE(std::filesystem::is_regular_file(folder.filePath(".csv").toStdString()));
}

// Many tables are more than the process keeps open, and a simulated log is more than one batch.
TEST(Csv, FoldersAreTheSameWhateverTheThreads)
{
    const QTemporaryDir folder;
    const QString log = folder.filePath("log.tqx");
    ASSERT_EQ(runTool({"simulate", "--duration", "60", "-o", log}).status, 0);
    const QString random = folder.filePath("random.tqx");
    std::ofstream(random.toStdString(), std::ios::binary) << randomStream();
    const auto dump = [&](const char* name, const QStringList& more) {
        const QString target = folder.filePath(name);
        const ToolRun run =
            runTool(QStringList{"dump", log, random, log, "--format", "csv", "-o", target} + more);
        EXPECT_EQ(run.status, 0) << run.words;
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(target.toStdString())) {
            std::ostringstream content;
            content << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            files[entry.path().filename().string()] = content.str();
        }
        return files;
    };
    const std::map<std::string, std::string> tables = dump("threads", {});
    EXPECT_GT(tables.size(), 250U);
    EXPECT_TRUE(tables == dump("thread", {"--live"}));
    const std::vector<Row> rows = parseCsv(tables.at("PVTGeodetic2.csv"));
    for (size_t row = 1; row < rows.size(); ++row)
        EXPECT_EQ(rows[row][0], std::to_string(row - 1));
    EXPECT_GT(rows.size(), 120U);
}

// Conditions on rows against the same conditions on the cells of all rows.
TEST(Csv, RowsAreThoseThatMeetTheCondition)
{
    struct Case {
        const char* condition;
        const char* table; ///< in the folder; "" for the one table with all in it
        bool (*meets)(const std::map<std::string, std::string>& row);
        bool hasNone = false;
    };
    using Cells = std::map<std::string, std::string>;
    static const auto number = [](const Cells& row, const char* column) {
        const std::string& cell = row.at(column);
        return cell.empty() ? std::nan("") : std::strtod(cell.c_str(), nullptr);
    };
    const Case cases[] = {
        {"CN0_dBHz > 40", "MeasEpoch2.Type1",
         [](const Cells& row) { return number(row, "CN0_dBHz [decibelhertz]") > 40; }},
        {"SVID like 'G*' and CN0_dBHz > 40", "MeasEpoch2.Type1",
         [](const Cells& row) {
             return row.at("SVID")[0] == 'G' && number(row, "CN0_dBHz [decibelhertz]") > 40;
         }},
        {"CN0_dBHz > 45", "MeasEpoch2.Type1.Type2", // its own, not that of Type1
         [](const Cells& row) { return number(row, "CN0_dBHz [decibelhertz]") > 45; }},
        {"CN0_dBHz > 40", "MeasEpoch2", [](const Cells&) { return false; }, true},
        {"N1 >= 30 and not TOW < 216010", "MeasEpoch2",
         [](const Cells& row) {
             return number(row, "N1") >= 30 && number(row, "TOW [second]") >= 216010;
         }},
        {"SVID like 'G*' and Type2.CN0_dBHz > 30 and Type1.CN0_dBHz > 40", "",
         [](const Cells& row) {
             return row.at("Type1.SVID")[0] == 'G' &&
                    number(row, "Type1.Type2.CN0_dBHz [decibelhertz]") > 30 &&
                    number(row, "Type1.CN0_dBHz [decibelhertz]") > 40;
         }},
        {"MeasEpoch2.TOW < 216010 and MeasEpoch2.Type1.SVID == 'G04'", "", [](const Cells& row) {
             return number(row, "TOW [second]") < 216010 && row.at("Type1.SVID") == "G04";
         }}};
    const QTemporaryDir folder;
    const QString log = folder.filePath("log.tqx");
    ASSERT_EQ(runTool({"simulate", "--duration", "20", "-o", log}).status, 0);
    const auto rowsOf = [&](const std::string& table, const QStringList& more) {
        QStringList arguments = {"dump", log, "--type", "MeasEpoch2", "--format", "csv"};
        const QString target = folder.filePath("tables");
        if (!table.empty())
            arguments += QStringList{"-o", target};
        const ToolRun run = runTool(arguments + more);
        EXPECT_EQ(run.words, "");
        if (table.empty())
            return parseCsv(run.output);
        std::ostringstream content;
        content << std::ifstream(target.toStdString() + '/' + table + ".csv").rdbuf();
        return parseCsv(content.str());
    };
    for (const Case& one : cases) {
        const std::vector<Row> all = rowsOf(one.table, {});
        std::vector<Row> expected = {all[0]};
        for (size_t row = 1; row < all.size(); ++row) {
            Cells cells;
            for (size_t column = 0; column < all[0].size(); ++column)
                cells[all[0][column]] = all[row][column];
            if (one.meets(cells))
                expected.push_back(all[row]);
        }
        EXPECT_LT(expected.size(), all.size()) << one.condition;
        EXPECT_EQ(expected.size() == 1, one.hasNone) << one.condition;
        EXPECT_EQ(rowsOf(one.table, {"--rows", one.condition}), expected) << one.condition;
    }
}

TEST(Csv, ConditionsOnRowsAreChecked)
{
    struct Case {
        const char* condition;
        const char* words;
    };
    const Case cases[] = {
        {"SVIDs == 'G01'", "no field of a selected row named SVIDs, did you mean SVID?"},
        {"Latitude > 1", "no field of a selected row named Latitude"},
        {"Type2.SVID == 'G01'", "no field of a selected row named Type2.SVID"},
        {"any(Type1: CN0 > 3)", "any is only for blocks"},
        {"SVID > 'G01'", "SVID can be compared with a name or text by"},
        {"Type1 == 3", "Type1 holds sub-blocks"},
        {"CN0 >", "--rows: "}};
    for (const Case& one : cases) {
        const ToolRun run = runTool({"dump", "tool/data/documented.jsonl", "--type", "MeasEpoch2",
                                     "--format", "csv", "--rows", one.condition});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.words.find("tqx: --rows: "), 0U) << run.words;
        EXPECT_NE(run.words.find(one.words), std::string::npos) << run.words;
    }
}
