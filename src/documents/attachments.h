#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "documents/analyses.h"
#include "platform/image_codec.h"
#include "platform/pdf_pages.h"

namespace tilika::platform {
class Folders;
}

namespace tilika::documents {

// Which list the files belong to, and so their folder under Document.
inline constexpr int kAnalysesConst = 200;   // analizy: the analyses of a day
inline constexpr int kDocumentsConst = 201;  // documents: the documents of a profile

// What the user is told, with the caption of the alert.
struct Message {
    std::string text;
    std::string caption;
    bool operator==(const Message&) const = default;
};

namespace texts {
inline constexpr std::string_view notReadable =
    "Не удалось прочитать файл: это не изображение и не документ PDF.";
inline constexpr std::string_view tooLarge = "Файл слишком большой.";
inline constexpr std::string_view passwordProtected = "Документ PDF защищен паролем.";
inline constexpr std::string_view fileCaption = "Прикрепление файла";
inline constexpr std::string_view askPage = "Укажите номер удаляемой страницы";
inline constexpr std::string_view removePageCaption = "Удаление страницы";
inline constexpr int askPageTag = 3;
inline constexpr std::string_view onePage =
    "В документе всего одна страница. Ее нельзя удалять! Вы можете удалить только целый "
    "документ!";
inline constexpr std::string_view noCamera = "Ваше устройство не умеет делать фотографии";
inline constexpr std::string_view noCameraCaption = "Новая фотография";
inline constexpr std::string_view noData = "Нет данных для отправки";
inline constexpr std::string_view sendCaption = "Отправка";
inline constexpr std::string_view noRememberedFile =
    "Перейдите в программу в которой этот файл есть, например в почту (если вы его переслали в "
    "телефон по почте), и откройте его выбрав в списке доступных программ программу 'Тилика'.";
inline constexpr std::string_view sendMenu =
    "Отправить доктору<td>pm-doctor.png<tr>Отправить<td>pm-out.png";
inline constexpr std::string_view sendToDoctor = "Отправить доктору";
inline constexpr std::string_view addedToDiary =
    "Документ успешно помещен в дневник в раздел анализы.";
}  // namespace texts

// The page a picture becomes, and the largest picture kept: two pixels to
// the point of it, which a 12-megapixel photo would otherwise far exceed.
inline constexpr platform::PageSize kImagePage{1200, 1657};
inline constexpr int kMaxImageWidth = 2400;
inline constexpr int kMaxImageHeight = 3314;
inline constexpr std::uintmax_t kMaxFileBytes = 100ull * 1024 * 1024;
inline constexpr long long kMaxImagePixels = 100'000'000;

// A file from outside, read and checked: a PDF that can be opened, or a
// picture, decoded.
struct OutsidePdf {
    std::filesystem::path path;
    int pages = 0;
};
using OutsideFile = std::variant<OutsidePdf, platform::Image, Message>;

// Tells by the content, not the name, what a file is. A directory, a device,
// an empty, truncated, oversized or locked file gives the message to show.
OutsideFile readOutsideFile(const std::filesystem::path& path, const platform::ImageCodec& codec,
                            const platform::PdfPages& pdf);

// The files of one list. Every name it writes is built from the prefix and an
// item's tag, so a prefix that could lead out of the folder writes nothing.
// Every operation leaves the item and its files as they were when it fails.
class Attachments {
public:
    Attachments(const platform::Folders& folders, const platform::ImageCodec& codec,
                const platform::PdfPages& pdf, std::string prefix, int gconst);

    // Only letters, digits and "-": guids and dates, nothing else.
    static bool validPrefix(std::string_view prefix);

    std::filesystem::path folder() const;
    std::string jpgName(int tag) const;
    std::string pdfName(int tag) const;

    // Where the item's stored file is, if its name is a bare file name that
    // belongs in one of the scan folders; a name that tries to lead anywhere
    // else counts as no file at all, as does a link.
    std::optional<std::filesystem::path> storedFile(const AnalysisItem& item) const;

    // A new picture for the item, in place of its picture.
    std::optional<Message> setImage(AnalysisItem& item, const platform::Image& image) const;
    // The picture as a new last page of the item's PDF.
    std::optional<Message> addToPdf(AnalysisItem& item, const platform::Image& image) const;
    // The item's picture as a one-page PDF titled with its caption; false
    // when there is no picture or the PDF can't be made.
    bool createPdf(AnalysisItem& item) const;
    // Takes out the page numbered by the text; a text that names no page
    // keeps them all.
    std::optional<Message> removePdfPage(AnalysisItem& item, std::string_view page) const;
    // A copy of the PDF file as the item's file, in place of what it had.
    std::optional<Message> attachPdf(AnalysisItem& item, const std::filesystem::path& source) const;
    // Removes the item's files.
    void deleteFiles(const AnalysisItem& item) const;

    // The file to share, or the message that there is none to send.
    std::variant<std::filesystem::path, Message> sendFile(const AnalysisItem& item) const;
    // What the doctor chat receives: the caption and the file's path, which
    // is always taken in analizy, whichever list the item is in. Nothing
    // for an item without a file.
    std::optional<std::string> doctorMessage(const AnalysisItem& item) const;

private:
    bool writable() const;
    std::filesystem::path pdfPathOf(const AnalysisItem& item) const;
    // Runs a writer into out.pdf beside `target` and puts the result in its
    // place; on failure out.pdf goes and the target stays.
    template <typename Writer>
    bool replacePdf(const std::filesystem::path& target, Writer&& writer) const;

    const platform::Folders& folders_;
    const platform::ImageCodec& codec_;
    const platform::PdfPages& pdf_;
    std::string prefix_;
    int gconst_;
};

}  // namespace tilika::documents
