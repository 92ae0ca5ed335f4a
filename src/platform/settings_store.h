#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

#include "platform/date.h"

namespace tilika::platform {

// The key/value store of the program's settings. Writes are kept in memory
// until synchronize() makes them durable; a group of writes that belongs
// together is followed by one synchronize().
//
// The typed readers are forgiving on purpose: a missing key reads as its
// default and a value of the wrong type as zero (or false, or empty).
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    virtual std::optional<nlohmann::json> value(std::string_view key) const = 0;
    virtual void setValue(std::string_view key, nlohmann::json value) = 0;
    virtual void remove(std::string_view key) = 0;
    // Writes everything to durable storage; false when that failed.
    virtual bool synchronize() = 0;

    bool contains(std::string_view key) const { return value(key).has_value(); }

    bool boolValue(std::string_view key) const;
    long long intValue(std::string_view key) const;
    double doubleValue(std::string_view key) const;
    std::string textValue(std::string_view key) const;
    std::optional<Date> dateValue(std::string_view key) const;

    void setBool(std::string_view key, bool value) { setValue(key, value); }
    void setInt(std::string_view key, long long value) { setValue(key, value); }
    void setText(std::string_view key, std::string value) { setValue(key, std::move(value)); }
    void setDate(std::string_view key, Date value);

    // One-shot marks: helpCheck is true until helpFinish has stored the mark.
    bool helpCheck(std::string_view key) const { return !boolValue(key); }
    void helpFinish(std::string_view key);
};

}  // namespace tilika::platform
