#include "cloud/record.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "core/files.h"
#include "platform/log.h"

// The one place that knows the bytes of a record: CBOR, a map of keys at the
// top, byte strings for files, dates as whole milliseconds since 1970 UTC.

namespace tilika::cloud {

namespace fs = std::filesystem;
using json = nlohmann::json;

namespace {

bool isValidUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        char32_t point = 0;
        if (lead < 0x80) {
            ++i;
            continue;
        } else if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
            point = lead & 0x1F;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            point = lead & 0x0F;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            point = lead & 0x07;
        } else {
            return false;
        }
        if (text.size() - i < length) {
            return false;
        }
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) {
                return false;
            }
            point = (point << 6) | (next & 0x3F);
        }
        // Overlong forms, surrogates and points past the last plane.
        if ((length == 3 && point < 0x800) || (length == 4 && point < 0x10000) ||
            (point >= 0xD800 && point <= 0xDFFF) || point > 0x10FFFF) {
            return false;
        }
        i += length;
    }
    return true;
}

// Builds the tree of a record while holding every bound, so that a hostile
// file stops the reader at the first value past a bound rather than after
// the memory or the stack is spent. Tags are refused by the reader itself.
class LimitingSax {
public:
    LimitingSax(json& root, const Limits& limits) : dom_(root, false), limits_(limits) {}

    const std::string& error() const { return error_; }

    bool null() { return value() && dom_.null(); }
    bool boolean(bool v) { return value() && dom_.boolean(v); }
    bool number_integer(json::number_integer_t v) { return value() && dom_.number_integer(v); }
    bool number_unsigned(json::number_unsigned_t v) { return value() && dom_.number_unsigned(v); }
    bool number_float(json::number_float_t v, const json::string_t& s) {
        return value() && dom_.number_float(v, s);
    }
    bool string(json::string_t& v) { return value() && text(v) && dom_.string(v); }
    bool binary(json::binary_t& v) {
        if (v.size() > limits_.blobBytes) {
            return fail("файл внутри записи больше " + std::to_string(limits_.blobBytes) + " байт");
        }
        return value() && dom_.binary(v);
    }
    bool key(json::string_t& v) { return value() && text(v) && dom_.key(v); }
    bool start_object(std::size_t elements) {
        // A key and its value are two values each.
        return open(elements, 2) && dom_.start_object(std::size_t(-1));
    }
    bool end_object() {
        --depth_;
        return dom_.end_object();
    }
    bool start_array(std::size_t elements) {
        return open(elements, 1) && dom_.start_array(std::size_t(-1));
    }
    bool end_array() {
        --depth_;
        return dom_.end_array();
    }
    bool parse_error(std::size_t position, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*error*/) {
        if (error_.empty()) {
            error_ = "байты не читаются как запись (позиция " + std::to_string(position) + ")";
        }
        return false;
    }

private:
    bool fail(std::string why) {
        if (error_.empty()) {
            error_ = std::move(why);
        }
        return false;
    }
    bool value() {
        if (++values_ > limits_.values) {
            return fail("больше " + std::to_string(limits_.values) + " значений");
        }
        return true;
    }
    bool text(const std::string& v) {
        if (v.size() > limits_.stringBytes) {
            return fail("строка длиннее " + std::to_string(limits_.stringBytes) + " байт");
        }
        if (!isValidUtf8(v)) {
            return fail("строка не в UTF-8");
        }
        return true;
    }
    // A declared length is checked before a single element is read.
    bool open(std::size_t elements, std::size_t valuesEach) {
        if (!value()) {
            return false;
        }
        if (++depth_ > limits_.depth) {
            return fail("вложенность глубже " + std::to_string(limits_.depth));
        }
        const std::size_t left = limits_.values - values_;
        if (elements != std::size_t(-1) && elements > left / valuesEach) {
            return fail("объявлено " + std::to_string(elements) + " элементов");
        }
        return true;
    }

