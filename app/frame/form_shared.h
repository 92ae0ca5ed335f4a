#pragma once

#include <QImage>
#include <QLabel>
#include <QString>

#include <optional>
#include <string>


// What the parts of the form screen share: the small helpers every row
// builder uses.
namespace tilika::frame::form {

// The value label of row n carries the tag n + kValueTagOffset.
inline constexpr int kValueTagOffset = 1000;

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
