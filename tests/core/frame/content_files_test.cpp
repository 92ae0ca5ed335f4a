// Checks every reading file the program ships: that it is well formed, names
// its source, numbers its groups in order, and is spelled correctly.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/text.h"
#include "frame/rich_text_source.h"
#include "support/temp_dir.h"

namespace tilika::frame {
namespace {

namespace fs = std::filesystem;

const fs::path kContent = fs::path(TILIKA_SOURCE_DIR) / "resources" / "content";

// Keys an item may have; a key outside these is a typo that the pages would
// silently drop.
const std::set<std::string> kItemKeys = {
    "tp",           "text",       "format",      "pic",           "bigpic",    "weblink",
    "hiddentext",   "checkid",    "linkid",      "groupid",       "source",    "planeicon",
    "planecomment", "planestart", "planelength", "planelcomment", "planelink", "sublink"};
// Keys whose text a reader sees, on a page, the timeline or in the diary.
const std::set<std::string> kVisibleKeys = {"text", "hiddentext", "planecomment", "planelcomment"};

struct ContentReport {
    std::vector<std::string> problems;
    std::vector<std::string> texts;
};

std::string readAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

std::vector<fs::path> contentFiles() {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(kContent)) {
        const auto ext = entry.path().extension();
        // words.txt is the spelling list, not a page.
        if ((ext == ".txt" || ext == ".jsn") && entry.path().filename() != "words.txt") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

void checkOrder(std::vector<long long>& groups, long long group, ContentReport& report) {
    if (!groups.empty() && group <= groups.back()) {
        report.problems.push_back("группа " + std::to_string(group) + " идёт после " +
                                  std::to_string(groups.back()));
    }
    groups.push_back(group);
}

ContentReport lintMarkup(const std::string& text) {
    ContentReport report;
    std::vector<long long> groups;
    bool sourced = false;
    for (const std::string& record : core::split(core::trimmed(text), "<br>")) {
        const std::string_view line = core::trimmed(record);
        if (line.empty()) {
            continue;
        }
        std::string tp;
        std::string groupid;
        for (const std::string& field : core::split(line, "<tr>")) {
            const auto parts = core::split(core::trimmed(field), "<val>");
            if (parts.size() != 2 || !kItemKeys.contains(parts[0])) {
                report.problems.push_back("поле не читается: " + field);
                continue;
            }
            if (parts[0] == "tp") {
                tp = parts[1];
            } else if (parts[0] == "groupid") {
                groupid = parts[1];
            } else if (parts[0] == "source" && !parts[1].empty() && groups.size() <= 1) {
                sourced = true;
            } else if (kVisibleKeys.contains(parts[0])) {
                report.texts.push_back(parts[1]);
            }
        }
        if (tp.empty() || tp.find_first_not_of("0123456789") != std::string::npos) {
            report.problems.push_back("запись без вида: " + std::string(line.substr(0, 60)));
        } else if (tp == "1") {
            checkOrder(groups, core::intValue(groupid), report);
        }
    }
    if (!sourced) {
        report.problems.push_back("в первой группе не назван источник");
    }
    return report;
}

ContentReport lintJson(const std::string& text) {
    ContentReport report;
    const auto root = nlohmann::json::parse(text, nullptr, false);
    if (!root.is_array() || root.empty()) {
        report.problems.push_back("не массив групп");
        return report;
    }
    std::vector<long long> groups;
    bool sourced = false;
    for (const auto& group : root) {
        if (!group.is_object() || !group.contains("groupid") ||
            !group["groupid"].is_number_integer() || !group.contains("Content") ||
            !group["Content"].is_array()) {
            report.problems.push_back("группа без номера или содержимого");
            continue;
        }
        checkOrder(groups, group["groupid"].get<long long>(), report);
        const bool first = groups.size() == 1;
        if (first && group.contains("source") && group["source"].is_string() &&
            !group["source"].get<std::string>().empty()) {
            sourced = true;
        }
        for (const auto& item : group["Content"]) {
            if (!item.is_object() || !item.contains("tp")) {
                report.problems.push_back("запись без вида в группе " + group["groupid"].dump());
                continue;
            }
            for (const auto& [key, value] : item.items()) {
                if (!kItemKeys.contains(key)) {
                    report.problems.push_back("неизвестное поле " + key);
                } else if (key == "source" && first) {
                    sourced = true;
                } else if (kVisibleKeys.contains(key) && value.is_string()) {
                    report.texts.push_back(value.get<std::string>());
                }
            }
        }
    }
    if (!sourced) {
        report.problems.push_back("в первой группе не назван источник");
    }
    return report;
}

ContentReport lint(const fs::path& file) {
    const std::string text = readAll(file);
    return file.extension() == ".jsn" ? lintJson(text) : lintMarkup(text);
}

TEST(ContentFilesTest, EveryFileIsWellFormedSourcedAndInOrder) {
    const auto files = contentFiles();
    ASSERT_FALSE(files.empty());
    for (const fs::path& file : files) {
        const ContentReport report = lint(file);
        for (const std::string& problem : report.problems) {
            ADD_FAILURE() << file.filename() << ": " << problem;
        }
        EXPECT_FALSE(report.texts.empty()) << file.filename();
        // What the pages make of it: something to show, not the stand-in.
        const ContentFile loaded = loadContentFile(kContent, file.stem().string());
        EXPECT_EQ(loaded.json, file.extension() == ".jsn");
        if (loaded.json) {
            EXPECT_FALSE(parseJson(loaded.text).empty()) << file.filename();
        } else {
            EXPECT_GT(parseMarkup(loaded.text).size(), 1U) << file.filename();
        }
    }
}

TEST(ContentFilesTest, LintCatchesMistakes) {
    const auto markup = lintMarkup(
        "tp<val>1<tr>groupid<val>2<br>tp<val>4<tr>txt<val>a<br>"
        "tp<val>1<tr>groupid<val>1<br>text<val>b");
    EXPECT_EQ(markup.problems.size(), 4U);  // key, order, kind, source

    EXPECT_TRUE(lintMarkup("tp<val>1<tr>groupid<val>1<tr>source<val>книга<br>"
                           "tp<val>4<tr>text<val>Сидит")
                    .problems.empty());
    EXPECT_EQ(lintJson(R"([{"groupid": 1, "source": "книга", "Content": [{"tp": 4}]},
                           {"groupid": 1, "Content": [{"tp": 4, "planecoment": "x"}]}])")
                  .problems.size(),
              2U);
    EXPECT_EQ(lintJson("[{").problems.size(), 1U);
}

// Runs the texts through the Russian dictionary with our own list of names
// and abbreviations, and answers the words it doesn't know.
std::vector<std::string> unknownWords(const std::vector<std::string>& texts) {
    test::TempDir dir;
    const fs::path input = dir.path() / "texts.txt";
    {
        std::ofstream out(input, std::ios::binary);
        for (const std::string& text : texts) {
            out << core::replaceAll(text, "<br>", " ") << '\n';
        }
    }
    const std::string command = "hunspell -i utf-8 -d ru_RU -p '" +
                                (kContent / "words.txt").string() + "' -l < '" + input.string() +
                                "' 2>&1";
    std::vector<std::string> words;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return {"(hunspell не запускается)"};
    }
    char buffer[512];
    while (fgets(buffer, sizeof buffer, pipe) != nullptr) {
        words.emplace_back(core::trimmed(buffer));
    }
    if (pclose(pipe) != 0) {
        words.emplace_back("(hunspell с ru_RU не установлен)");
    }
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return words;
}

TEST(ContentFilesTest, SpellingIsKnownToTheDictionary) {
    // One run over everything: the dictionary takes seconds to load.
    std::vector<std::pair<std::string, std::vector<std::string>>> texts;
    std::vector<std::string> all;
    for (const fs::path& file : contentFiles()) {
        texts.emplace_back(file.filename().string(), lint(file).texts);
        all.insert(all.end(), texts.back().second.begin(), texts.back().second.end());
    }
    for (const std::string& word : unknownWords(all)) {
        std::string where;
        for (const auto& [name, pieces] : texts) {
            if (std::any_of(pieces.begin(), pieces.end(), [&](const std::string& text) {
                    return text.find(word) != std::string::npos;
                })) {
                where += " " + name;
            }
        }
        ADD_FAILURE() << word << ":" << where;
    }
}

}  // namespace
}  // namespace tilika::frame
