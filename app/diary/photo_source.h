#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace tilika::diary {

// A picture read from a file, or why it could not be.
struct LoadedPhoto {
    std::optional<QImage> image;
    QString error;  // in Russian, for the user
};

// Reads a picture the user chose. Files that are no picture, broken ones and
// pictures too large to hold in memory come back with a message.
LoadedPhoto loadPhotoFile(const QString& file);

// Where the photo of a day comes from: the camera or the album. Tests put a
// source of their own in its place.
class PhotoSource {
public:
    using Done = std::function<void(std::optional<QImage> image)>;

    virtual ~PhotoSource() = default;
    // Whether a camera is there to take a picture with.
    virtual bool hasCamera() const = 0;
    // Opens the camera over the window; `done` gets the picture taken, or
    // nothing when the user gave up. The camera runs only while it is open.
    virtual void takePhoto(QWidget* over, Done done) = 0;
    // A picture file chosen from the album; nothing when none was.
    virtual std::optional<QString> pickFile(QWidget* parent) = 0;
};

// The device's camera (when the program was built with Qt Multimedia) and a
// file dialog that opens on the pictures folder.
class SystemPhotoSource final : public PhotoSource {
public:
    bool hasCamera() const override;
    void takePhoto(QWidget* over, Done done) override;
    std::optional<QString> pickFile(QWidget* parent) override;
};

}  // namespace tilika::diary
