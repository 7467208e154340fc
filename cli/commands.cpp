#include "cli/commands.h"

#include "app/file_commands.h"
#include "cli/arguments.h"
#include "cli/cli_dialogs.h"

#include <functional>
#include <iostream>

namespace quillon {

namespace {

const char* const kUsage = R"(usage: quillon COMMAND [ARGUMENTS]

Commands:
  counts FILE                      open FILE; print its log lines and the 57 record counts
  save FILE [-o OUT]               open FILE and save it back (or to OUT)

Options that every command which opens a file takes:
  --unknown=ask|yes|no|yes-to-all  what to do at a record of unknown type (default: keep it and
                                   every further one, with a warning)
  --yes                            answer yes when asked to write a savegame
Log lines go to standard error. Exit status: 0 success, 1 failure, 2 bad usage.
)";

struct Context {
    const Arguments& args;
    std::ostream& out;
    std::ostream& err;
    Session session;
    CliDialogs dialogs;
};

using Handler = std::function<int(Context&)>;

struct Command {
    const char* name;
    std::size_t positional; // how many positional arguments it needs
    std::set<std::string> flags;
    std::set<std::string> valued;
    Handler run;
};

int countsCommand(Context& c) {
    double ms = openPath(c.session, c.dialogs, c.args.positional[0]);
    for (std::size_t i = 0; i < kCountLabels; ++i)
        c.out << countCaption(i) << ' ' << c.session.counts.shown[i] << '\n';
    return ms > 0 ? 0 : 1;
}

int saveCommand(Context& c) {
    if (openPath(c.session, c.dialogs, c.args.positional[0]) <= 0) return 1;
    std::string target = c.args.value("-o");
    bool ok = target.empty() ? Save(c.session, c.dialogs) : saveAsPath(c.session, c.dialogs, target);
    return ok ? 0 : 1;
}

const std::vector<Command>& commands() {
    static const std::vector<Command> list = {
        {"counts", 1, {"--help"}, {"--unknown"}, countsCommand},
        {"save", 1, {"--help", "--yes"}, {"--unknown", "-o"}, saveCommand},
    };
    return list;
}

bool setUnknownMode(CliDialogs& dialogs, const std::string& mode) {
    if (mode.empty()) return true;
    if (mode == "ask") dialogs.unknown = CliDialogs::Unknown::Ask;
    else if (mode == "yes") dialogs.unknown = CliDialogs::Unknown::Yes;
    else if (mode == "no") dialogs.unknown = CliDialogs::Unknown::No;
    else if (mode == "yes-to-all") dialogs.unknown = CliDialogs::Unknown::YesToAll;
    else return false;
    return true;
}

} // namespace

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        (args.empty() ? err : out) << kUsage;
        return args.empty() ? 2 : 0;
    }
    for (const Command& command : commands()) {
        if (args[0] != command.name) continue;
        Arguments parsed = parseArguments({args.begin() + 1, args.end()}, command.flags, command.valued);
        if (parsed.has("--help")) {
            out << kUsage;
            return 0;
        }
        if (!parsed.error.empty() || parsed.positional.size() != command.positional) {
            err << "quillon " << command.name << ": "
                << (parsed.error.empty() ? "wrong number of arguments" : parsed.error) << "\n\n"
                << kUsage;
            return 2;
        }
        Context c{parsed, out, err, {}, {}};
        if (!setUnknownMode(c.dialogs, parsed.value("--unknown"))) {
            err << "quillon: --unknown takes ask, yes, no or yes-to-all\n";
            return 2;
        }
        c.dialogs.yes = parsed.has("--yes");
        c.dialogs.err = &err;
        c.session.log.onLine = [&err](const std::string& line) { err << forTerminal(line) << '\n'; };
        try {
            return command.run(c);
        } catch (const CliError& e) {
            err << "quillon: " << e.what() << "\n";
            return 1;
        }
    }
    err << "quillon: unknown command \"" << args[0] << "\"\n\n" << kUsage;
    return 2;
}

} // namespace quillon
