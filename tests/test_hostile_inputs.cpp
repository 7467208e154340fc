// Inputs made to hurt the newer paths: load orders with chains of masters deeper than any stack,
// masters that are not data files, more masters than a reference can address; size words at the
// ends of their range; outputs that would overwrite inputs. Each ends with its output or a clear
// line, and under the sanitizers without a report.
#include "app/load_order.h"
#include "cli_run.h"
#include "helpers.h"

using namespace quillon;
using namespace quillon::test;

namespace {

std::string headerNaming(const std::vector<std::string>& masters) {
    Rec r("TES3");
    r.sub("HEDR", hedr(0));
    for (const std::string& name : masters)
        r.z("MAST", name).sub("DATA", std::string(8, '\0'));
    return r.bytes();
}

} // namespace

// Each master names the next: the walk is as deep as the files make it.
TEST(HostileMasters, AChainDeeperThanAnyStackIsListedWhole) {
    TempDir dir;
    for (int length : {1000, 20000}) {
        for (int i = 0; i < length; ++i)
            dir.write("m" + std::to_string(i) + ".esm",
                      i + 1 < length ? headerNaming({"m" + std::to_string(i + 1) + ".esm"})
                                     : headerNaming({}));
        std::string plugin = dir.write("p.esp", headerNaming({"m0.esm"}));
        CliRun r = cli({"load-order", plugin});
        EXPECT_EQ(r.status, 0) << r.err;
        // Deepest first: each master after its own masters.
        EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), length);
        EXPECT_EQ(r.out.substr(0, ("m" + std::to_string(length - 1) + ".esm: ").size()),
                  "m" + std::to_string(length - 1) + ".esm: ");
    }
}

TEST(HostileMasters, MoreMastersThanAReferenceCanAddressAreNamedAndAllKept) {
    TempDir dir;
    std::vector<std::string> names;
    for (int i = 0; i < 300; ++i)
        names.push_back("x" + std::to_string(i) + ".esm");
    std::string plugin = dir.write("p.esp", headerNaming(names));
    CliRun r = cli({"load-order", plugin});
    EXPECT_NE(r.err.find("p.esp names 300 masters; references can address only 255"), std::string::npos)
        << r.err;
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 300); // none cut
}

// A master that turns into zeros after its records is read up to them, and the rest is named
// rather than walked 16 bytes at a time.
TEST(HostileMasters, BytesThatAreNotRecordsEndAMastersRead) {
    TempDir dir;
    std::string records = Rec("GLOB").z("NAME", "kept").sub("FNAM", "f").sub("FLTV", le32(0)).bytes();
    for (std::size_t zeros : {std::size_t(1) << 20, std::size_t(4) << 20}) {
        std::string master = headerNaming({}) + records;
        std::size_t stopsAt = master.size();
        dir.write("Zeros.esm", master + std::string(zeros, '\0'));
        std::string plugin = dir.write("p.esp", headerNaming({"Zeros.esm"}));
        RecordStore own = readStore(readAll(plugin));
        MasterSearch search;
        LoadOrder order = findMasters(own, plugin, search);
        readMasters(order);
        ASSERT_EQ(order.masters.size(), 1u);
        EXPECT_EQ(order.masters[0]->store().GLOB.size(), 1u);
        EXPECT_TRUE(order.masters[0]->store().Unknown.empty());
        ASSERT_EQ(order.searchNotes.size(), 1u);
        EXPECT_EQ(order.searchNotes[0], "Zeros.esm holds bytes that are not records from byte " +
                                            std::to_string(stopsAt) + " on; it was read up to there");
    }
}

