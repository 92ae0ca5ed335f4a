// Feeds one input to the reader of cloud records, with small bounds so that
// short inputs reach every one of them, and to the parser of their names.
// Whatever the reader takes must write back into bytes it takes again, and
// read the same the second time; a name it takes must build back to itself.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "cloud/names.h"
#include "cloud/record.h"

namespace {

using namespace tilika::cloud;

void require(bool ok) {
    if (!ok) {
        __builtin_trap();
    }
}

Limits smallLimits() {
    Limits limits;
    limits.recordBytes = 64 << 10;
    limits.blobBytes = 256;
    limits.stringBytes = 256;
    limits.values = 2'000;
    limits.dayRows = 16;
    limits.listItems = 16;
    limits.images = 4;
    limits.nameBytes = 64;
    limits.gidChars = 40;
    return limits;
}

void sameRecord(const CloudRecord& a, const CloudRecord& b) {
    require(a.gid == b.gid && a.date == b.date && a.data == b.data && a.marks == b.marks &&
            a.constList == b.constList && a.images == b.images && a.kormdata == b.kormdata &&
            a.setup.has_value() == b.setup.has_value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> bytes(data, size);

    static const Limits small = smallLimits();
    const Decoded first = decodeRecord(bytes, small);
    require(first.record.has_value() == first.error.empty());
    if (first.record) {
        const Encoded written = encodeRecord(*first.record);
        require(written.ok());
        const Decoded second = decodeRecord(written.bytes);
        require(second.record.has_value());
        sameRecord(*first.record, *second.record);
        // Nothing is lost or made up the second time round.
        require(encodeRecord(*second.record).bytes == written.bytes);
    }

    const std::string_view name(reinterpret_cast<const char*>(data), size);
    if (const auto parsed = parseRecordName(name)) {
        require(recordName(*parsed) == name);
    }
    return 0;
}
