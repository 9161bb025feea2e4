#include "reference/Reference.h"

#include <fmt/format.h>

#include <sstream>

namespace tqx::tool
{

namespace
{

/// Text escaped so that man shows it unchanged.
std::string plain(const std::string& text)
{
    std::string escaped;
    for (const char character : text) {
        if (character == '\\') {
            escaped += "\\e";
        } else if (character == '-' || character == '\'' || character == '`') {
            escaped += character == '-' ? "\\-" : character == '\'' ? "\\(aq" : "\\(ga";
        } else {
            escaped += character;
        }
    }
    return !escaped.empty() && escaped.front() == '.' ? "\\&" + escaped : escaped;
}

std::string bold(const std::string& text)
{
    return "\\fB" + plain(text) + "\\fR";
}

/// "-o, --output FILE"
std::string headOf(const CLI::Option& option)
{
    std::string head;
    for (const std::string& name : option.get_snames())
        head += (head.empty() ? "" : ", ") + bold("-" + name);
    for (const std::string& name : option.get_lnames())
        head += (head.empty() ? "" : ", ") + bold("--" + name);
    if (option.get_items_expected_max() > 0 && !option.get_type_name().empty())
        head += " \\fI" + plain(option.get_type_name()) + "\\fR";
    return head;
}

class ManPage
{
public:
    explicit ManPage(Buffer& buffer) : m_out(buffer) {}

    void append(const CLI::App& program, const std::string& version);

private:
    void line(const std::string& text) { m_out.append(text + "\n"); }
    void appendNotes(const std::string& notes);
    void appendOptions(const CLI::App& command);
    void appendCommand(const CLI::App& program, const CLI::App& command);

    Buffer& m_out;
};

/// Paragraphs, and examples, which are indented.
void ManPage::appendNotes(const std::string& notes)
{
    std::istringstream lines(notes);
    bool isExample = false;
    bool isNew = true;
    for (std::string text; std::getline(lines, text);) {
        const bool isIndented = text.rfind("  ", 0) == 0;
        if (isIndented != isExample && !text.empty()) {
            line(isIndented ? ".PP\n.nf\n.RS" : ".RE\n.fi\n.PP");
            isExample = isIndented;
        } else if (text.empty()) {
            isNew = true;
            continue;
        } else if (isNew) {
            line(".PP");
        }
        isNew = false;
        line(plain(isIndented ? text.substr(2) : text));
    }
    if (isExample)
        line(".RE\n.fi");
}

void ManPage::appendOptions(const CLI::App& command)
{
    for (const CLI::Option* option : optionsOf(command)) {
        if (option->get_positional()) {
            line(".TP\n\\fI" + plain(option->get_name(true)) + "\\fR");
            line(plain(option->get_description()));
            continue;
        }
        line(".TP\n" + headOf(*option));
        line(plain(option->get_description()));
        if (!option->get_default_str().empty())
            line(plain(fmt::format("(default: {})", option->get_default_str())));
    }
}

void ManPage::appendCommand(const CLI::App& program, const CLI::App& command)
{
    std::string usage = program.get_name() + " " + command.get_name() + " [OPTION]...";
    for (const CLI::Option* option : optionsOf(command)) {
        if (!option->get_positional())
            continue;
        const std::string argument =
            option->get_name(true) + (option->get_items_expected_max() > 1 ? "..." : "");
        usage += option->get_required() ? " " + argument : " [" + argument + "]";
    }
    line(".SS " + plain(command.get_name()));
    line(bold(usage));
    line(".PP\n" + plain(command.get_description()) + ".");
    appendOptions(command);
    appendNotes(command.get_footer());
}

void ManPage::append(const CLI::App& program, const std::string& version)
{
    const std::string& name = program.get_name();
    line(fmt::format(".TH {} 1 \"\" \"{}\" \"User Commands\"", name, plain(version)));
    line(".SH NAME\n" + name + " \\- reads and writes streams of TQX blocks");
    line(".SH SYNOPSIS\n" + bold(name) + " \\fICOMMAND\\fR [\\fIOPTION\\fR]... [\\fIFILE\\fR]...");
    line(".SH DESCRIPTION\n" + plain(program.get_description()));
    appendNotes("\n" + program.get_footer());
    line(".SH OPTIONS");
    appendOptions(program);
    line(".SH COMMANDS");
    for (const CLI::App* command : commandsOf(program))
        appendCommand(program, *command);
}

} // namespace

void appendManPage(Buffer& out, const CLI::App& program, const std::string& version)
{
    ManPage(out).append(program, version);
}

} // namespace tqx::tool
