#pragma once

#include <filesystem>
#include <system_error>

namespace tilika::platform {

enum class SystemFolder {
    Document,  // the user's data: database folder, photos, scans
    Library,   // settings and other private state
    Temp,
    Reserv,  // the live database and its daily copies, inside Document
    Root,    // read-only resources shipped with the program
    Cloud,   // the folder shared between devices
};

// Where the program's folders are on this device.
class Folders {
public:
    virtual ~Folders() = default;
    virtual std::filesystem::path path(SystemFolder folder) const = 0;
};

// Folders under one data directory, beside a resource directory:
//   <data>/Documents/{reserv,picture,picture-s,analizy,documents}
//   <data>/Library, <data>/tmp, <data>/Cloud
class DataFolders final : public Folders {
public:
    DataFolders(std::filesystem::path dataDir, std::filesystem::path resourceDir);

    std::filesystem::path path(SystemFolder folder) const override;

    // Creates every folder of the layout that is missing; false if one could
    // not be made, with the first reason in `error`.
    bool createLayout() const;
    bool createLayout(std::error_code& error) const;

    const std::filesystem::path& dataDir() const { return dataDir_; }

private:
    std::filesystem::path dataDir_;
    std::filesystem::path resourceDir_;
};

}  // namespace tilika::platform
