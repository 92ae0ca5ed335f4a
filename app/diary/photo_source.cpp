#include "diary/photo_source.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QImageReader>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#ifdef TILIKA_HAVE_MULTIMEDIA
#include <QCamera>
#include <QImageCapture>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QVideoWidget>
#endif

namespace tilika::diary {

namespace {

// A camera's largest photos stay well under this; a picture above it would
// take more memory than a diary photo is worth.
constexpr qint64 kLargestPixels = 64LL * 1000 * 1000;

}  // namespace

LoadedPhoto loadPhotoFile(const QString& file) {
    QImageReader reader(file);
    reader.setAutoTransform(true);
    if (!reader.canRead()) {
        return {std::nullopt, QStringLiteral("Этот файл не является изображением.")};
    }
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > kLargestPixels) {
        return {std::nullopt, QStringLiteral("Изображение слишком большое. Выберите фотографию "
                                             "меньшего размера.")};
    }
    QImage image = reader.read();
    if (image.isNull()) {
        return {std::nullopt, QStringLiteral("Не удалось прочитать изображение: файл поврежден.")};
    }
    return {std::move(image), {}};
}

std::optional<QString> SystemPhotoSource::pickFile(QWidget* parent) {
    const QString file = QFileDialog::getOpenFileName(
        parent, QString(), QStandardPaths::writableLocation(QStandardPaths::PicturesLocation),
        QStringLiteral("Изображения (*.jpg *.jpeg *.png *.heic *.webp *.bmp)"));
    if (file.isEmpty()) {
        return std::nullopt;
    }
    return file;
}

#ifdef TILIKA_HAVE_MULTIMEDIA

bool SystemPhotoSource::hasCamera() const {
    return !QMediaDevices::videoInputs().isEmpty();
}

void SystemPhotoSource::takePhoto(QWidget* over, Done done) {
    // The panel owns the camera: closing it, by either button or with its
    // window, stops the camera.
    auto* panel = new QWidget(over->window());
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setAutoFillBackground(true);
    panel->setGeometry(over->window()->rect());
    auto* layout = new QVBoxLayout(panel);
    auto* view = new QVideoWidget(panel);
    layout->addWidget(view, 1);
    auto* buttons = new QHBoxLayout;
    auto* cancel = new QPushButton(QStringLiteral("Отменить"), panel);
    auto* shoot = new QPushButton(QStringLiteral("Снять"), panel);
    buttons->addWidget(cancel);
    buttons->addWidget(shoot);
    layout->addLayout(buttons);

    auto* camera = new QCamera(QMediaDevices::defaultVideoInput(), panel);
    auto* capture = new QImageCapture(panel);
    auto* session = new QMediaCaptureSession(panel);
    session->setCamera(camera);
    session->setImageCapture(capture);
    session->setVideoOutput(view);

    auto answered = std::make_shared<bool>(false);
    auto finish = [panel, camera, done, answered](std::optional<QImage> image) {
        if (*answered) {
            return;
        }
        *answered = true;
        camera->stop();
        panel->close();
        done(std::move(image));
    };
    QObject::connect(cancel, &QPushButton::clicked, panel, [finish] { finish(std::nullopt); });
    QObject::connect(shoot, &QPushButton::clicked, panel, [capture] { capture->capture(); });
    QObject::connect(capture, &QImageCapture::imageCaptured, panel,
                     [finish](int /*id*/, const QImage& image) { finish(image); });
    QObject::connect(capture, &QImageCapture::errorOccurred, panel,
                     [finish](int, QImageCapture::Error, const QString&) { finish(std::nullopt); });
    QObject::connect(panel, &QObject::destroyed, camera, [camera] { camera->stop(); });
    panel->show();
    panel->raise();
    camera->start();
}

#else

bool SystemPhotoSource::hasCamera() const {
    return false;
}

void SystemPhotoSource::takePhoto(QWidget* /*over*/, Done done) {
    done(std::nullopt);
}

#endif

}  // namespace tilika::diary
