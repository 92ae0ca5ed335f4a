#include "platform/number_text.h"

#include <charconv>
#include <limits>

namespace tilika::platform {
namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view skipSpaces(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && isSpace(text[i])) {
        ++i;
    }
    return text.substr(i);
}

}  // namespace

int intValue(std::string_view text) {
    text = skipSpaces(text);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    long long value = 0;
    for (char c : text) {
        if (!isDigit(c)) {
            break;
        }
        value = value * 10 + (c - '0');
        if (value > std::numeric_limits<int>::max()) {
            return negative ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
        }
    }
    return static_cast<int>(negative ? -value : value);
}

double floatValue(std::string_view text) {
    text = skipSpaces(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    // Only plain decimal notation counts; from_chars would otherwise also
    // take "inf" and "nan", which no stored number ever is.
    std::size_t i = (!text.empty() && text.front() == '-') ? 1 : 0;
    if (i >= text.size() || !(isDigit(text[i]) || text[i] == '.')) {
        return 0.0;
    }
    double value = 0.0;
    auto result =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range) {
        return text.front() == '-' ? -std::numeric_limits<double>::max()
                                   : std::numeric_limits<double>::max();
    }
    return result.ec == std::errc() ? value : 0.0;
}

}  // namespace tilika::platform
