#include "platform/recording_canvas.h"

#include <algorithm>

namespace tilika::platform {

namespace {

double charWidth(const Font& font) {
    return font.size * (font.weight == FontWeight::Bold ? 0.55 : 0.5);
}

double lineHeight(const Font& font) {
    return font.size * 1.25;
}

// Characters, not bytes: a Cyrillic letter is two bytes of UTF-8.
std::size_t characters(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

// The byte length of the first n characters.
std::size_t bytesOf(std::string_view text, std::size_t n) {
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            if (n == 0) {
                break;
            }
            --n;
        }
    }
    return i;
}

void wrapParagraph(std::string_view paragraph, std::size_t perLine,
                   std::vector<std::string>& lines) {
    std::string line;
    std::size_t lineChars = 0;
    auto flush = [&] {
        lines.push_back(line);
        line.clear();
        lineChars = 0;
    };
    std::size_t at = 0;
    while (at <= paragraph.size()) {
        const auto space = paragraph.find(' ', at);
        std::string_view word = paragraph.substr(
            at, space == std::string_view::npos ? std::string_view::npos : space - at);
        std::size_t wordChars = characters(word);
        if (lineChars > 0 && lineChars + 1 + wordChars > perLine) {
            flush();
        }
        // A word wider than a whole line is cut where the line ends.
        while (wordChars > perLine && lineChars == 0) {
            const auto cut = bytesOf(word, perLine);
            line.assign(word.substr(0, cut));
            flush();
            word.remove_prefix(cut);
            wordChars -= perLine;
        }
        if (lineChars > 0) {
            line.push_back(' ');
            ++lineChars;
        }
        line.append(word);
        lineChars += wordChars;
        if (space == std::string_view::npos) {
            break;
        }
        at = space + 1;
    }
    lines.push_back(line);
}

}  // namespace

std::vector<std::string> RecordingCanvas::wrap(std::string_view text, const Font& font,
                                               double width) {
    std::vector<std::string> lines;
    if (text.empty()) {
        return lines;
    }
    const double perLineExact = width > 0 ? width / charWidth(font) : 0;
    const std::size_t perLine =
        width > 0 ? std::max<std::size_t>(1, static_cast<std::size_t>(perLineExact)) : 0;
    std::size_t at = 0;
    while (true) {
        const auto newline = text.find('\n', at);
        const auto paragraph = text.substr(
            at, newline == std::string_view::npos ? std::string_view::npos : newline - at);
        if (perLine == 0) {
            lines.emplace_back(paragraph);
        } else {
            wrapParagraph(paragraph, perLine, lines);
        }
        if (newline == std::string_view::npos) {
            break;
        }
        at = newline + 1;
    }
    return lines;
}

Size RecordingCanvas::measureText(std::string_view text, const Font& font, double width) const {
    const auto lines = wrap(text, font, width);
    std::size_t widest = 0;
    for (const auto& line : lines) {
        widest = std::max(widest, characters(line));
    }
    return {static_cast<double>(widest) * charWidth(font),
            static_cast<double>(lines.size()) * lineHeight(font)};
}

DrawCommand& RecordingCanvas::add(DrawCommand::Kind kind) {
    DrawCommand& command = commands_.emplace_back();
    command.kind = kind;
    return command;
}

void RecordingCanvas::drawText(std::string_view text, const Rect& box, const Font& font,
                               const Color& color, TextAlign align) {
    auto& c = add(DrawCommand::Kind::Text);
    c.text = text;
    c.rect = box;
    c.font = font;
    c.color = color;
    c.align = align;
}

void RecordingCanvas::drawLine(Point from, Point to, const Color& color, double width) {
    auto& c = add(DrawCommand::Kind::Line);
    c.from = from;
    c.to = to;
    c.color = color;
    c.lineWidth = width;
}

void RecordingCanvas::fillRect(const Rect& rect, const Color& color) {
    auto& c = add(DrawCommand::Kind::FillRect);
    c.rect = rect;
    c.color = color;
}

