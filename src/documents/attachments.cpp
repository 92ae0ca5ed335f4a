#include "documents/attachments.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

#include "core/files.h"
#include "core/system_folders.h"
#include "core/text.h"
#include "platform/folders.h"

namespace tilika::documents {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kScratchPdf = "out.pdf";
constexpr std::string_view kCantSave = "Не удалось сохранить файл.";

Message fileMessage(std::string_view text) {
    return {std::string(text), std::string(texts::fileCaption)};
}

bool bareName(std::string_view name) {
    return !name.empty() && name.find("..") == std::string_view::npos &&
           std::all_of(name.begin(), name.end(), [](char c) {
               return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                      c == '.' || c == '_' || c == '-';
           });
}

std::optional<std::vector<std::uint8_t>> readBytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                    std::istreambuf_iterator<char>());
    if (in.bad()) {
        return std::nullopt;
    }
    return bytes;
}

void removeQuietly(const fs::path& path) {
    std::error_code ignored;
    fs::remove(path, ignored);
}

// A photo from a phone is far larger than a page can show.
platform::Image fitted(const platform::ImageCodec& codec, const platform::Image& image) {
    if (image.width <= kMaxImageWidth && image.height <= kMaxImageHeight) {
        return image;
    }
    return codec.scaled(image, kMaxImageWidth, kMaxImageHeight);
}

}  // namespace

OutsideFile readOutsideFile(const fs::path& path, const platform::ImageCodec& codec,
                            const platform::PdfPages& pdf) {
    std::error_code error;
    // A directory, a pipe or a device would never end or never be a file.
    if (!fs::is_regular_file(fs::status(path, error)) || error) {
        return fileMessage(texts::notReadable);
    }
    const std::uintmax_t size = fs::file_size(path, error);
    if (error || size == 0) {
        return fileMessage(texts::notReadable);
    }
    if (size > kMaxFileBytes) {
        return fileMessage(texts::tooLarge);
    }
    const auto bytes = readBytes(path);
    if (!bytes) {
        return fileMessage(texts::notReadable);
    }
    static constexpr std::string_view kPdfMagic = "%PDF-";
    if (bytes->size() >= kPdfMagic.size() &&
        std::equal(kPdfMagic.begin(), kPdfMagic.end(), bytes->begin())) {
        const platform::PdfCheck check = pdf.check(path);
        if (check.state == platform::PdfCheck::State::needsPassword) {
            return fileMessage(texts::passwordProtected);
        }
        if (check.state != platform::PdfCheck::State::readable || check.pages < 1) {
            return fileMessage(texts::notReadable);
        }
        return OutsidePdf{path, check.pages};
    }
    std::optional<platform::Image> image = codec.decode(*bytes);
    if (!image || image->empty()) {
        return fileMessage(texts::notReadable);
    }
    if (static_cast<long long>(image->width) * image->height > kMaxImagePixels) {
        return fileMessage(texts::tooLarge);
    }
    return std::move(*image);
}

Attachments::Attachments(const platform::Folders& folders, const platform::ImageCodec& codec,
                         const platform::PdfPages& pdf, std::string prefix, int gconst)
    : folders_(folders), codec_(codec), pdf_(pdf), prefix_(std::move(prefix)), gconst_(gconst) {}

bool Attachments::validPrefix(std::string_view prefix) {
    return !prefix.empty() && std::all_of(prefix.begin(), prefix.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               c == '-';
    });
}

bool Attachments::writable() const {
    return validPrefix(prefix_);
}

fs::path Attachments::folder() const {
    return folders_.path(platform::SystemFolder::Document) /
           (gconst_ == kDocumentsConst ? "documents" : "analizy");
}

std::string Attachments::jpgName(int tag) const {
    return prefix_ + "-" + std::to_string(tag) + ".jpg";
}

std::string Attachments::pdfName(int tag) const {
    return prefix_ + "-" + std::to_string(tag) + ".pdf";
}

std::optional<fs::path> Attachments::storedFile(const AnalysisItem& item) const {
    if (!item.file || !bareName(*item.file)) {
        return std::nullopt;
    }
    const fs::path base = folders_.path(platform::SystemFolder::Document);
    const fs::path where = core::typeFilePath(base, *item.file);
    if (where != base / "analizy" && where != base / "documents") {
        return std::nullopt;
    }
    const fs::path path = where / *item.file;
    if (fs::is_symlink(path)) {
        return std::nullopt;
    }
    return path;
}

fs::path Attachments::pdfPathOf(const AnalysisItem& item) const {
    // A PDF put in from a web page is named by its day, not by this prefix.
    const auto stored = storedFile(item);
    if (stored && stored->extension() == ".pdf") {
        return *stored;
    }
    return folder() / pdfName(item.tag);
}

template <typename Writer>
bool Attachments::replacePdf(const fs::path& target, Writer&& writer) const {
    const fs::path scratch = target.parent_path() / kScratchPdf;
    removeQuietly(scratch);
    std::error_code error;
    if (!writer(scratch)) {
        removeQuietly(scratch);
        return false;
    }
    fs::rename(scratch, target, error);
    if (error) {
        removeQuietly(scratch);
        return false;
    }
    return true;
}

