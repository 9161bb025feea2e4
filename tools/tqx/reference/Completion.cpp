#include "reference/Reference.h"

#include <fmt/format.h>

#include <algorithm>

namespace tqx::tool
{

namespace
{

std::vector<std::string> namesOf(const CLI::Option& option)
{
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

std::string wordsOf(const CLI::App& command)
{
    std::vector<std::string> words;
    for (const CLI::Option* option : optionsOf(command)) {
        for (std::string& name : namesOf(*option))
            words.push_back(std::move(name));
    }
    return fmt::format("{}", fmt::join(words, " "));
}

/// What completes a value, by the name that help gives it: names of main blocks, of all types, of
/// fields or of codes, one of the alternatives "a|b|c", the name of a file, or nothing.
std::string actionFor(const std::string& kind)
{
    if (kind.rfind("TYPE", 0) == 0)
        return "_tqx_list \"$(tqx types 2>/dev/null | awk '$1 != \"sub\" { print $2 }')\"";
    if (kind == "NAME")
        return "_tqx_list \"$(tqx types 2>/dev/null | awk '{ print $2 }')\"";
    if (kind.rfind("FIELD", 0) == 0 || kind == "CONDITION")
        return "_tqx_fields";
    if (kind == "CODE")
        return "_tqx_list \"$(tqx error --all | awk '{ print $2 }')\"";
    if (kind.rfind("FILE", 0) == 0)
        return "_tqx_files";
    if (kind.find('|') == std::string::npos)
        return "COMPREPLY=()";
    std::string words = kind;
    std::replace(words.begin(), words.end(), '|', ' ');
    return "_tqx_words '" + words + "'";
}

/// The cases of one command: the preceding word decides, else the positional arguments.
void appendCommand(Buffer& out, const CLI::App& command, const std::string& commands)
{
    out.append(fmt::format("    {})\n        case $previous in\n", command.get_name()));
    std::string positional = "_tqx_files";
    for (const CLI::Option* option : optionsOf(command)) {
        if (option->get_positional()) {
            const std::string name = option->get_name(true);
            positional = name == "COMMAND" ? "_tqx_words '" + commands + "'" : actionFor(name);
        } else if (option->get_items_expected_max() > 0) {
            out.append(fmt::format("        {}) {}; return ;;\n", fmt::join(namesOf(*option), "|"),
                                   actionFor(option->get_type_name())));
        }
    }
    out.append(fmt::format("        esac\n        if [[ $current == -* ]]; then\n"
                           "            _tqx_words '{}'\n        else\n            {}\n"
                           "        fi ;;\n",
                           wordsOf(command), positional));
}

} // namespace

void appendCompletion(Buffer& out, const CLI::App& program)
{
    std::vector<std::string> names;
    for (const CLI::App* command : commandsOf(program))
        names.push_back(command->get_name());
    const std::string commands = fmt::format("{}", fmt::join(names, " "));
    out.append(
        "# Completion of the arguments of tqx for bash.\n"
        "\n"
        "_tqx_words() {\n"
        "    mapfile -t COMPREPLY < <(compgen -W \"$1\" -- \"$current\")\n"
        "}\n"
        "\n"
        "_tqx_files() {\n"
        "    compopt -o filenames 2>/dev/null\n"
        "    mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
        "}\n"
        "\n"
        "# Names, of which options take several, separated by commas.\n"
        "_tqx_list() {\n"
        "    local before=\"\"\n"
        "    [[ $current == *,* ]] && before=\"${current%,*},\"\n"
        "    mapfile -t COMPREPLY < <(compgen -P \"$before\" -W \"$1\" -- \"${current##*,}\")\n"
        "}\n"
        "\n"
        "# Names of fields: those of the types that --type names, or of all.\n"
        "_tqx_fields() {\n"
        "    local i types=()\n"
        "    for ((i = 2; i < COMP_CWORD; ++i)); do\n"
        "        [[ ${COMP_WORDS[i]} == --type ]] || continue\n"
        "        [[ ${COMP_WORDS[i+1]} == = ]] && ((++i))\n"
        "        IFS=, read -ra types <<< \"${COMP_WORDS[i+1]//[\\'\\\"]/}\"\n"
        "    done\n"
        "    _tqx_list \"$(tqx types --fields \"${types[@]}\" 2>/dev/null | tr ' ' _)\"\n"
        "}\n"
        "\n"
        "_tqx() {\n"
        "    local current=\"${COMP_WORDS[COMP_CWORD]}\"\n"
        "    local previous=\"${COMP_WORDS[COMP_CWORD-1]}\"\n"
        "    # --option=value comes in three words.\n"
        "    if [[ $current == = ]]; then\n"
        "        current=\"\"\n"
        "    elif [[ $previous == = ]]; then\n"
        "        previous=\"${COMP_WORDS[COMP_CWORD-2]}\"\n"
        "    fi\n"
        "    COMPREPLY=()\n"
        "    if [[ $COMP_CWORD -eq 1 ]]; then\n");
    out.append(fmt::format("        _tqx_words '{} {}'\n        return\n    fi\n"
                           "    case ${{COMP_WORDS[1]}} in\n",
                           commands, wordsOf(program)));
    for (const CLI::App* command : commandsOf(program))
        appendCommand(out, *command, commands);
    out.append("    esac\n}\n\ncomplete -F _tqx tqx\n");
}

} // namespace tqx::tool