// Size words at the ends of their range, through every command that does arithmetic on sizes.
TEST(HostileSizes, ExtremeSizeWordsEndEveryCommandCleanly) {
    TempDir dir;
    auto sub = [](const char* tag, std::int32_t size, const std::string& bytes) {
        return std::string(tag) + le32(size) + bytes;
    };
    std::string info = Rec("INFO")
                           .z("INAM", "1")
                           .sub("DATA", std::string(12, '\0'))
                           .z("ONAM", "a")
                           .raw(sub("SCVR", INT32_MIN, "01000Name") + sub("NAME", INT32_MAX, "Hi there"))
                           .bytes();
    std::string plugin = dir.write("p.esp", oneTopic({info}));
    std::string text = dir.write("t.txt", "\"1\"\r\n\"T\"\r\n\"a\"\r\n\"A longer text than before.\"\r\n");
    std::string po = dir.write("t.po", "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n"
                                       "msgctxt \"T|1\"\nmsgid \"Hi there\"\nmsgstr \"Salut\"\n");
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
             {"counts", plugin},
             {"check", plugin},
             {"loops", plugin},
             {"save", plugin, "-o", dir.file("s.esp"), "--repair"},
             {"export-dialogue", plugin, "-o", dir.file("e.txt")},
             {"import-dialogue", plugin, text, "-o", dir.file("i.esp"), "--repair"},
             {"morrowindize", plugin, "-o", dir.file("m.esp"), "--all", "--repair"},
             {"translate", plugin, po, "-o", dir.file("tr.esp"), "--repair"},
             {"translate-template", plugin, "-o", dir.file("t.pot")},
         }) {
        CliRun r = cli(args);
        EXPECT_TRUE(r.status == 0 || r.status == 1) << args[0] << ": " << r.err;
        EXPECT_NE(r.err.find("-Reading \"p.esp\""), std::string::npos) << args[0];
    }
}

// A folder of outputs that would replace an input, or take two inputs of one name, is refused
// before anything is written.
TEST(HostileOutputs, TranslationsNeverOverwriteTheirInputs) {
    TempDir dir;
    std::filesystem::create_directories(dir.file("a"));
    std::filesystem::create_directories(dir.file("b"));
    std::filesystem::create_directories(dir.file("out"));
    std::string plugin = oneTopic({response("1", "a", "Hello.")});
    std::string first = dir.write("a/x.esp", plugin), second = dir.write("b/x.esp", plugin);
    std::string po = dir.write("t.po", "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n");
    CliRun same = cli({"translate", first, second, po, "--out-dir", dir.file("out")});
    EXPECT_EQ(same.status, 1);
    EXPECT_NE(same.err.find("would both be written to"), std::string::npos) << same.err;
    EXPECT_FALSE(std::filesystem::exists(dir.file("out/x.esp")));

    CliRun own = cli({"translate", first, po, "--out-dir", dir.file("a")});
    EXPECT_EQ(own.status, 1);
    EXPECT_NE(own.err.find("x.esp\" itself; choose another --out-dir"), std::string::npos) << own.err;
    EXPECT_TRUE(readAll(first) == plugin);

    CliRun fine = cli({"translate", first, po, "--out-dir", dir.file("out")});
    EXPECT_EQ(fine.status, 0) << fine.err;
    EXPECT_TRUE(std::filesystem::exists(dir.file("out/x.esp")));
}

// One result-script line of thousands of choices: every command's output grows with the line,
// not with its square.
TEST(HostileScripts, OutputGrowsWithTheLineNotItsSquare) {
    TempDir dir;
    auto outputs = [&](int pairs) {
        std::string line = "Choice \"again\" 1"; // the response's own choice: a loop
        for (int i = 0; i < pairs; ++i)
            line += " \"a\" " + std::to_string(i + 2); // none answered: a finding each
        std::string path = dir.write("p.esp", oneTopic({response("1", "a", "Hi.", line)}));
        std::vector<std::size_t> sizes;
        for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
                 {"check", path}, {"check", path, "--only", "choice"}, {"loops", path}}) {
            CliRun r = cli(args);
            sizes.push_back(r.out.size() + r.err.size());
        }
        return sizes;
    };
    std::vector<std::size_t> small = outputs(1000), large = outputs(4000);
    for (std::size_t i = 0; i < small.size(); ++i) {
        if (i < 2) {
            EXPECT_GT(small[i], 1000u * 20); // a finding for each choice
        }
        EXPECT_LT(large[i], small[i] * 6) << "command " << i << ": " << small[i] << " then " << large[i];
    }
}

