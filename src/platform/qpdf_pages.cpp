#include "platform/qpdf_pages.h"

// We use no PointerHolder at all; this says so and keeps its warning quiet.
#define POINTERHOLDER_TRANSITION 4

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <string>

namespace tilika::platform {

namespace {

using Handle = QPDFObjectHandle;

// Numbers of a content stream: plain decimals, whatever the locale.
std::string number(double value) {
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed);
    return std::string(buffer.data(), result.ptr);
}

std::string colorSpace(const JpegPicture& picture) {
    switch (picture.components) {
        case 1:
            return "/DeviceGray";
        case 4:
            return "/DeviceCMYK";
        default:
            return "/DeviceRGB";
    }
}

// Where a picture stands when fitted into the page with its proportions kept
// and centred.
struct PlacedPicture {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

PlacedPicture fitCentred(int width, int height, PageSize page) {
    if (width <= 0 || height <= 0) {
        return {};
    }
    const double scale = std::min(page.width / width, page.height / height);
    PlacedPicture placed;
    placed.width = width * scale;
    placed.height = height * scale;
    placed.x = (page.width - placed.width) / 2;
    placed.y = (page.height - placed.height) / 2;
    return placed;
}

Handle imagePage(QPDF& pdf, const JpegPicture& picture, PageSize size) {
    Handle image = pdf.newStream();
    image.replaceStreamData(std::string(picture.bytes.begin(), picture.bytes.end()),
                            Handle::newName("/DCTDecode"), Handle::newNull());
    Handle imageDict = image.getDict();
    imageDict.replaceKey("/Type", Handle::newName("/XObject"));
    imageDict.replaceKey("/Subtype", Handle::newName("/Image"));
    imageDict.replaceKey("/Width", Handle::newInteger(picture.width));
    imageDict.replaceKey("/Height", Handle::newInteger(picture.height));
    imageDict.replaceKey("/ColorSpace", Handle::newName(colorSpace(picture)));
    imageDict.replaceKey("/BitsPerComponent", Handle::newInteger(8));

    const PlacedPicture placed = fitCentred(picture.width, picture.height, size);
    const std::string content = "q " + number(placed.width) + " 0 0 " + number(placed.height) +
                                " " + number(placed.x) + " " + number(placed.y) + " cm /Im0 Do Q\n";

    Handle xobjects = Handle::newDictionary();
    xobjects.replaceKey("/Im0", image);
    Handle resources = Handle::newDictionary();
    resources.replaceKey("/XObject", xobjects);
    Handle page = Handle::newDictionary();
    page.replaceKey("/Type", Handle::newName("/Page"));
    page.replaceKey("/MediaBox",
                    Handle::newArray(QPDFObjectHandle::Rectangle(0, 0, size.width, size.height)));
    page.replaceKey("/Resources", resources);
    page.replaceKey("/Contents", pdf.newStream(content));
    return pdf.makeIndirectObject(page);
}

void write(QPDF& pdf, const std::filesystem::path& out) {
    QPDFWriter writer(pdf, out.c_str());
    writer.setStaticID(false);
    writer.write();
}

void open(QPDF& pdf, const std::filesystem::path& path) {
    pdf.setSuppressWarnings(true);
    pdf.processFile(path.c_str());
}

// libqpdf reports a broken file, a wrong password and a failed write alike by
// throwing; the callers only need to know that it didn't work.
template <typename Work>
bool attempt(Work&& work) {
    try {
        work();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

PdfCheck QpdfPages::check(const std::filesystem::path& path) const {
    PdfCheck result;
    try {
        QPDF pdf;
        open(pdf, path);
        result.pages = static_cast<int>(QPDFPageDocumentHelper(pdf).getAllPages().size());
        result.state = PdfCheck::State::readable;
    } catch (const QPDFExc& error) {
        result.state = error.getErrorCode() == qpdf_e_password ? PdfCheck::State::needsPassword
                                                               : PdfCheck::State::unreadable;
    } catch (const std::exception&) {
        result.state = PdfCheck::State::unreadable;
    }
    return result;
}

bool QpdfPages::copyPagesExcept(const std::filesystem::path& path, int skip,
                                const std::filesystem::path& out) const {
    return attempt([&] {
        QPDF pdf;
        open(pdf, path);
        QPDFPageDocumentHelper pages(pdf);
        // A page may take its box from the page tree; it must keep it
        // whatever happens to the tree.
        pages.pushInheritedAttributesToPage();
        const auto all = pages.getAllPages();
        if (skip >= 1 && static_cast<std::size_t>(skip) <= all.size()) {
            pages.removePage(all[static_cast<std::size_t>(skip - 1)]);
        }
        write(pdf, out);
    });
}

bool QpdfPages::appendImagePage(const std::filesystem::path& path, const JpegPicture& picture,
                                PageSize size, const std::filesystem::path& out) const {
    return attempt([&] {
        QPDF pdf;
        open(pdf, path);
        QPDFPageDocumentHelper pages(pdf);
        // The new page must not inherit a rotation or resources from the tree.
        pages.pushInheritedAttributesToPage();
        pages.addPage(QPDFPageObjectHelper(imagePage(pdf, picture, size)), false);
        write(pdf, out);
    });
}

bool QpdfPages::imageDocument(const JpegPicture& picture, PageSize size, std::string_view title,
                              std::string_view creator, const std::filesystem::path& out) const {
    return attempt([&] {
        QPDF pdf;
        pdf.emptyPDF();
        QPDFPageDocumentHelper(pdf).addPage(QPDFPageObjectHelper(imagePage(pdf, picture, size)),
                                            false);
        Handle info = Handle::newDictionary();
        info.replaceKey("/Title", Handle::newUnicodeString(std::string(title)));
        info.replaceKey("/Creator", Handle::newUnicodeString(std::string(creator)));
        pdf.getTrailer().replaceKey("/Info", pdf.makeIndirectObject(info));
        write(pdf, out);
    });
}

}  // namespace tilika::platform
