#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/settings_store.h"

namespace tilika::core {

// The real store: one JSON file, replaced atomically on every synchronize()
// (written beside it, flushed to disk, then renamed over it), so a crash
// leaves either the old settings or the new ones, never half of either.
class JsonSettingsStore final : public platform::SettingsStore {
public:
    // Reads the file if it exists. A damaged file is kept aside under
    // "<name>.damaged" and the store starts empty.
    explicit JsonSettingsStore(std::filesystem::path file);
    ~JsonSettingsStore() override;

    std::optional<nlohmann::json> value(std::string_view key) const override;
    void setValue(std::string_view key, nlohmann::json value) override;
    void remove(std::string_view key) override;
    bool synchronize() override;

    // Where a damaged file found at construction was kept aside; nothing
    // when the file read well or didn't exist. The user is to hear of it,
    // since every setting is back to its default.
    const std::optional<std::filesystem::path>& damagedCopy() const { return damagedCopy_; }

private:
    std::filesystem::path file_;
    nlohmann::json values_ = nlohmann::json::object();
    bool dirty_ = false;
    std::optional<std::filesystem::path> damagedCopy_;
};

}  // namespace tilika::core
