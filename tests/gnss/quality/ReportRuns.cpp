#include "ReportRuns.h"

#include <sstream>

nlohmann::json reportsOf(const ToolRuns& runs, const std::string& arguments)
{
    return nlohmann::json::parse(runs.expectRun("report --json " + arguments))["logs"];
}

void rewrite(const ToolRuns& runs, const std::string& from, const std::string& to,
             const std::function<void(const std::string& name, nlohmann::json& fields)>& change)
{
    std::istringstream lines(runs.expectRun("dump --raw --format jsonl " + from));
    std::string changed;
    for (std::string line; std::getline(lines, line);) {
        nlohmann::json block = nlohmann::json::parse(line);
        change(block["block"], block["fields"]);
        changed += block.dump() + "\n";
    }
    runs.write("lines.jsonl", changed);
    runs.expectRun("encode lines.jsonl -o " + to);
}