    nlohmann::detail::json_sax_dom_parser<json> dom_;
    const Limits& limits_;
    std::size_t values_ = 0;
    int depth_ = 0;
    std::string error_;
};

// The reading of the tree into a record: a known key of another type fails
// the whole record through this.
struct BadRecord {
    std::string why;
};

[[noreturn]] void bad(std::string why) {
    throw BadRecord{std::move(why)};
}

// A key that is missing or null reads as absent.
const json* member(const json& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

const json& objectOf(const json& value, const char* what) {
    if (!value.is_object()) {
        bad(std::string(what) + ": не словарь");
    }
    return value;
}

const json& arrayOf(const json& value, const char* key, std::size_t bound) {
    if (!value.is_array()) {
        bad(std::string(key) + ": не массив");
    }
    if (value.size() > bound) {
        bad(std::string(key) + ": больше " + std::to_string(bound) + " элементов");
    }
    return value;
}

std::optional<std::string> stringAt(const json& object, const char* key) {
    const json* value = member(object, key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_string()) {
        bad(std::string(key) + ": не строка");
    }
    return value->get<std::string>();
}

std::optional<long long> integerAt(const json& object, const char* key, long long low,
                                   long long high) {
    const json* value = member(object, key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (value->is_number_unsigned()) {
        const auto number = value->get<json::number_unsigned_t>();
        if (number <= static_cast<json::number_unsigned_t>(high)) {
            return static_cast<long long>(number);
        }
    } else if (value->is_number_integer()) {
        const auto number = value->get<json::number_integer_t>();
        if (number >= low && number <= high) {
            return number;
        }
    } else {
        bad(std::string(key) + ": не целое число");
    }
    bad(std::string(key) + ": число вне допустимого");
}

std::optional<int> intAt(const json& object, const char* key) {
    const auto number =
        integerAt(object, key, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    return number ? std::optional<int>(static_cast<int>(*number)) : std::nullopt;
}

std::optional<core::Date> dateAt(const json& object, const char* key) {
    const auto ms = integerAt(object, key, std::numeric_limits<long long>::min(),
                              std::numeric_limits<long long>::max());
    return ms ? std::optional<core::Date>(core::Date(std::chrono::milliseconds(*ms)))
              : std::nullopt;
}

std::optional<bool> boolAt(const json& object, const char* key) {
    const json* value = member(object, key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_boolean()) {
        bad(std::string(key) + ": не логическое значение");
    }
    return value->get<bool>();
}

// A name that becomes part of a path here: nothing that leads out of the
// folder it is joined to, and nothing longer than a file system takes.
std::string fileNameAt(const json& object, const char* key, std::size_t bound) {
    std::string name = stringAt(object, key).value_or("");
    if (!core::isPlainFileName(name) || name.size() > bound) {
        bad(std::string(key) + ": недопустимое имя файла");
    }
    return name;
}

diary::SetupRecord readSetup(const json& value) {
    const json& object = objectOf(value, "setup");
    diary::SetupRecord setup;
    setup.name = stringAt(object, "name").value_or("");
    setup.sbirthdate = stringAt(object, "sbirthdate");
    setup.birthdate = dateAt(object, "birthdate").value_or(core::Date{});
    setup.sex = intAt(object, "sex").value_or(0);
    setup.blood = stringAt(object, "blood").value_or("");
    setup.allerg = stringAt(object, "allerg").value_or("");
    setup.ves = stringAt(object, "ves").value_or("0");
    setup.rost = stringAt(object, "rost").value_or("0");
    setup.birthtime = dateAt(object, "birthtime");
    setup.sbirthtime = stringAt(object, "sbirthtime");
    setup.documents = stringAt(object, "documents");
    setup.active = boolAt(object, "active");
    return setup;
}

std::vector<DayRow> readDayRows(const json& value, const Limits& limits) {
    std::vector<DayRow> rows;
    for (const json& item : arrayOf(value, "data", limits.dayRows)) {
        const json& row = objectOf(item, "data");
        rows.push_back({intAt(row, "tp").value_or(0), stringAt(row, "field").value_or(""),
                        stringAt(row, "source").value_or("")});
    }
    return rows;
}

std::map<std::string, MarkEntry> readMarks(const json& value, const Limits& limits) {
    if (value.size() > limits.listItems) {
        bad("data: больше " + std::to_string(limits.listItems) + " отметок");
    }
    std::map<std::string, MarkEntry> marks;
    for (const auto& [key, item] : value.items()) {
        const json& entry = objectOf(item, "data");
        MarkEntry mark;
        mark.tagguid = stringAt(entry, "tagguid").value_or(key);
        if (mark.tagguid != key) {
            bad("data: tagguid не совпадает с ключом");
        }
        mark.state = boolAt(entry, "state").value_or(false);
        mark.date = dateAt(entry, "date");
        mark.seltypeid = intAt(entry, "seltypeid");
        marks.emplace(key, std::move(mark));
    }
    return marks;
}

std::vector<frame::ListRow> readConstList(const json& value, const Limits& limits) {
    std::vector<frame::ListRow> rows;
    for (const json& item : arrayOf(value, "const", limits.listItems)) {
        const json& object = objectOf(item, "const");
        frame::ListRow row;
        row.index = stringAt(object, "index").value_or("");
        row.tp = intAt(object, "tp").value_or(0);
        row.cap = stringAt(object, "cap").value_or("");
        row.deleted = intAt(object, "deleted").value_or(0);
        row.celltype = intAt(object, "celltype").value_or(1);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<Attachment> readImages(const json& value, const Limits& limits) {
    std::vector<Attachment> images;
    for (const json& item : arrayOf(value, "images", limits.images)) {
        const json& object = objectOf(item, "images");
        Attachment image;
        image.type = stringAt(object, "type").value_or("");
        image.name = fileNameAt(object, "name", limits.nameBytes);
        if (member(object, "names") != nullptr) {
            image.names = fileNameAt(object, "names", limits.nameBytes);
        }
        if (const json* data = member(object, "data")) {
            if (!data->is_binary()) {
                bad("images: data не байты");
            }
            image.data = data->get_binary();
        }
        images.push_back(std::move(image));
    }
    return images;
}

std::vector<FeedingRow> readFeeding(const json& value, const Limits& limits) {
    std::vector<FeedingRow> rows;
    for (const json& item : arrayOf(value, "kormdata", limits.dayRows)) {
        const json& object = objectOf(item, "kormdata");
        rows.push_back(
            {stringAt(object, "kodates").value_or(""), intAt(object, "kotype").value_or(0),
             stringAt(object, "kovalue").value_or(""), intAt(object, "kosum").value_or(0)});
    }
    return rows;
}

CloudRecord readRecord(const json& root, const Limits& limits) {
    const json& object = objectOf(root, "запись");
    CloudRecord record;
    record.gid = stringAt(object, "gid").value_or("");
    if (!isSafeGid(record.gid, limits)) {
        bad("gid: недопустимый идентификатор");
    }
    if (const json* setup = member(object, "setup")) {
        record.setup = readSetup(*setup);
    }
    record.date = stringAt(object, "date");
    if (const json* data = member(object, "data")) {
        if (data->is_object()) {
            record.marks = readMarks(*data, limits);
        } else {
            record.data = readDayRows(*data, limits);
        }
    }
    if (const json* list = member(object, "const")) {
        record.constList = readConstList(*list, limits);
    }
    if (const json* images = member(object, "images")) {
        record.images = readImages(*images, limits);
    }
    if (const json* korm = member(object, "kormdata")) {
        record.kormdata = readFeeding(*korm, limits);
    }
    return record;
}

std::int64_t milliseconds(core::Date date) {
    return date.time_since_epoch().count();
}

json setupJson(const diary::SetupRecord& setup) {
    json object = {{"name", setup.name},     {"birthdate", milliseconds(setup.birthdate)},
                   {"sex", setup.sex},       {"blood", setup.blood},
                   {"allerg", setup.allerg}, {"ves", setup.ves},
                   {"rost", setup.rost}};
    if (setup.sbirthdate) {
        object["sbirthdate"] = *setup.sbirthdate;
    }
    if (setup.birthtime) {
        object["birthtime"] = milliseconds(*setup.birthtime);
    }
    if (setup.sbirthtime) {
        object["sbirthtime"] = *setup.sbirthtime;
    }
    if (setup.documents) {
        object["documents"] = *setup.documents;
    }
    if (setup.active) {
        object["active"] = *setup.active;
    }
    return object;
}

json recordJson(const CloudRecord& record) {
    json root = {{"gid", record.gid}};
    if (record.setup) {
        root["setup"] = setupJson(*record.setup);
    }
    if (record.date) {
        root["date"] = *record.date;
    }
    if (record.data) {
        json rows = json::array();
        for (const DayRow& row : *record.data) {
            rows.push_back({{"tp", row.tp}, {"field", row.field}, {"source", row.source}});
        }
        root["data"] = std::move(rows);
    } else if (record.marks) {
        json marks = json::object();
        for (const auto& [key, mark] : *record.marks) {
            json entry = {{"tagguid", mark.tagguid}, {"state", mark.state}};
            if (mark.date) {
                entry["date"] = milliseconds(*mark.date);
            }
            if (mark.seltypeid) {
                entry["seltypeid"] = *mark.seltypeid;
            }
            marks[key] = std::move(entry);
        }
        root["data"] = std::move(marks);
    }
    if (record.constList) {
        json rows = json::array();
        for (const frame::ListRow& row : *record.constList) {
            rows.push_back({{"index", row.index},
                            {"tp", row.tp},
                            {"cap", row.cap},
                            {"deleted", row.deleted},
                            {"celltype", row.celltype}});
        }
        root["const"] = std::move(rows);
    }
    if (record.images) {
        json images = json::array();
        for (const Attachment& image : *record.images) {
            json entry = {
                {"type", image.type}, {"name", image.name}, {"data", json::binary(image.data)}};
            if (image.names) {
                entry["names"] = *image.names;
            }
            images.push_back(std::move(entry));
        }
        root["images"] = std::move(images);
    }
    if (record.kormdata) {
        json rows = json::array();
        for (const FeedingRow& row : *record.kormdata) {
            rows.push_back({{"kodates", row.kodates},
                            {"kotype", row.kotype},
                            {"kovalue", row.kovalue},
                            {"kosum", row.kosum}});
        }
        root["kormdata"] = std::move(rows);
    }
    return root;
}

std::string errnoText() {
    return std::strerror(errno);
}

}  // namespace

bool isSafeGid(std::string_view gid, const Limits& limits) {
    std::size_t characters = 0;
    for (char c : gid) {
        characters += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }
    return core::isPlainFileName(gid) && gid.size() <= limits.nameBytes &&
           characters <= limits.gidChars;
}

Encoded encodeRecord(const CloudRecord& record, const Limits& limits) {
    Encoded encoded;
    try {
        encoded.bytes = json::to_cbor(recordJson(record));
    } catch (const std::exception& error) {
        encoded.error = std::string("запись не собрана: ") + error.what();
        return encoded;
    }
    // The reader's own check, so that what one machine writes every other
    // one reads.
    const Decoded check = decodeRecord(encoded.bytes, limits);
    if (!check.record) {
        encoded.bytes.clear();
        encoded.error = check.error;
    }
    return encoded;
}

Decoded decodeRecord(std::span<const std::uint8_t> bytes, const Limits& limits) {
    Decoded decoded;
    if (bytes.size() > limits.recordBytes) {
        decoded.error = "запись больше " + std::to_string(limits.recordBytes) + " байт";
        return decoded;
    }
    try {
        json root;
        LimitingSax sax(root, limits);
        const bool parsed = json::sax_parse(bytes.data(), bytes.data() + bytes.size(), &sax,
                                            json::input_format_t::cbor, true);
        if (!parsed) {
            decoded.error = sax.error().empty() ? "байты не читаются как запись" : sax.error();
            return decoded;
        }
        decoded.record = readRecord(root, limits);
    } catch (const BadRecord& error) {
        decoded.error = error.why;
    } catch (const std::exception& error) {
        decoded.error = std::string("запись не прочитана: ") + error.what();
    }
    return decoded;
}

std::optional<std::vector<std::uint8_t>> readRecordFile(const fs::path& file,
                                                        const Limits& limits) {
    const auto failed = [&](const std::string& why) {
        platform::log("Запись облака " + file.string() + " не прочитана: " + why);
        return std::nullopt;
    };
    // Not blocking, so that a pipe planted under a record's name can't hold
    // the reader; not following, so a link can't point it anywhere else.
    const int fd = ::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return failed(errnoText());
    }
    struct stat info {};
    std::vector<std::uint8_t> bytes;
    std::string why;
    if (::fstat(fd, &info) != 0) {
        why = errnoText();
    } else if (!S_ISREG(info.st_mode)) {
        why = "это не обычный файл";
    } else if (static_cast<std::uintmax_t>(info.st_size) > limits.recordBytes) {
        why = "файл больше " + std::to_string(limits.recordBytes) + " байт";
    } else {
        // One byte more than the size, to notice a file that grows meanwhile.
        bytes.resize(static_cast<std::size_t>(info.st_size) + 1);
        std::size_t have = 0;
        while (have < bytes.size()) {
            const ssize_t got = ::read(fd, bytes.data() + have, bytes.size() - have);
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                why = errnoText();
                break;
            }
            if (got == 0) {
                break;
            }
            have += static_cast<std::size_t>(got);
        }
        if (why.empty() && have > limits.recordBytes) {
            why = "файл больше " + std::to_string(limits.recordBytes) + " байт";
        }
        bytes.resize(have);
    }
    ::close(fd);
    if (!why.empty()) {
        return failed(why);
    }
    return bytes;
}

std::optional<fs::path> writeTempFile(const fs::path& file, std::span<const std::uint8_t> bytes,
                                      bool sync) {
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    std::string temp = (folder / ("." + file.filename().string() + ".tilika-XXXXXX")).string();
    const int fd = ::mkstemp(temp.data());
    if (fd < 0) {
        platform::log("Файл " + file.string() + " не записан: " + errnoText());
        return std::nullopt;
    }
    std::string why;
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t put = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put < 0) {
            why = errnoText();
            break;
        }
        done += static_cast<std::size_t>(put);
    }
    if (why.empty() && ::fchmod(fd, 0644) != 0) {
        why = errnoText();
    }
    if (why.empty() && sync && ::fsync(fd) != 0) {
        why = errnoText();
    }
    if (::close(fd) != 0 && why.empty()) {
        why = errnoText();
    }
    if (!why.empty()) {
        ::unlink(temp.c_str());
        platform::log("Файл " + file.string() + " не записан: " + why);
        return std::nullopt;
    }
    return fs::path(temp);
}

void syncFolder(const fs::path& folder) {
    const int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
}

bool writeRecordFile(const fs::path& file, std::span<const std::uint8_t> bytes, bool sync) {
    const std::optional<fs::path> temp = writeTempFile(file, bytes, sync);
    if (!temp) {
        return false;
    }
    if (::rename(temp->c_str(), file.c_str()) != 0) {
        platform::log("Запись облака " + file.string() + " не записана: " + errnoText());
        ::unlink(temp->c_str());
        return false;
    }
    if (sync) {
        // The rename itself lasts only once the folder is on disk.
        syncFolder(file.has_parent_path() ? file.parent_path() : fs::path("."));
    }
    return true;
}

}  // namespace tilika::cloud
