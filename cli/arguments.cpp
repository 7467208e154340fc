#include "cli/arguments.h"

namespace quillon {

Arguments parseArguments(const std::vector<std::string>& args, const std::set<std::string>& flags,
                         const std::set<std::string>& valued) {
    Arguments a;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (!optionsEnded && arg == "--") {
            optionsEnded = true;
            continue;
        }
        if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
            a.positional.push_back(arg);
            continue;
        }
        std::string name = arg, value;
        bool hasValue = false;
        if (std::size_t eq = arg.find('='); eq != std::string::npos) {
            name = arg.substr(0, eq);
            value = arg.substr(eq + 1);
            hasValue = true;
        }
        if (valued.count(name)) {
            if (!hasValue) {
                if (i + 1 >= args.size()) {
                    a.error = name + " needs a value";
                    return a;
                }
                value = args[++i];
            }
            // An empty output name would otherwise mean "no -o": the input itself.
            if (name == "-o" && value.empty()) {
                a.error = "-o needs a file name";
                return a;
            }
            a.values[name] = value;
            a.every[name].push_back(value);
        } else if (flags.count(name) && !hasValue) {
            a.flags.insert(name);
        } else {
            a.error = "unknown option " + arg;
            return a;
        }
    }
    return a;
}

} // namespace quillon
