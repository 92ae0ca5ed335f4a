// The folders of the core form one order: a folder includes its own headers
// and those of folders below it, never one above, so every new subsystem
// adds to the house without tying it into loops. This reads the includes of
// every source file and names each one that goes the wrong way.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace tilika {
namespace {

namespace fs = std::filesystem;

// The order of the folders under src/, from the bottom. Folders of one rank
// stand beside each other; they may lean on each other one way only.
const std::map<std::string, int> kRanks = {
    {"platform", 1},  // the seams and their base value types
    {"core", 2},      // the spine: dates, database, words, text, ids, files
    {"frame", 3},     // the engine: rich text, pictures, forms, popups, navigation
    {"diary", 4},     // profiles, catalogue, codecs, lists, the diary store
    {"medication", 5}, {"development", 5}, {"documents", 6},
    {"cloud", 6},      {"online", 6},      {"session", 7},  // the composition root
};

struct Include {
    std::string from;   // the folder of the including file
    std::string to;     // the folder it includes from
    std::string where;  // file:line
};

std::vector<Include> includesBetweenFolders(const fs::path& root) {
    static const std::regex kInclude(R"(^\s*#\s*include\s+"([A-Za-z_]+)/)");
    std::vector<Include> found;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const auto ext = entry.path().extension();
        if (!entry.is_regular_file() || (ext != ".h" && ext != ".cpp" && ext != ".hpp")) {
            continue;
        }
        const fs::path relative = fs::relative(entry.path(), root);
        const std::string folder = relative.begin()->string();
        std::ifstream in(entry.path());
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            std::smatch match;
            if (std::regex_search(line, match, kInclude) && match[1] != folder &&
                fs::is_directory(root / match[1].str())) {
                found.push_back(
                    {folder, match[1], relative.string() + ":" + std::to_string(number)});
            }
        }
    }
    return found;
}

// Every include that breaks the order, as "file:line: a includes b (why)".
std::vector<std::string> layerViolations(const fs::path& root) {
    std::vector<std::string> violations;
    for (const auto& entry : fs::directory_iterator(root)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_directory() && !kRanks.contains(name)) {
            violations.push_back("src/" + name + " has no place in the order of the layers");
        }
    }
    const auto includes = includesBetweenFolders(root);
    std::set<std::pair<std::string, std::string>> sideways;
    for (const Include& include : includes) {
        if (!kRanks.contains(include.from) || !kRanks.contains(include.to)) {
            continue;
        }
        const int from = kRanks.at(include.from);
        const int to = kRanks.at(include.to);
        if (to > from) {
            violations.push_back(include.where + ": " + include.from + " includes " + include.to +
                                 ", a layer above it");
        } else if (to == from) {
            sideways.insert({include.from, include.to});
        }
    }
    for (const Include& include : includes) {
        if (kRanks.contains(include.from) && kRanks.contains(include.to) &&
            kRanks.at(include.from) == kRanks.at(include.to) &&
            sideways.contains({include.to, include.from})) {
            violations.push_back(include.where + ": " + include.from + " includes " + include.to +
                                 ", which includes it back");
        }
    }
    return violations;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += line + "\n";
    }
    return text;
}

TEST(Layers, EveryFolderOfTheCoreIncludesOnlyFoldersBelowIt) {
    const auto violations = layerViolations(TILIKA_SOURCE_DIR "/src");
    EXPECT_TRUE(violations.empty()) << joined(violations);
}

// The check itself must see what it is there to see.
TEST(Layers, TheCheckNamesUpwardIncludesLoopsAndStrayFolders) {
    test::TempDir dir;
    const fs::path src = dir.path() / "src";
    auto write = [&](const std::string& file, const std::string& text) {
        fs::create_directories((src / file).parent_path());
        std::ofstream(src / file) << text;
    };
    write("core/dates.cpp", "#include \"core/dates.h\"\n#include \"platform/clock.h\"\n");
    write("core/dates.h", "#pragma once\n");
    write("platform/clock.h", "#pragma once\n");
    write("diary/profiles.h", "#pragma once\n#include \"core/dates.h\"\n");
    EXPECT_TRUE(layerViolations(src).empty()) << joined(layerViolations(src));

    write("core/dates.cpp",
          "#include \"core/dates.h\"\n\n  #  include \"diary/profiles.h\"  // upward\n");
    write("medication/courses.h", "#pragma once\n#include \"development/chart.h\"\n");
    write("development/chart.h", "#pragma once\n#include \"medication/courses.h\"\n");
    write("gadgets/gadget.h", "#pragma once\n");
    const std::string found = joined(layerViolations(src));
    EXPECT_NE(found.find("core/dates.cpp:3: core includes diary, a layer above it"),
              std::string::npos)
        << found;
    EXPECT_NE(found.find("medication/courses.h:2: medication includes development, which "
                         "includes it back"),
              std::string::npos)
        << found;
    EXPECT_NE(found.find("src/gadgets has no place"), std::string::npos) << found;
}

}  // namespace
}  // namespace tilika
