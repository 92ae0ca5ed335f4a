#include "documents/attachments.h"

#include <gtest/gtest.h>

// We use no PointerHolder at all; this says so and keeps its warning quiet.
#define POINTERHOLDER_TRANSITION 4
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <fstream>
#include <iterator>
#include <sys/stat.h>

#include "platform/folders.h"
#include "platform/qpdf_pages.h"
#include "support/fake_image_codec.h"
#include "support/temp_dir.h"

namespace tilika::documents {
namespace {

namespace fs = std::filesystem;
using Handle = QPDFObjectHandle;

// Pictures decode as the fake codec reads them, and encode to a JPEG frame
// header of their size: enough for a PDF to place them, with no encoder.
class HeaderOnlyJpegCodec final : public platform::ImageCodec {
public:
    std::optional<platform::Image> decode(std::span<const std::uint8_t> bytes) const override {
        return fake_.decode(bytes);
    }
    platform::Image scaled(const platform::Image& image, int maxWidth,
                           int maxHeight) const override {
        return fake_.scaled(image, maxWidth, maxHeight);
    }
    std::vector<std::uint8_t> encodeJpeg(const platform::Image& image, double) const override {
        const auto high = [](int n) { return static_cast<std::uint8_t>(n >> 8); };
        const auto low = [](int n) { return static_cast<std::uint8_t>(n & 0xFF); };
        return {0xFF,
                0xD8,
                0xFF,
                0xC0,
                0x00,
                0x11,
                0x08,
                high(image.height),
                low(image.height),
                high(image.width),
                low(image.width),
                0x03,
                1,
                0x11,
                0,
                2,
                0x11,
                0,
                3,
                0x11,
                0,
                0xFF,
                0xD9};
    }

private:
    test::FakeImageCodec fake_;
};

struct Page {
    double width = 0;
    double height = 0;
    std::string content;
};

// A document of A4 pages, each with its number in Helvetica.
void writePdf(const fs::path& path, int pages, const char* password = nullptr) {
    QPDF pdf;
    pdf.emptyPDF();
    const Handle font = pdf.makeIndirectObject(
        Handle::parse("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"));
    for (int n = 1; n <= pages; ++n) {
        Handle page = Handle::parse("<< /Type /Page /MediaBox [0 0 595 842] >>");
        Handle fonts = Handle::newDictionary();
        fonts.replaceKey("/F1", font);
        Handle resources = Handle::newDictionary();
        resources.replaceKey("/Font", fonts);
        page.replaceKey("/Resources", resources);
        page.replaceKey("/Contents", pdf.newStream("BT /F1 24 Tf 72 720 Td (Page " +
                                                   std::to_string(n) + ") Tj ET"));
        QPDFPageDocumentHelper(pdf).addPage(QPDFPageObjectHelper(pdf.makeIndirectObject(page)),
                                            false);
    }
    QPDFWriter writer(pdf, path.c_str());
    if (password != nullptr) {
        writer.setR6EncryptionParameters(password, password, true, true, true, true, true, true,
                                         qpdf_r3p_full, true);
    }
    writer.write();
}

std::vector<Page> pagesOf(const fs::path& path) {
    QPDF pdf;
    pdf.processFile(path.c_str());
    std::vector<Page> pages;
    for (QPDFPageObjectHelper& page : QPDFPageDocumentHelper(pdf).getAllPages()) {
        const auto box = page.getMediaBox().getArrayAsRectangle();
        const auto data = page.getObjectHandle().getKey("/Contents").getStreamData();
        pages.push_back(
            {box.urx - box.llx, box.ury - box.lly,
             std::string(reinterpret_cast<const char*>(data->getBuffer()), data->getSize())});
    }
    return pages;
}

std::string titleOf(const fs::path& path) {
    QPDF pdf;
    pdf.processFile(path.c_str());
    return pdf.getTrailer().getKey("/Info").getKey("/Title").getUTF8Value();
}

std::string bytesOf(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

class DocumentFilesTest : public ::testing::Test {
protected:
    test::TempDir dir;
    platform::DataFolders folders{dir.path(), dir.path()};
    HeaderOnlyJpegCodec codec;
    platform::QpdfPages pdf;
    Attachments files{folders, codec, pdf, "d-child1", kDocumentsConst};

    DocumentFilesTest() { folders.createLayout(); }

    fs::path documents() const { return folders.path(platform::SystemFolder::Document); }

    // An item of tag 1 whose PDF has these many pages.
    AnalysisItem pdfItem(int pages) {
        writePdf(files.folder() / "d-child1-1.pdf", pages);
        return {itemtp::pdf, "g", "Паспорт", "d-child1-1.pdf", 1};
    }
};

TEST_F(DocumentFilesTest, PhotoAddsAPageAndKeepsTheOthersAsTheyAre) {
    AnalysisItem item = pdfItem(2);
    EXPECT_EQ(files.addToPdf(item, test::FakeImageCodec::blank(1000, 500)), std::nullopt);

    const auto pages = pagesOf(files.folder() / "d-child1-1.pdf");
    ASSERT_EQ(pages.size(), 3u);
    for (int n : {0, 1}) {
        EXPECT_EQ(pages[n].width, 595);
        EXPECT_EQ(pages[n].height, 842);
        EXPECT_NE(pages[n].content.find("(Page " + std::to_string(n + 1) + ") Tj"),
                  std::string::npos);
    }
    EXPECT_EQ(pages[2].width, 1200);
    EXPECT_EQ(pages[2].height, 1657);
    EXPECT_FALSE(fs::exists(files.folder() / "out.pdf"));
    EXPECT_EQ(item.file, "d-child1-1.pdf");
}

TEST_F(DocumentFilesTest, PageRemovalTakesOutOnlyTheNumberedPage) {
    AnalysisItem item = pdfItem(3);
    const fs::path path = files.folder() / "d-child1-1.pdf";

    for (const char* nothing : {"7", "x", "0"}) {
        EXPECT_EQ(files.removePdfPage(item, nothing), std::nullopt);
        EXPECT_EQ(pagesOf(path).size(), 3u) << nothing;
    }
    EXPECT_EQ(files.removePdfPage(item, "2"), std::nullopt);
    const auto pages = pagesOf(path);
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_NE(pages[0].content.find("(Page 1)"), std::string::npos);
    EXPECT_NE(pages[1].content.find("(Page 3)"), std::string::npos);

    // Down to the last page, which only goes with the whole document.
    EXPECT_EQ(files.removePdfPage(item, "1"), std::nullopt);
    const std::string before = bytesOf(path);
    const auto refused = files.removePdfPage(item, "1");
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->text,
              "В документе всего одна страница. Ее нельзя удалять! Вы можете "
              "удалить только целый документ!");
    EXPECT_EQ(refused->caption, "Удаление страницы");
    EXPECT_EQ(bytesOf(path), before);
    EXPECT_FALSE(fs::exists(files.folder() / "out.pdf"));
}

TEST_F(DocumentFilesTest, PictureBecomesAOnePageDocument) {
    AnalysisItem item{itemtp::image, "g", "Свидетельство о рождении", std::nullopt, 2};
    EXPECT_FALSE(files.createPdf(item));  // no picture yet

    ASSERT_EQ(files.setImage(item, test::FakeImageCodec::blank(1000, 500)), std::nullopt);
    EXPECT_EQ(item.file, "d-child1-2.jpg");
    ASSERT_TRUE(fs::exists(files.folder() / "d-child1-2.jpg"));

    ASSERT_TRUE(files.createPdf(item));
    EXPECT_EQ(item.tp, itemtp::pdf);
    EXPECT_EQ(item.file, "d-child1-2.pdf");
    EXPECT_FALSE(fs::exists(files.folder() / "d-child1-2.jpg"));
    const fs::path path = files.folder() / "d-child1-2.pdf";
    const auto pages = pagesOf(path);
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(pages[0].width, 1200);
    EXPECT_EQ(pages[0].height, 1657);
    EXPECT_NE(pages[0].content.find("1200 0 0 600 0 528.5 cm"), std::string::npos);
    EXPECT_EQ(titleOf(path), "Свидетельство о рождении");

    EXPECT_EQ(std::get<fs::path>(files.sendFile(item)), path);
    // The chat takes the path in analizy even for a profile's document.
    EXPECT_EQ(files.doctorMessage(item), "Свидетельство о рождении<tr>" +
                                             (documents() / "analizy" / "d-child1-2.pdf").string());
}

TEST_F(DocumentFilesTest, BadFilesFromOutsideChangeNothing) {
    AnalysisItem item{itemtp::image, "g", "Полис", "d-child1-1.jpg", 1};
    writeText(files.folder() / "d-child1-1.jpg", "old picture");
    const AnalysisItem before = item;

    const fs::path outside = dir.path() / "outside";
    fs::create_directory(outside);
    writePdf(outside / "whole.pdf", 2);
    const std::string whole = bytesOf(outside / "whole.pdf");
    writeText(outside / "truncated.pdf", whole.substr(0, whole.size() / 3));
    writeText(outside / "renamed.pdf", "just some notes");
    writeText(outside / "empty.pdf", "");
    writePdf(outside / "locked.pdf", 1, "secret");
    std::ofstream(outside / "huge.pdf") << "%PDF-1.7\n";
    fs::resize_file(outside / "huge.pdf", kMaxFileBytes + 1);
    ASSERT_EQ(mkfifo((outside / "pipe.pdf").c_str(), 0600), 0);

    const std::string notReadable{texts::notReadable};
    const std::vector<std::pair<fs::path, std::string>> cases{
        {outside / "truncated.pdf", notReadable},
        {outside / "renamed.pdf", notReadable},
        {outside / "empty.pdf", notReadable},
        {outside / "missing.pdf", notReadable},
        {outside, notReadable},
        {outside / "pipe.pdf", notReadable},
        {"/dev/zero", notReadable},
        {outside / "huge.pdf", std::string(texts::tooLarge)},
        {outside / "locked.pdf", std::string(texts::passwordProtected)},
    };
    for (const auto& [path, text] : cases) {
        const auto message = files.attachPdf(item, path);
        ASSERT_TRUE(message) << path;
        EXPECT_EQ(message->text, text) << path;
        EXPECT_EQ(item, before);
        EXPECT_EQ(bytesOf(files.folder() / "d-child1-1.jpg"), "old picture");
        EXPECT_FALSE(fs::exists(files.folder() / "d-child1-1.pdf"));
    }

    // A good one replaces the picture, and the user's file stays put.
    EXPECT_EQ(files.attachPdf(item, outside / "whole.pdf"), std::nullopt);
    EXPECT_EQ(item.tp, itemtp::pdf);
    EXPECT_EQ(item.file, "d-child1-1.pdf");
    EXPECT_EQ(bytesOf(files.folder() / "d-child1-1.pdf"), whole);
    EXPECT_TRUE(fs::exists(outside / "whole.pdf"));
    EXPECT_FALSE(fs::exists(files.folder() / "d-child1-1.jpg"));
}

TEST_F(DocumentFilesTest, HostileNamesNeverLeadOutOfTheScanFolders) {
    const fs::path library = folders.path(platform::SystemFolder::Library);
    writeText(library / "x", "private");
    writeText(documents() / "picture" / "p.jpg", "photo");

    for (const char* name :
         {"../../Library/x", "a-..%2fx", "a-/../../Library/x", "a-\\x", "p.jpg", ".."}) {
        const AnalysisItem item{itemtp::pdf, "g", "x", std::string(name), 1};
        EXPECT_EQ(files.storedFile(item), std::nullopt) << name;
    }
    const AnalysisItem plain{itemtp::pdf, "g", "x", "a-22-11-2026-1.pdf", 1};
    EXPECT_EQ(files.storedFile(plain), documents() / "analizy" / "a-22-11-2026-1.pdf");

    // A link in the folder is not followed to what it points at.
    fs::create_symlink(library / "x", documents() / "analizy" / "a-link-1.pdf");
    EXPECT_EQ(files.storedFile({itemtp::pdf, "g", "x", "a-link-1.pdf", 1}), std::nullopt);

    const AnalysisItem hostile{itemtp::pdf, "g", "x", "../../Library/x", 1};
    const auto sent = files.sendFile(hostile);
    ASSERT_TRUE(std::holds_alternative<Message>(sent));
    EXPECT_EQ(std::get<Message>(sent), (Message{"Нет данных для отправки", "Отправка"}));
    EXPECT_EQ(files.doctorMessage(hostile), std::nullopt);
    files.deleteFiles(hostile);
    Attachments crooked{folders, codec, pdf, "d-../../Library", kDocumentsConst};
    AnalysisItem item{itemtp::image, "g", "x", std::nullopt, 1};
    EXPECT_TRUE(crooked.setImage(item, test::FakeImageCodec::blank(10, 10)));
    EXPECT_FALSE(crooked.createPdf(item));
    crooked.deleteFiles({itemtp::image, "g", "x", std::nullopt, 1});
    EXPECT_FALSE(item.file);

    EXPECT_EQ(bytesOf(library / "x"), "private");
    EXPECT_EQ(bytesOf(documents() / "picture" / "p.jpg"), "photo");
    EXPECT_TRUE(fs::is_empty(files.folder()));
}

TEST_F(DocumentFilesTest, PicturesAreReadByContentAndKeptWithinAPage) {
    writeText(dir.path() / "scan.pdf", "PIC 4000x3000");
    const OutsideFile file = readOutsideFile(dir.path() / "scan.pdf", codec, pdf);
    ASSERT_TRUE(std::holds_alternative<platform::Image>(file));

    AnalysisItem item{itemtp::image, "g", "x", std::nullopt, 1};
    ASSERT_EQ(files.setImage(item, std::get<platform::Image>(file)), std::nullopt);
    const auto picture = platform::jpegPicture([&] {
        const std::string bytes = bytesOf(files.folder() / "d-child1-1.jpg");
        return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
    }());
    ASSERT_TRUE(picture);
    EXPECT_LE(picture->width, kMaxImageWidth);
    EXPECT_LE(picture->height, kMaxImageHeight);
}

}  // namespace
}  // namespace tilika::documents
