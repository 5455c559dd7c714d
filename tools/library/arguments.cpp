#include "tools/library/arguments.h"

#include <algorithm>
#include <array>

namespace kestrune {
namespace {

enum class Operand : unsigned char { None, Optional, Required };

struct Command {
    std::string_view name;
    Operand operand;
    bool dry_run;
    bool update;
};

constexpr std::array<Command, 8> commands{{{"import", Operand::Required, true, true},
                                           {"export", Operand::Optional, false, false},
                                           {"check", Operand::None, false, false},
                                           {"statistics", Operand::None, false, false},
                                           {"report", Operand::Optional, false, false},
                                           {"rank", Operand::None, false, false},
                                           {"merge", Operand::Required, true, false},
                                           {"convert", Operand::None, false, false}}};

const Command* find_command(std::string_view name) {
    const auto* const found = std::find_if(commands.begin(), commands.end(),
                                           [name](const Command& command) { return command.name == name; });
    return found == commands.end() ? nullptr : found;
}

std::optional<WrongUsage> check(const LibraryArguments& read) {
    if (read.help)
        return std::nullopt;
    if (read.command.empty())
        return WrongUsage{"no command"};
    const Command* const command = find_command(read.command);
    if (command == nullptr)
        return WrongUsage{"no such command: " + read.command};
    if (command->operand == Operand::Required && !read.operand)
        return WrongUsage{read.command + " needs a file"};
    if (command->operand == Operand::None && read.operand)
        return WrongUsage{read.command + " takes no file: " + *read.operand};
    if (read.dry_run && !command->dry_run)
        return WrongUsage{"--dry-run does not go with " + read.command};
    if (read.update && !command->update)
        return WrongUsage{"--update does not go with " + read.command};
    return std::nullopt;
}

} // namespace

std::optional<WrongUsage> read_arguments(const std::vector<std::string>& arguments, LibraryArguments& read) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            read.help = true;
        } else if (argument == "--dry-run") {
            read.dry_run = true;
        } else if (argument == "--update") {
            read.update = true;
        } else if (argument == "--folder") {
            if (++i == arguments.size())
                return WrongUsage{"--folder needs a folder"};
            read.folder = arguments[i];
        } else if (argument.starts_with("-") && argument != "-") {
            return WrongUsage{"no such option: " + argument};
        } else if (read.command.empty()) {
            read.command = argument;
        } else if (!read.operand) {
            read.operand = argument;
        } else {
            return WrongUsage{"one file too many: " + argument};
        }
    }
    return check(read);
}

std::string_view library_tool_help() {
    return R"(usage: kestrune-library [--folder FOLDER] COMMAND [FILE]

Looks after the site library SubmitList.mdb in FOLDER, by default the program's own folder.

  import FILE      adds the sites of a CSV file; its first line names the columns (url and description
                   at least). A site whose address is there already is reported and left alone;
                   with --update it gets the values that the file has for it
  export [FILE]    writes every site and column as CSV, to the terminal when no file is given
  check            reports rows that the program cannot work with
  statistics       counts the sites by category and status
  report [FILE]    writes a page with all submissions, their status, category and note, to print or send
  rank             ranks the sites by the hits of their addresses in referral2.mdb; Ctrl+C ends it, and
                   sites ranked by then keep their rank
  merge FILE       adds the sites that a newer SubmitList.mdb has and this one never had
  convert          converts SubmitList.mdb and referral2.mdb made with Access; the program does so by
                   itself when it starts

  --dry-run        import, merge: says what would be done and does nothing
  --update         import: see there
  --help           this text

Before its first change a command copies the library to the folder "backup" beside it, and what one command
changes is stored together or not at all (but for rank, which goes on from site to site).

Exit codes: 0 done; 1 done, but there is something to look at (lines refused, problems found, ended early);
2 called in a way that makes no sense; 3 not done.
)";
}

} // namespace kestrune
