#include "app/game_folder.h"
#include "helpers.h"

#include <map>

using namespace quillon;
using namespace quillon::test;
namespace fs = std::filesystem;

namespace {

struct FakeHome {
    TempDir dir;
    std::map<std::string, std::string> env;
    std::string home() const { return dir.file("home"); }
    fs::path make(const std::string& relative) const {
        fs::path p = fs::path(home()) / relative;
        fs::create_directories(p);
        return p;
    }
    void write(const std::string& relative, const std::string& text) const {
        fs::create_directories((fs::path(home()) / relative).parent_path());
        std::ofstream(fs::path(home()) / relative, std::ios::binary) << text;
    }
    std::string find() const {
        return findDataFolder({[this](const char* name) {
                                   auto v = env.find(name);
                                   return v == env.end() ? std::string() : v->second;
                               },
                               home()});
    }
};

const char* const kSystemReg = "WINE REGISTRY Version 2\r\n"
                               "[Software\\\\Wow6432Node\\\\Bethesda Softworks\\\\Morrowind] 1700000000\r\n"
                               "#time=1d9\r\n"
                               "\"Installed Path\"=\"C:\\\\Games\\\\Morrowind\\\\\"\r\n"
                               "\"Other\"=\"x\"\r\n";

} // namespace

TEST(GameFolder, WineRegistryValue) {
    EXPECT_EQ(wineInstalledPath(kSystemReg), "C:\\Games\\Morrowind\\");
    EXPECT_EQ(wineInstalledPath("[Software\\\\Other] 1\n\"Installed Path\"=\"D:\\\\x\"\n"), "");
}

TEST(GameFolder, SearchOrder) {
    FakeHome h;
    EXPECT_EQ(h.find(), "");

    fs::path openmw = h.make("openmw/Data Files");
    FolderSearch search{[](const char*) { return std::string(); }, h.home()};
    EXPECT_EQ(configuredCodePage(search), std::nullopt);
    h.write(".config/openmw/openmw.cfg",
            "data=\"/nowhere\"\nencoding=win1251\r\ndata=\"" + openmw.string() + "\"\n");
    EXPECT_EQ(h.find(), openmw.string());
    EXPECT_EQ(configuredCodePage(search), CodePage::Windows1251); // the player's language, for the window

    fs::path library = h.make("games/SteamLibrary/steamapps/common/Morrowind/Data Files");
    h.write(".steam/steam/steamapps/libraryfolders.vdf",
            "\"libraryfolders\"\n{\n\t\"1\"\n\t{\n\t\t\"path\"\t\t\"" + h.home() +
                "/games/SteamLibrary\"\n\t}\n}\n");
    EXPECT_EQ(h.find(), library.string());

    h.make(".wine/drive_c/Games/Morrowind/Data Files");
    h.make(".wine/dosdevices");
    fs::create_directory_symlink("../drive_c", fs::path(h.home()) / ".wine/dosdevices/c:");
    h.write(".wine/system.reg", kSystemReg);
    EXPECT_EQ(h.find(), (fs::path(h.home()) / ".wine/dosdevices/c:/Games/Morrowind/Data Files").string());

    h.env["QUILLON_DATA_FILES"] = openmw.string();
    EXPECT_EQ(h.find(), openmw.string());
}
