#include "support/temp_dir.h"

#include <stdexcept>
#include <stdlib.h>
#include <string>

namespace tilika::test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tilika-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot create a temporary folder");
    }
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

}  // namespace tilika::test
