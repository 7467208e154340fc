#include "app/openmw_config.h"

#include "app/game_folder.h"
#include "records/source_bytes.h"

#include <filesystem>
#include <sstream>

namespace quillon {

namespace fs = std::filesystem;

namespace {

std::string trimmed(const std::string& s) {
    std::size_t first = s.find_first_not_of(" \t\r"), last = s.find_last_not_of(" \t\r");
    return first == std::string::npos ? std::string() : s.substr(first, last - first + 1);
}

// A value as the engine takes it: in quotes, & escapes the next character and the closing quote
// ends it; otherwise the text as it stands.
std::string unquoted(const std::string& value) {
    if (value.empty() || value.front() != '"') return value;
    std::string out;
    for (std::size_t i = 1; i < value.size(); ++i) {
        if (value[i] == '&' && i + 1 < value.size())
            out += value[++i];
        else if (value[i] == '"')
            break;
        else
            out += value[i];
    }
    return out;
}

std::string userFolder(const FolderSearch& s, const char* variable, const char* fallback) {
    std::string set = s.environment(variable);
    return ((set.empty() ? fs::path(s.home) / fallback : fs::path(set)) / "openmw").string();
}

} // namespace

std::vector<std::string> OpenMwConfig::values(const std::string& key) const {
    std::vector<std::string> out;
    for (const auto& [k, v] : settings)
        if (k == key) out.push_back(v);
    return out;
}

std::string userOpenMwConfig(const FolderSearch& search) {
    return (fs::path(userFolder(search, "XDG_CONFIG_HOME", ".config")) / "openmw.cfg").string();
}

OpenMwConfig readOpenMwConfig(const FolderSearch& search, const std::string& path) {
    OpenMwConfig config;
    std::string file = path.empty() ? userOpenMwConfig(search) : path;
    std::string error;
    std::string text = loadFile(file, error);
    if (!error.empty()) return config;
    config.path = file;
    std::vector<std::string> local;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        line = trimmed(line);
        std::size_t eq = line.find('=');
        if (line.empty() || line[0] == '#' || eq == std::string::npos) continue;
        std::string key = trimmed(line.substr(0, eq)), value = unquoted(trimmed(line.substr(eq + 1)));
        config.settings.emplace_back(key, value);
        if (key != "data" && key != "data-local") continue;
        std::string folder = value;
        // A token stands for a folder, its path ending in a separator ("?userdata?data").
        auto expand = [&](std::size_t tokenLength, const char* variable, const char* fallback) {
            std::string rest = folder.substr(tokenLength);
            rest.erase(0, rest.find_first_not_of('/'));
            folder = (fs::path(userFolder(search, variable, fallback)) / rest).string();
        };
        if (folder.rfind("?userdata?", 0) == 0)
            expand(10, "XDG_DATA_HOME", ".local/share");
        else if (folder.rfind("?userconfig?", 0) == 0)
            expand(12, "XDG_CONFIG_HOME", ".config");
        else if (!folder.empty() && folder[0] == '?') {
            config.refused.push_back(key + "=" + value + ": the folder " +
                                     folder.substr(0, folder.find('?', 1) + 1) +
                                     " stands for is not known here");
            continue;
        }
        if (folder.empty()) continue;
        if (fs::path(folder).is_relative()) folder = (fs::path(file).parent_path() / folder).string();
        (key == "data" ? config.dataFolders : local).push_back(folder);
    }
    // The engine adds data-local after every data= folder, so that it wins over them.
    config.dataFolders.insert(config.dataFolders.end(), local.begin(), local.end());
    return config;
}

} // namespace quillon