// Texts from a file never print a line of their own, nor reach the terminal as controls.
TEST(HostileTexts, NoTextFromAFileForgesATerminalLine) {
    TempDir dir;
    std::string forged = "x\nin/ok.esp: all clear, 0 findings\x8d\x9d";
    std::string plugin =
        dir.write("p.esp", file(0, {Rec("DIAL").z("NAME", forged).sub("DATA", std::string(1, '\0')).bytes(),
                                    response(forged, "a", "Hi.", "AddTopic \"" + forged + "\"")}));
    CliRun check = cli({"check", plugin, "--only", "topic"});
    EXPECT_EQ(std::count(check.out.begin(), check.out.end(), '\n'), 1) << check.out;
    EXPECT_NE(check.out.find("x\\x0ain/ok.esp"), std::string::npos) << check.out;
    EXPECT_NE(check.out.find("\\u008d\\u009d"), std::string::npos) << check.out; // C1 controls, escaped
    EXPECT_EQ(check.out.find("\xc2\x8d"), std::string::npos);

    std::string master = dir.write(
        "m.esp",
        Rec("TES3").sub("HEDR", hedr(0)).z("MAST", forged).sub("DATA", std::string(8, '\0')).bytes());
    CliRun order = cli({"load-order", master});
    EXPECT_EQ(std::count(order.out.begin(), order.out.end(), '\n'), 1) << order.out;
    EXPECT_EQ(order.out.rfind("x\\x0ain/ok.esp: all clear, 0 findings\\u008d\\u009d: not found", 0), 0u)
        << order.out;

    // A file name that is not UTF-8 comes back byte for byte from the JSON.
    std::string odd = dir.write(std::string("caf\xe9.esp"), readAll(plugin));
    CliRun json = cli({"check", odd, "--only", "topic", "--json"});
    EXPECT_NE(json.out.find("caf\\udce9.esp"), std::string::npos) << json.out;
}

// A long topic name is held by every response of the topic: a read that would take memory far
// beyond the file's size is refused before it starts, one that would not reads whole.
TEST(HostileSizes, ATopicNameHeldByEveryResponseCountsInTheBudget) {
    TempDir dir;
    auto plugin = [](int responses) {
        std::string bytes = file(
            0, {Rec("DIAL").z("NAME", std::string(1 << 20, 't')).sub("DATA", std::string(1, '\0')).bytes()});
        for (int i = 0; i < responses; ++i)
            bytes += response(std::to_string(i), "a", "Hi.");
        return bytes;
    };
    CliRun few = cli({"counts", dir.write("few.esp", plugin(8))});
    EXPECT_EQ(few.status, 0) << few.err;
    EXPECT_NE(few.out.find("INFO: 8"), std::string::npos);
    CliRun many = cli({"counts", dir.write("many.esp", plugin(4000))});
    EXPECT_EQ(many.status, 1);
    EXPECT_NE(many.err.find("Not enough memory"), std::string::npos) << many.err;
}

// A script of thousands of broken lines says so in a bounded number of findings; a word list too
// large to be one is refused.
TEST(HostileScripts, ProblemsOfOneScriptAndWordListsStayBounded) {
    TempDir dir;
    auto findings = [&](int lines) {
        std::string script;
        for (int i = 0; i < lines; ++i)
            script += "MessageBox \"unterminated\r\n";
        CliRun r = cli(
            {"check", dir.write("p.esp", oneTopic({response("1", "a", "Hi.", script)})), "--only", "script"});
        return std::count(r.out.begin(), r.out.end(), '\n');
    };
    long small = findings(1000), large = findings(4000);
    EXPECT_EQ(small, 101); // the first hundred, then one line saying there is more
    EXPECT_EQ(large, small);

    std::string plugin = dir.write("w.esp", oneTopic({response("1", "a", "Hi.")}));
    CliRun huge =
        cli({"check", plugin, "--spelling", "--words", dir.write("words.txt", std::string(5 << 20, 'a'))});
    EXPECT_EQ(huge.status, 2);
    EXPECT_NE(huge.err.find("is larger than 4 MB"), std::string::npos) << huge.err;
}

// A condition nested deeper than any stack is a finding, not the end of the program.
TEST(HostileScripts, ExpressionsNestedBeyondAnyStackEndInAFinding) {
    TempDir dir;
    std::string deep =
        "if " + std::string(1 << 20, '(') + "\r\nendif\r\nset x to " + std::string(1 << 20, '-') + "1";
    CliRun r =
        cli({"check", dir.write("p.esp", oneTopic({response("1", "a", "Hi.", deep)})), "--only", "script"});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("line 1: the expression nests more than 256 deep"), std::string::npos)
        << r.out.substr(0, 500);
    EXPECT_NE(r.out.find("line 3: the expression nests more than 256 deep"), std::string::npos);
}
