#include "cloud/names.h"

#include <cctype>

#include "cloud/record.h"
#include "core/dates.h"

namespace tilika::cloud {

namespace {

constexpr std::string_view kPrefix = "CLOUD-";
constexpr std::string_view kExtension = ".dat";
constexpr std::size_t kDayLength = 10;   // dd-MM-yyyy
constexpr std::size_t kGuidLength = 36;  // 8-4-4-4-12

bool isDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

bool isDayText(std::string_view text) {
    if (text.size() != kDayLength) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((i == 2 || i == 5) ? text[i] != '-' : !isDigit(text[i])) {
            return false;
        }
    }
    return true;
}

bool isGuid(std::string_view text) {
    if (text.size() != kGuidLength) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (dash ? text[i] != '-' : std::isxdigit(static_cast<unsigned char>(text[i])) == 0) {
            return false;
        }
    }
    return true;
}

std::string joined(int kind, std::string_view gid, std::string_view part) {
    std::string name(kPrefix);
    name += std::to_string(kind);
    name += '-';
    name += gid;
    if (!part.empty()) {
        name += '-';
        name += part;
    }
    name += kExtension;
    return name;
}

}  // namespace

std::string recordName(const RecordName& name) {
    switch (name.kind) {
        case kind::day:
        case kind::feeding:
            return joined(name.kind, name.gid, name.day);
        case kind::marks:
            return joined(name.kind, name.gid, name.appguid);
        default:
            return joined(name.kind, name.gid, {});
    }
}

std::string profileRecordName(std::string_view gid) {
    return joined(kind::profile, gid, {});
}

std::string dayRecordName(std::string_view gid, core::Date day, const core::Dates& dates) {
    return joined(kind::day, gid, dates.dateToString(day, core::formats::photoDay));
}

std::string marksRecordName(std::string_view gid, std::string_view appguid) {
    return joined(kind::marks, gid, appguid);
}

std::string removalRecordName(std::string_view gid) {
    return joined(kind::marks, gid, {});
}

std::string feedingRecordName(std::string_view gid, core::Date day, const core::Dates& dates) {
    return joined(kind::feeding, gid, dates.dateToString(day, core::formats::photoDay));
}

std::optional<RecordName> parseRecordName(std::string_view name) {
    if (!name.starts_with(kPrefix) || !name.ends_with(kExtension) ||
        name.size() < kPrefix.size() + 2 + kExtension.size() || name[kPrefix.size() + 1] != '-') {
        return std::nullopt;
    }
    RecordName parsed;
    parsed.kind = name[kPrefix.size()] - '0';
    std::string_view rest =
        name.substr(kPrefix.size() + 2, name.size() - kPrefix.size() - 2 - kExtension.size());
    switch (parsed.kind) {
        case kind::profile:
            break;
        case kind::day:
        case kind::feeding: {
            if (rest.size() <= kDayLength + 1 || rest[rest.size() - kDayLength - 1] != '-' ||
                !isDayText(rest.substr(rest.size() - kDayLength))) {
                return std::nullopt;
            }
            parsed.day = rest.substr(rest.size() - kDayLength);
            rest.remove_suffix(kDayLength + 1);
            break;
        }
        case kind::marks:
            if (rest.size() > kGuidLength + 1 && rest[rest.size() - kGuidLength - 1] == '-' &&
                isGuid(rest.substr(rest.size() - kGuidLength))) {
                parsed.appguid = rest.substr(rest.size() - kGuidLength);
                rest.remove_suffix(kGuidLength + 1);
            }
            break;
        default:
            return std::nullopt;
    }
    if (!isSafeGid(rest)) {
        return std::nullopt;
    }
    parsed.gid = rest;
    return parsed;
}

}  // namespace tilika::cloud
