// Writes the sample diary into a data folder, to measure the program on
// years of data or to look at them:
//
//   build/bench/tilika_make_sample_diary /tmp/big-diary
//   build/tilika --data-dir /tmp/big-diary

#include <iostream>

#include "sample_diary.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: tilika_make_sample_diary DATA_DIR\n";
        return 64;
    }
    const std::filesystem::path dataDir = argv[1];
    std::error_code error;
    if (std::filesystem::exists(dataDir / "Documents" / "reserv" / "child.sqlite", error)) {
        std::cerr << "tilika_make_sample_diary: " << dataDir << " already holds a diary\n";
        return 1;
    }
    const auto diary = tilika::bench::writeSampleDiary(dataDir, TILIKA_BENCH_RESOURCE_DIR);
    std::cout << diary.children.size() << " children, " << diary.rows << " diary rows, "
              << diary.courses << " medicine courses, " << diary.photos << " photos\n";
    return 0;
}
