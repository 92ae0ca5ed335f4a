#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace tilika::platform {

// A picture already compressed as JPEG, with the size it decodes to: a page
// shows it as it stands, without decoding it again.
struct JpegPicture {
    std::vector<std::uint8_t> bytes;
    int width = 0;
    int height = 0;
    int components = 3;  // 1 grey, 3 RGB, 4 CMYK
};

// The picture of JPEG bytes, its size read from the frame header; nothing
// for bytes without one.
std::optional<JpegPicture> jpegPicture(std::vector<std::uint8_t> bytes);

struct PageSize {
    double width = 0;
    double height = 0;
};

// What a PDF file is, as far as pages go.
struct PdfCheck {
    enum class State { readable, unreadable, needsPassword };
    State state = State::unreadable;
    int pages = 0;
};

// Pages of PDF files. Every page that is kept keeps its content, fonts and
// boxes: scans from a lab carry text that must stay text. Every writer
// writes the whole result to `out` and answers false when it couldn't,
// leaving whatever it wrote there for the caller to remove; a source that
// can't be read is never an exception.
class PdfPages {
public:
    virtual ~PdfPages() = default;

    virtual PdfCheck check(const std::filesystem::path& pdf) const = 0;
    // Every page but the one numbered `skip` (from 1); a number that names no
    // page keeps them all.
    virtual bool copyPagesExcept(const std::filesystem::path& pdf, int skip,
                                 const std::filesystem::path& out) const = 0;
    // Every page, and then a page of `size` with the picture fitted and
    // centred on it.
    virtual bool appendImagePage(const std::filesystem::path& pdf, const JpegPicture& picture,
                                 PageSize size, const std::filesystem::path& out) const = 0;
    // A document of one such page, with its title and creator.
    virtual bool imageDocument(const JpegPicture& picture, PageSize size, std::string_view title,
                               std::string_view creator,
                               const std::filesystem::path& out) const = 0;
};

}  // namespace tilika::platform
