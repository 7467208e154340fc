#pragma once
#include <map>
#include <set>
#include <string>
#include <vector>

namespace quillon {

// A command's arguments: positional words, "--flag", "--name=value", "--name value" and "-o value";
// "--" ends the options.
struct Arguments {
    std::vector<std::string> positional;
    std::map<std::string, std::string> values;             // the last value of each option
    std::map<std::string, std::vector<std::string>> every; // every value of each, in order
    std::set<std::string> flags;
    std::string error; // set when an argument is not one the command takes

    bool has(const std::string& flag) const { return flags.count(flag) != 0; }
    std::string value(const std::string& name, const std::string& fallback = {}) const {
        auto found = values.find(name);
        return found == values.end() ? fallback : found->second;
    }
    std::vector<std::string> all(const std::string& name) const {
        auto found = every.find(name);
        return found == every.end() ? std::vector<std::string>() : found->second;
    }
};

// Parses args against the flags and valued options a command accepts.
Arguments parseArguments(const std::vector<std::string>& args, const std::set<std::string>& flags,
                         const std::set<std::string>& valued);

} // namespace quillon
