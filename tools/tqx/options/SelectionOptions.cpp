#include "options/SelectionOptions.h"

#include "options/Numbers.h"

#include <limits>

namespace tqx::tool
{

namespace
{

void addNames(CLI::App& command, const char* name, std::vector<std::string>& names,
              const char* description)
{
    command.add_option(name, names, description)
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("TYPE,TYPE")
        ->group(SelectionOptions::group);
}

/// An empty argument is more likely an unset variable than a wish for everything.
std::string refuseEmpty(const std::string& value)
{
    return value.empty() ? "it is empty" : "";
}

} // namespace

const char* const SelectionOptions::group = "Which blocks";

const char* const SelectionOptions::notes =
    "Times: --from 2400:216000.5 is week and seconds in GNSS time, --from 2026-01-06T11:59:42Z\n"
    "UTC, --from '2026-01-06T12:00:00 GPS' GPS time; milliseconds are the finest. The week counts\n"
    "on without rollover, as in the blocks. A block whose header has no time goes with the block\n"
    "before it; those that come before any time are left out under --from and --interval.\n"
    "--interval selects blocks of all types by the time of their header, in milliseconds exactly:\n"
    "--interval 30 those at 0 and 30 seconds of each minute of GNSS time, --interval 0.5 also\n"
    "between. They count from the beginning of GNSS time, which is to say from that of each week\n"
    "where they divide it. Of a type that never comes at such a time there are none, see --every.\n"
    "\n"
    "Conditions compare fields with numbers or names: == != < <= > >=, joined by and, or, not and\n"
    "parentheses; `has Field` asks whether there is an available value. A field is Field or\n"
    "Block.Field, one of sub-blocks Block.Type1.SVID or just SVID; an underscore is read as a\n"
    "blank in its name. Numbers are in the unit that dump shows, names and texts are in quotes.\n"
    "Of arrays and sub-blocks any element may match. A comparison with a field that is absent or\n"
    "not available is false, for != as well.\n"
    "`like` compares a name or text with a pattern, ignoring case: * is any run of characters,\n"
    "? any one. any(Field: condition) holds where one sub-block of Field meets all of a "
    "condition,\n"
    "which names fields of that sub-block.\n"
    "  --where 'NrSV >= 8 and HAccuracy < 0.05'\n"
    "  --where 'PVTMode == \"RTK fixed\" or not has Height'\n"
    "  --where 'SVID == \"G05\"'              # in any of the sub-blocks\n"
    "  --where 'any(Type1: SVID like \"G*\" and CN0_dBHz > 45)'   # both in the same\n"
    "\n"
    "Several files are one stream: a block may begin in one and end in the next. A compressed\n"
    "one is recognised by its first bytes; offsets are those of what it holds, but that of damage\n"
    "of the compression is one of the file.\n"
    "\n"
    "With an index beside the only input, see tqx help index, blocks chosen by type or time are\n"
    "found by it and the others not read; output and reports are the same. Damage since the index\n"
    "was saved, in blocks that are not chosen, is not noticed then; --no-index reads everything.\n"
    "\n"
    "A false header may claim 65,535 bytes, and what is intact in them is not looked at until "
    "they\n"
    "have come. Under --live such a header is passed over, where whole blocks follow it, once its\n"
    "number or length fits no type or nothing has come for --pause seconds. A block on its way\n"
    "that has a whole block in its body may be lost to that, so that files are read without.\n";

void SelectionOptions::addTypes(CLI::App& command)
{
    addNames(command, "--type", m_request.types,
             "Only blocks of these types: names, block numbers, or patterns such as 'PVT*'");
    addNames(command, "--not-type", m_request.notTypes, "No blocks of these types");
}

void SelectionOptions::addConditions(CLI::App& command)
{
    command
        .add_option("--from", m_request.from,
                    "Only from this time on: GNSS week:seconds, or a date in UTC or GPS time such "
                    "as 2026-01-06T11:59:42Z or '2026-01-06T12:00:00 GPS'")
        ->type_name("TIME")
        ->check(refuseEmpty)
        ->group(group);
    command.add_option("--to", m_request.to, "Only before this time, written like that of --from")
        ->type_name("TIME")
        ->check(refuseEmpty)
        ->group(group);
    command
        .add_option("--where", m_request.where,
                    "Only blocks whose fields meet a condition, such as "
                    "'NrSV >= 8 and not has COG'")
        ->type_name("CONDITION")
        ->check(refuseEmpty)
        ->group(group);
    addReal(command, "--interval", m_request.interval, 0.001, static_cast<double>(secondsPerWeek),
            "seconds",
            "Only blocks at multiples of this in GNSS time, such as 30 for every half minute")
        ->type_name("SECONDS")
        ->default_str("")
        ->group(group);
    addWhole(command, "--every", m_request.every, 1, std::numeric_limits<uint32_t>::max(),
             "The first selected block of each type, then every N-th")
        ->type_name("N")
        ->default_str("")
        ->group(group);
}

} // namespace tqx::tool