std::optional<Message> Attachments::setImage(AnalysisItem& item,
                                             const platform::Image& image) const {
    if (!writable() || image.empty()) {
        return fileMessage(kCantSave);
    }
    const std::vector<std::uint8_t> jpeg = codec_.encodeJpeg(fitted(codec_, image), 1.0);
    const fs::path path = folder() / jpgName(item.tag);
    if (jpeg.empty() || !core::writeFileReplacing(path, jpeg)) {
        return fileMessage(kCantSave);
    }
    item.file = jpgName(item.tag);
    item.tp = itemtp::image;
    return std::nullopt;
}

std::optional<Message> Attachments::addToPdf(AnalysisItem& item,
                                             const platform::Image& image) const {
    if (!writable() || image.empty()) {
        return fileMessage(kCantSave);
    }
    const platform::Image page = fitted(codec_, image);
    platform::JpegPicture picture{codec_.encodeJpeg(page, 1.0), page.width, page.height};
    if (picture.bytes.empty()) {
        return fileMessage(kCantSave);
    }
    const fs::path target = pdfPathOf(item);
    const bool done = replacePdf(target, [&](const fs::path& out) {
        return pdf_.appendImagePage(target, picture, kImagePage, out);
    });
    if (!done) {
        return fileMessage(texts::notReadable);
    }
    item.file = target.filename().string();
    item.tp = itemtp::pdf;
    return std::nullopt;
}

bool Attachments::createPdf(AnalysisItem& item) const {
    if (!writable()) {
        return false;
    }
    const auto stored = storedFile(item);
    const fs::path jpg =
        stored && stored->extension() == ".jpg" ? *stored : folder() / jpgName(item.tag);
    auto bytes = readBytes(jpg);
    if (!bytes) {
        return false;
    }
    const auto picture = platform::jpegPicture(std::move(*bytes));
    if (!picture) {
        return false;
    }
    const fs::path target = folder() / pdfName(item.tag);
    const bool done = replacePdf(target, [&](const fs::path& out) {
        return pdf_.imageDocument(*picture, kImagePage, item.caption, item.caption, out);
    });
    if (!done) {
        return false;
    }
    removeQuietly(jpg);
    item.tp = itemtp::pdf;
    item.file = pdfName(item.tag);
    return true;
}

std::optional<Message> Attachments::removePdfPage(AnalysisItem& item, std::string_view page) const {
    const fs::path target = pdfPathOf(item);
    const platform::PdfCheck check = pdf_.check(target);
    if (check.state != platform::PdfCheck::State::readable) {
        return fileMessage(texts::notReadable);
    }
    if (check.pages < 2) {
        return Message{std::string(texts::onePage), std::string(texts::removePageCaption)};
    }
    const int skip = core::intValue(core::trimmed(page));
    const bool done = replacePdf(
        target, [&](const fs::path& out) { return pdf_.copyPagesExcept(target, skip, out); });
    if (!done) {
        return fileMessage(texts::notReadable);
    }
    return std::nullopt;
}

std::optional<Message> Attachments::attachPdf(AnalysisItem& item, const fs::path& source) const {
    if (!writable()) {
        return fileMessage(kCantSave);
    }
    OutsideFile file = readOutsideFile(source, codec_, pdf_);
    if (auto* message = std::get_if<Message>(&file)) {
        return *message;
    }
    if (!std::holds_alternative<OutsidePdf>(file)) {
        return fileMessage(texts::notReadable);
    }
    const fs::path target = folder() / pdfName(item.tag);
    // The user's own file stays where it is: we keep a copy.
    const bool done = replacePdf(target, [&](const fs::path& out) {
        std::error_code error;
        fs::copy_file(source, out, fs::copy_options::overwrite_existing, error);
        return !error;
    });
    if (!done) {
        return fileMessage(kCantSave);
    }
    const auto stored = storedFile(item);
    if (stored && *stored != target) {
        removeQuietly(*stored);
    }
    removeQuietly(folder() / jpgName(item.tag));
    item.file = pdfName(item.tag);
    item.tp = itemtp::pdf;
    return std::nullopt;
}

void Attachments::deleteFiles(const AnalysisItem& item) const {
    if (const auto stored = storedFile(item)) {
        removeQuietly(*stored);
    }
    if (writable()) {
        removeQuietly(folder() / jpgName(item.tag));
        removeQuietly(folder() / pdfName(item.tag));
    }
}

std::variant<fs::path, Message> Attachments::sendFile(const AnalysisItem& item) const {
    const auto stored = storedFile(item);
    std::error_code error;
    if (!stored || !fs::is_regular_file(*stored, error)) {
        return Message{std::string(texts::noData), std::string(texts::sendCaption)};
    }
    return *stored;
}

std::optional<std::string> Attachments::doctorMessage(const AnalysisItem& item) const {
    if (!item.file || !bareName(*item.file)) {
        return std::nullopt;
    }
    const fs::path path = folders_.path(platform::SystemFolder::Document) / "analizy" / *item.file;
    return item.caption + "<tr>" + path.string();
}

}  // namespace tilika::documents
