#pragma once

#include "platform/pdf_pages.h"

namespace tilika::platform {

// PDF pages through libqpdf, which copies page objects as they are.
class QpdfPages final : public PdfPages {
public:
    PdfCheck check(const std::filesystem::path& pdf) const override;
    bool copyPagesExcept(const std::filesystem::path& pdf, int skip,
                         const std::filesystem::path& out) const override;
    bool appendImagePage(const std::filesystem::path& pdf, const JpegPicture& picture,
                         PageSize size, const std::filesystem::path& out) const override;
    bool imageDocument(const JpegPicture& picture, PageSize size, std::string_view title,
                       std::string_view creator, const std::filesystem::path& out) const override;
};

}  // namespace tilika::platform