void RecordingCanvas::strokeRect(const Rect& rect, const Color& color, double width) {
    auto& c = add(DrawCommand::Kind::StrokeRect);
    c.rect = rect;
    c.color = color;
    c.lineWidth = width;
}

void RecordingCanvas::fillRoundedRect(const Rect& rect, double radius, const Color& color) {
    auto& c = add(DrawCommand::Kind::FillRoundedRect);
    c.rect = rect;
    c.radius = radius;
    c.color = color;
}

void RecordingCanvas::strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                                        double width) {
    auto& c = add(DrawCommand::Kind::StrokeRoundedRect);
    c.rect = rect;
    c.radius = radius;
    c.color = color;
    c.lineWidth = width;
}

void RecordingCanvas::drawArc(const Rect& box, double startAngle, double sweepAngle,
                              const Color& color, double width) {
    auto& c = add(DrawCommand::Kind::Arc);
    c.rect = box;
    c.startAngle = startAngle;
    c.sweepAngle = sweepAngle;
    c.color = color;
    c.lineWidth = width;
}

void RecordingCanvas::strokePath(const Path& path, const Color& color, double width) {
    auto& c = add(DrawCommand::Kind::StrokePath);
    c.path = path;
    c.color = color;
    c.lineWidth = width;
}

void RecordingCanvas::fillPath(const Path& path, const Color& color) {
    auto& c = add(DrawCommand::Kind::FillPath);
    c.path = path;
    c.color = color;
}

void RecordingCanvas::drawImage(std::string_view picture, const Rect& rect, double opacity) {
    auto& c = add(DrawCommand::Kind::Image);
    c.text = picture;
    c.rect = rect;
    c.opacity = opacity;
}

void RecordingCanvas::drawImageFile(std::string_view path, const Rect& rect, double opacity) {
    auto& c = add(DrawCommand::Kind::ImageFile);
    c.text = path;
    c.rect = rect;
    c.opacity = opacity;
}

void RecordingCanvas::save() {
    add(DrawCommand::Kind::Save);
}

void RecordingCanvas::restore() {
    add(DrawCommand::Kind::Restore);
}

void RecordingCanvas::clip(const Rect& rect) {
    add(DrawCommand::Kind::Clip).rect = rect;
}

void RecordingCanvas::newPage() {
    add(DrawCommand::Kind::NewPage);
}

void RecordingCanvas::replay(Canvas& target) const {
    using Kind = DrawCommand::Kind;
    for (const auto& c : commands_) {
        switch (c.kind) {
            case Kind::Text:
                target.drawText(c.text, c.rect, c.font, c.color, c.align);
                break;
            case Kind::Line:
                target.drawLine(c.from, c.to, c.color, c.lineWidth);
                break;
            case Kind::FillRect:
                target.fillRect(c.rect, c.color);
                break;
            case Kind::StrokeRect:
                target.strokeRect(c.rect, c.color, c.lineWidth);
                break;
            case Kind::FillRoundedRect:
                target.fillRoundedRect(c.rect, c.radius, c.color);
                break;
            case Kind::StrokeRoundedRect:
                target.strokeRoundedRect(c.rect, c.radius, c.color, c.lineWidth);
                break;
            case Kind::Arc:
                target.drawArc(c.rect, c.startAngle, c.sweepAngle, c.color, c.lineWidth);
                break;
            case Kind::StrokePath:
                target.strokePath(c.path, c.color, c.lineWidth);
                break;
            case Kind::FillPath:
                target.fillPath(c.path, c.color);
                break;
            case Kind::Image:
                target.drawImage(c.text, c.rect, c.opacity);
                break;
            case Kind::ImageFile:
                target.drawImageFile(c.text, c.rect, c.opacity);
                break;
            case Kind::Save:
                target.save();
                break;
            case Kind::Restore:
                target.restore();
                break;
            case Kind::Clip:
                target.clip(c.rect);
                break;
            case Kind::NewPage:
                target.newPage();
                break;
        }
    }
}

}  // namespace tilika::platform
