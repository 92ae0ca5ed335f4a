#include "platform/folders.h"

#include <array>
#include <system_error>

namespace tilika::platform {

DataFolders::DataFolders(std::filesystem::path dataDir, std::filesystem::path resourceDir)
    : dataDir_(std::move(dataDir)), resourceDir_(std::move(resourceDir)) {}

std::filesystem::path DataFolders::path(SystemFolder folder) const {
    switch (folder) {
        case SystemFolder::Document:
            return dataDir_ / "Documents";
        case SystemFolder::Library:
            return dataDir_ / "Library";
        case SystemFolder::Temp:
            return dataDir_ / "tmp";
        case SystemFolder::Reserv:
            return dataDir_ / "Documents" / "reserv";
        case SystemFolder::Root:
            return resourceDir_;
        case SystemFolder::Cloud:
            return dataDir_ / "Cloud";
    }
    return dataDir_;
}

bool DataFolders::createLayout() const {
    std::error_code error;
    return createLayout(error);
}

bool DataFolders::createLayout(std::error_code& error) const {
    error.clear();
    const auto documents = path(SystemFolder::Document);
    const std::array<std::filesystem::path, 9> folders{
        path(SystemFolder::Reserv), documents / "picture",     documents / "picture-s",
        documents / "analizy",      documents / "documents",   path(SystemFolder::Library),
        path(SystemFolder::Temp),   path(SystemFolder::Cloud), documents,
    };
    // Every folder is tried, so that one that fails leaves the others made.
    for (const auto& folder : folders) {
        std::error_code folderError;
        std::filesystem::create_directories(folder, folderError);
        if (folderError && !error) {
            error = folderError;
        }
    }
    return !error;
}

}  // namespace tilika::platform
