#include "core/ids.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <random>

namespace tilika::core {

std::string newID() {
    // A version-4 UUID. The generator is seeded once from the system's
    // entropy; the lock lets a background pass make ids too.
    static std::mutex mutex;
    static std::mt19937_64 generator{[] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }()};

    std::array<std::uint8_t, 16> bytes{};
    {
        std::lock_guard lock(mutex);
        for (std::size_t i = 0; i < bytes.size(); i += 8) {
            std::uint64_t word = generator();
            for (std::size_t j = 0; j < 8; ++j) {
                bytes[i + j] = static_cast<std::uint8_t>(word >> (8 * j));
            }
        }
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);

    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string id;
    id.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            id.push_back('-');
        }
        id.push_back(kHex[bytes[i] >> 4]);
        id.push_back(kHex[bytes[i] & 0x0F]);
    }
    return id;
}

std::string newID2(int kind, std::string_view lid) {
    std::string id = "00000000-0000-0000-000" + std::to_string(kind) + "-";
    if (lid.size() < 12) {
        id.append(12 - lid.size(), '0');
    }
    id.append(lid);
    return id;
}

std::string newID2(int kind, long long lid) {
    return newID2(kind, std::to_string(lid));
}

}  // namespace tilika::core
