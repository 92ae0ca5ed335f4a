#include "core/text.h"

#include <charconv>
#include <cmath>

namespace tilika::core {
namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}
}  // namespace

std::string formatFixed(double value, int decimals) {
    if (!std::isfinite(value)) {
        return "0";
    }
    char buffer[512];  // room for the longest double in fixed notation
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
    if (result.ec != std::errc()) {
        return "0";
    }
    return std::string(buffer, result.ptr);
}

std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces;
    if (separator.empty()) {
        pieces.emplace_back(text);
        return pieces;
    }
    std::size_t start = 0;
    while (true) {
        const std::size_t at = text.find(separator, start);
        if (at == std::string_view::npos) {
            pieces.emplace_back(text.substr(start));
            return pieces;
        }
        pieces.emplace_back(text.substr(start, at - start));
        start = at + separator.size();
    }
}

std::string join(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string out;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) {
            out.append(separator);
        }
        out.append(pieces[i]);
    }
    return out;
}

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
    if (from.empty()) {
        return std::string(text);
    }
    std::string out;
    std::size_t start = 0;
    while (true) {
        const std::size_t at = text.find(from, start);
        if (at == std::string_view::npos) {
            out.append(text.substr(start));
            return out;
        }
        out.append(text.substr(start, at - start)).append(to);
        start = at + from.size();
    }
}

std::string_view trimmed(std::string_view text) {
    std::size_t first = 0;
    std::size_t last = text.size();
    while (first < last && (isSpace(text[first]) || text[first] == '\v')) {
        ++first;
    }
    while (last > first && (isSpace(text[last - 1]) || text[last - 1] == '\v')) {
        --last;
    }
    return text.substr(first, last - first);
}

}  // namespace tilika::core
