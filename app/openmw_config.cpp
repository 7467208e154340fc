#include "app/openmw_config.h"

#include "app/game_folder.h"
#include "records/source_bytes.h"

#include <algorithm>
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

namespace {

// OpenMW's global data folder on Linux, where its packages put the shared files.
const char* const kGlobalData = "/usr/share/games/openmw";
// A chain of config= folders longer than any real installation is cut here.
constexpr std::size_t kMostConfigFiles = 32;

// A folder value with its token expanded and made absolute from the file's own folder; empty, with
// the reason in refused, when the token names a folder this program cannot know.
std::string folderOf(const FolderSearch& search, const std::string& file, const std::string& key,
                     const std::string& value, std::vector<std::string>& refused) {
    std::string folder = value;
    // A token stands for a folder, its path ending in a separator ("?userdata?data").
    auto expand = [&](std::size_t tokenLength, const std::string& base) {
        std::string rest = folder.substr(tokenLength);
        rest.erase(0, rest.find_first_not_of('/'));
        folder = (fs::path(base) / rest).string();
    };
    if (folder.rfind("?userdata?", 0) == 0)
        expand(10, userFolder(search, "XDG_DATA_HOME", ".local/share"));
    else if (folder.rfind("?userconfig?", 0) == 0)
        expand(12, userFolder(search, "XDG_CONFIG_HOME", ".config"));
    else if (folder.rfind("?global?", 0) == 0)
        expand(8, kGlobalData);
    else if (!folder.empty() && folder[0] == '?') {
        // ?local? is the folder of the openmw program itself, which this program cannot know.
        refused.push_back(key + "=" + value + ": the folder " + folder.substr(0, folder.find('?', 1) + 1) +
                          " stands for is not known here");
        return {};
    }
    if (folder.empty()) return {};
    if (fs::path(folder).is_relative()) folder = (fs::path(file).parent_path() / folder).string();
    return folder;
}

} // namespace

OpenMwConfig readOpenMwConfig(const FolderSearch& search, const std::string& path) {
    OpenMwConfig config;
    // The engine reads a chain of files: each config= line names a folder whose openmw.cfg is
    // read after the file that names it. A later file's replace=KEY drops what the files before
    // it gave KEY; data-local is one folder, the last given, after every data= folder.
    std::vector<std::string> files{path.empty() ? userOpenMwConfig(search) : path}, seen;
    std::string local;
    for (std::size_t n = 0; n < files.size(); ++n) {
        const std::string file = files[n];
        std::error_code ec;
        std::string key = fs::weakly_canonical(file, ec).string();
        if (std::find(seen.begin(), seen.end(), key) != seen.end()) continue; // a loop of config=
        seen.push_back(key);
        if (seen.size() > kMostConfigFiles) {
            config.refused.push_back("config=: more than " + std::to_string(kMostConfigFiles) +
                                     " files in the chain; the rest were not read");
            break;
        }
        std::string error;
        std::string text = loadFile(file, error);
        if (!error.empty()) continue;
        if (config.path.empty()) config.path = file;
        std::vector<std::pair<std::string, std::string>> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) {
            line = trimmed(line);
            std::size_t eq = line.find('=');
            if (line.empty() || line[0] == '#' || eq == std::string::npos) continue;
            lines.emplace_back(trimmed(line.substr(0, eq)), unquoted(trimmed(line.substr(eq + 1))));
        }
        for (const auto& line : lines) {
            const std::string& v = line.second;
            if (line.first != "replace") continue;
            if (v == "data") config.dataFolders.clear();
            if (v == "data-local") local.clear();
            std::erase_if(config.settings, [&](const auto& setting) { return setting.first == v; });
        }
        std::vector<std::string> chained;
        for (const auto& [k, v] : lines) {
            config.settings.emplace_back(k, v);
            if (k != "data" && k != "data-local" && k != "config") continue;
            std::string folder = folderOf(search, file, k, v, config.refused);
            if (folder.empty()) continue;
            if (k == "data")
                config.dataFolders.push_back(folder);
            else if (k == "data-local")
                local = folder;
            else
                chained.push_back((fs::path(folder) / "openmw.cfg").string());
        }
        files.insert(files.begin() + std::ptrdiff_t(n + 1), chained.begin(), chained.end());
    }
    if (!local.empty()) config.dataFolders.push_back(local);
    return config;
}

} // namespace quillon
