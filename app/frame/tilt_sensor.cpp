#include "frame/tilt_sensor.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#ifdef TILIKA_HAVE_SENSORS
#include <QAccelerometer>
#endif

namespace tilika::frame {

namespace {

constexpr int kIntervalMs = 300;
constexpr double kGravity = 9.80665;

}  // namespace

TiltSensor::TiltSensor(QObject* parent) : QObject(parent), timer_(new QTimer(this)) {
    timer_->setInterval(kIntervalMs);
    connect(timer_, &QTimer::timeout, this, &TiltSensor::read);
}

TiltSensor::~TiltSensor() = default;

bool TiltSensor::start() {
#ifdef TILIKA_HAVE_SENSORS
    if (sensor_ == nullptr) {
        // Qt offers a stand-in accelerometer that reads nothing real; a
        // machine with only that one has none.
        QByteArray real;
        for (const QByteArray& identifier : QSensor::sensorsForType(QAccelerometer::sensorType)) {
            if (!identifier.startsWith("dummy")) {
                real = identifier;
                break;
            }
        }
        if (real.isEmpty()) {
            return false;
        }
        sensor_ = new QAccelerometer(this);
        sensor_->setIdentifier(real);
        sensor_->setAccelerationMode(QAccelerometer::Gravity);
    }
    if (!sensor_->connectToBackend() || !sensor_->start()) {
        return false;
    }
    timer_->start();
    return true;
#else
    return false;
#endif
}

void TiltSensor::stop() {
    timer_->stop();
#ifdef TILIKA_HAVE_SENSORS
    if (sensor_ != nullptr) {
        sensor_->stop();
    }
#endif
}

bool TiltSensor::isActive() const {
    return timer_->isActive();
}

void TiltSensor::read() {
#ifdef TILIKA_HAVE_SENSORS
    const QAccelerometerReading* reading = sensor_ != nullptr ? sensor_->reading() : nullptr;
    if (reading == nullptr) {
        return;
    }
    // Qt reports the pull of gravity along each axis, so turning the right
    // edge down reads as a negative x.
    const double x = -reading->x() / kGravity;
    const QScreen* screen = QGuiApplication::primaryScreen();
    const bool upsideDown =
        screen != nullptr && screen->orientation() == Qt::InvertedPortraitOrientation;
    emit tilted(x, upsideDown);
#endif
}

}  // namespace tilika::frame
