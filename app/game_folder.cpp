#include "app/game_folder.h"

#include "app/openmw_config.h"
#include "app/text.h"
#include "records/es_read.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

namespace quillon {

const char* const kGameNotFoundWarning = "-WARNING: Morrowind installation coould not be detected.";

namespace fs = std::filesystem;

namespace {

bool isFolder(const fs::path& p) {
    std::error_code ec;
    return !p.empty() && fs::is_directory(p, ec);
}

std::string readText(const fs::path& p) {
    std::string error;
    return loadFile(p.string(), error);
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        out.push_back(line);
    }
    return out;
}

// A Windows path of Wine's C: drive (or any drive) as a path on this system.
fs::path wineToLocal(const fs::path& prefix, const std::string& windowsPath) {
    if (windowsPath.size() < 2 || windowsPath[1] != ':') return {};
    std::string drive = std::string(1, char(foldCase(static_cast<unsigned char>(windowsPath[0])))) + ":";
    std::string rest = windowsPath.substr(2);
    for (char& c : rest)
        if (c == '\\') c = '/';
    while (!rest.empty() && rest.front() == '/')
        rest.erase(0, 1);
    return prefix / "dosdevices" / drive / rest;
}

fs::path fromWine(const FolderSearch& s) {
    std::string prefix = s.environment("WINEPREFIX");
    fs::path root = prefix.empty() ? fs::path(s.home) / ".wine" : fs::path(prefix);
    std::string installed = wineInstalledPath(readText(root / "system.reg"));
    if (installed.empty()) return {};
    return wineToLocal(root, installed) / "Data Files";
}

// The library folders named in a Steam libraryfolders.vdf: every "path" value.
std::vector<fs::path> steamLibraries(const std::string& vdf) {
    std::vector<fs::path> out;
    for (const std::string& line : lines(vdf)) {
        std::size_t key = line.find("\"path\"");
        if (key == std::string::npos) continue;
        std::size_t open = line.find('"', key + 6), close = line.rfind('"');
        if (open == std::string::npos || close <= open) continue;
        std::string path = line.substr(open + 1, close - open - 1);
        std::string unescaped;
        for (std::size_t i = 0; i < path.size(); ++i) {
            if (path[i] == '\\' && i + 1 < path.size()) ++i;
            unescaped += path[i];
        }
        out.push_back(unescaped);
    }
    return out;
}

fs::path fromSteam(const FolderSearch& s) {
    fs::path home = s.home;
    for (fs::path root : {home / ".steam/steam", home / ".local/share/Steam", home / ".steam/root",
                          home / ".var/app/com.valvesoftware.Steam/.local/share/Steam"}) {
        std::vector<fs::path> libraries{root};
        for (const fs::path& more : steamLibraries(readText(root / "steamapps/libraryfolders.vdf")))
            libraries.push_back(more);
        for (const fs::path& library : libraries) {
            fs::path candidate = library / "steamapps/common/Morrowind/Data Files";
            if (isFolder(candidate)) return candidate;
        }
    }
    return {};
}

fs::path fromOpenMw(const FolderSearch& s) {
    for (const std::string& path : readOpenMwConfig(s).dataFolders)
        if (isFolder(path)) return path;
    return {};
}

} // namespace

std::string wineInstalledPath(const std::string& systemReg) {
    bool inKey = false;
    for (const std::string& line : lines(systemReg)) {
        if (!line.empty() && line[0] == '[') {
            std::string key = line.substr(1, line.find(']') == std::string::npos ? 0 : line.find(']') - 1);
            inKey = equalsIgnoreCase(key, "Software\\\\Bethesda Softworks\\\\Morrowind") ||
                    equalsIgnoreCase(key, "Software\\\\Wow6432Node\\\\Bethesda Softworks\\\\Morrowind");
            continue;
        }
        if (!inKey || !equalsIgnoreCase(line.substr(0, 17), "\"Installed Path\"=")) continue;
        std::string value = line.substr(17);
        if (value.size() < 2 || value.front() != '"') continue;
        std::string out;
        for (std::size_t i = 1; i + 1 < value.size(); ++i) {
            if (value[i] == '\\' && i + 2 < value.size()) ++i;
            out += value[i];
        }
        return out;
    }
    return {};
}

std::string findDataFolder(const FolderSearch& s) {
    if (std::string set = s.environment("QUILLON_DATA_FILES"); isFolder(set)) return set;
    for (auto find : {fromWine, fromSteam, fromOpenMw})
        if (fs::path found = find(s); isFolder(found)) return found.string();
    return {};
}

std::optional<CodePage> configuredCodePage(const FolderSearch& search) {
    std::vector<std::string> values = readOpenMwConfig(search).values("encoding");
    if (values.empty()) return std::nullopt;
    std::string value = values.back();
    while (!value.empty() && (value.back() == ' ' || value.back() == '\r'))
        value.pop_back();
    return codePageNamed(value);
}

FolderSearch thisSystem() {
    const char* home = std::getenv("HOME");
    return {[](const char* name) {
                const char* v = std::getenv(name);
                return std::string(v ? v : "");
            },
            home ? home : ""};
}

std::optional<CodePage> systemCodePage() {
    return configuredCodePage(thisSystem());
}

#ifdef _WIN32
std::string systemDataFolder() {
    // The game's install folder from its registry key, as the Windows game sets it.
    HKEY key = nullptr;
    std::string folder;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Bethesda Softworks\\Morrowind", 0, 0x2003F, &key) ==
        ERROR_SUCCESS) {
        char buffer[1024] = {};
        DWORD size = sizeof buffer;
        if (RegQueryValueExA(key, "Installed Path", nullptr, nullptr, reinterpret_cast<BYTE*>(buffer),
                             &size) == ERROR_SUCCESS)
            folder = std::string(buffer) + "\\Data Files";
    }
    if (key) RegCloseKey(key);
    return folder;
}
#else
std::string systemDataFolder() {
    return findDataFolder(thisSystem());
}
#endif

} // namespace quillon
