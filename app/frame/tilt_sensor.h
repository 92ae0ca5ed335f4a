#pragma once

#include <QObject>

class QAccelerometer;
class QTimer;

namespace tilika::frame {

// The sideways tilt of the device, read from its accelerometer every 0.3
// seconds while it runs. A device without an accelerometer, as most
// desktops are, simply never reports.
class TiltSensor final : public QObject {
    Q_OBJECT

public:
    explicit TiltSensor(QObject* parent);
    ~TiltSensor() override;

    // Starts reading; false when there is nothing to read from.
    bool start();
    void stop();
    bool isActive() const;

signals:
    // x is in g, positive with the device turned to its right; upside down
    // when the screen stands on its head.
    void tilted(double x, bool upsideDown);

private:
    void read();

    QAccelerometer* sensor_ = nullptr;
    QTimer* timer_;
};

}  // namespace tilika::frame
