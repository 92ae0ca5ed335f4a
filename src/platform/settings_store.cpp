#include "platform/settings_store.h"

#include <cmath>

#include "platform/number_text.h"

namespace tilika::platform {
namespace {

using Json = nlohmann::json;

// Dates are kept as milliseconds since 1970 under a marker key, so that they
// can't be mistaken for the plain numbers stored beside them.
constexpr const char* kDateMarker = "$date";

}  // namespace

bool SettingsStore::boolValue(std::string_view key) const {
    const auto v = value(key);
    if (!v) {
        return false;
    }
    if (v->is_boolean()) {
        return v->get<bool>();
    }
    if (v->is_number()) {
        return v->get<double>() != 0.0;
    }
    if (v->is_string()) {
        const auto& text = v->get_ref<const std::string&>();
        return text == "YES" || text == "yes" || text == "true" || platform::intValue(text) != 0;
    }
    return false;
}

long long SettingsStore::intValue(std::string_view key) const {
    const auto v = value(key);
    if (!v) {
        return 0;
    }
    if (v->is_number_integer()) {
        return v->get<long long>();
    }
    if (v->is_number_float()) {
        const double d = v->get<double>();
        return std::isfinite(d) && std::fabs(d) < 9e18 ? static_cast<long long>(d) : 0;
    }
    if (v->is_boolean()) {
        return v->get<bool>() ? 1 : 0;
    }
    if (v->is_string()) {
        return platform::intValue(v->get_ref<const std::string&>());
    }
    return 0;
}

double SettingsStore::doubleValue(std::string_view key) const {
    const auto v = value(key);
    if (v && v->is_number()) {
        return v->get<double>();
    }
    if (v && v->is_boolean()) {
        return v->get<bool>() ? 1.0 : 0.0;
    }
    if (v && v->is_string()) {
        return platform::floatValue(v->get_ref<const std::string&>());
    }
    return 0.0;
}

std::string SettingsStore::textValue(std::string_view key) const {
    const auto v = value(key);
    if (v && v->is_string()) {
        return v->get<std::string>();
    }
    if (v && v->is_number()) {
        return v->dump();
    }
    return {};
}

std::optional<Date> SettingsStore::dateValue(std::string_view key) const {
    const auto v = value(key);
    if (!v || !v->is_object() || !v->contains(kDateMarker) ||
        !(*v)[kDateMarker].is_number_integer()) {
        return std::nullopt;
    }
    return Date(std::chrono::milliseconds((*v)[kDateMarker].get<long long>()));
}

void SettingsStore::setDate(std::string_view key, Date value) {
    setValue(key, Json{{kDateMarker, value.time_since_epoch().count()}});
}

void SettingsStore::helpFinish(std::string_view key) {
    setBool(key, true);
    synchronize();
}

}  // namespace tilika::platform
