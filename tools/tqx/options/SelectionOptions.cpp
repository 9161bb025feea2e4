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
    "UTC, --from '2026-01-06T12:00:00 GPS' GPS time, with up to three decimals. Weeks are\n"
    "counted without rollover, as in the blocks. A block whose header has no time is\n"
    "treated like the block before it; --from and --interval leave out blocks before the\n"
    "first time. --interval selects blocks of all types whose header has exactly a\n"
    "multiple of that time: --interval 30 those at 0 and 30 seconds of each minute of\n"
    "GNSS time, --interval 0.5 also those at half seconds. Multiples count from the start\n"
    "of GNSS time, and so from the start of each week if the interval divides it. A type\n"
    "that never has such a time is left out entirely, see --every.\n"
    "\n"
    "Conditions compare fields with numbers or names: == != < <= > >=, joined by and, or, not and\n"
    "parentheses; `has Field` asks whether there is an available value. A field is Field\n"
    "or Block.Field, or in sub-blocks Block.Type1.SVID or just SVID; an underscore may\n"
    "stand for a blank. Numbers are in the unit that dump shows; names and texts are in\n"
    "quotes. For arrays and sub-blocks, it is enough that one element matches. A\n"
    "comparison with a field that is absent or not available is false, even with !=.\n"
    "`like` compares a name or text with a pattern, ignoring case: * matches any\n"
    "characters, ? any single one. any(Field: condition) holds if one sub-block of Field\n"
    "meets the whole condition, which names fields of that sub-block.\n"
    "  --where 'NrSV >= 8 and HAccuracy < 0.05'\n"
    "  --where 'PVTMode == \"RTK fixed\" or not has Height'\n"
    "  --where 'SVID == \"G05\"'              # in any of the sub-blocks\n"
    "  --where 'any(Type1: SVID like \"G*\" and CN0_dBHz > 45)'   # both in the same\n"
    "\n"
    "Several files are one stream: a block may begin in one and end in the next.\n"
    "Compressed files are recognised by their first bytes; offsets are those of the\n"
    "decompressed content, except that damage to the compression has its offset in the\n"
    "file.\n"
    "\n"
    "If the only input has an index beside it (see tqx help index), blocks chosen by type\n"
    "or time are found by the index and others are not read; output and reports are the\n"
    "same. Damage done after the index was saved goes unnoticed in blocks that are not\n"
    "read; --no-index reads everything.\n"
    "\n"
    "A false header may claim 65,535 bytes, and hold back intact blocks among them until\n"
    "all of these bytes have arrived. With --live such a header is skipped if complete\n"
    "blocks follow it, once its number or length fits no type or nothing has arrived for\n"
    "--pause seconds. This may lose a block in transmission whose body contains a\n"
    "complete block, so do not use --live for files.\n";

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
             "Keep every Nth selected block of each type, starting with the first")
        ->type_name("N")
        ->default_str("")
        ->group(group);
}

} // namespace tqx::tool
