#pragma once

#include <QImage>
#include <QLabel>
#include <QString>

#include <optional>
#include <string>

#include "frame/form_kinds.h"
#include "frame/popups.h"

// What the parts of the form screen share: the formats of date and time
// rows, and the small helpers every row builder uses.
namespace tilika::frame::form {

// The value label of row n carries the tag n + kValueTagOffset.
inline constexpr int kValueTagOffset = 1000;

inline constexpr const char* kDateFormat = "dd.MM.yyyy";
inline constexpr const char* kTimeFormat = "HH:mm";
inline constexpr const char* kMomentFormat = "dd.MM.yyyy HH:mm";

// The picker a date or time row opens, and the format its value keeps.
struct MomentKind {
    int popup = 0;
    const char* format = nullptr;
};

inline std::optional<MomentKind> momentKind(int tp) {
    switch (tp) {
        case formkind::diaryDate:
        case formkind::dateEntry:
        case formkind::date:
            return MomentKind{popupkind::date, kDateFormat};
        case formkind::diaryTime:
        case formkind::time:
        case formkind::duration:
            return MomentKind{popupkind::time, kTimeFormat};
        case formkind::moment:
        case formkind::momentEntry:
        case formkind::dateTime:
            return MomentKind{popupkind::dateTime, kMomentFormat};
        default:
            return std::nullopt;
    }
}

inline QString qs(const std::string& text) {
    return QString::fromStdString(text);
}

// A value label shows only when there is a value.
inline void setValueText(QLabel* label, const QString& text) {
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

inline QLabel* wrappedLabel(const QString& text, QWidget* parent, int pixelSize, bool bold) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    // A wrapping label asks for a comfortable width; on a phone it gets what
    // there is and wraps.
    label->setMinimumWidth(1);
    QFont font = label->font();
    font.setPixelSize(pixelSize);
    font.setBold(bold);
    label->setFont(font);
    return label;
}

// A picture the user picks from the files on the device, upright.
std::optional<QImage> pickPhotoFromFile(QWidget* parent);

}  // namespace tilika::frame::form
