#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

namespace tilika::platform {

// The desktop's fingerprint service (fprintd) on the system bus. Every call
// is asynchronous: the service may first have to be started, and the window
// must not stop while a finger is awaited.
class FingerprintReader final : public QObject {
    Q_OBJECT

public:
    explicit FingerprintReader(QDBusConnection bus = QDBusConnection::systemBus(),
                               QObject* parent = nullptr);
    ~FingerprintReader() override;

    // Asks whether there is a reader and the user has enrolled a finger on
    // it; the answer comes as `evaluated`.
    void canEvaluate();
    // Claims the reader, waits for any enrolled finger and lets the reader
    // go; the outcome comes as `verified`. Needs a positive `evaluated`.
    void verify();
    // Stops waiting for a finger, without an outcome.
    void cancel();
    bool verifying() const { return verifying_; }

signals:
    void evaluated(bool can);
    // `reason` is the service's word for the outcome, or its error.
    void verified(bool match, const QString& reason);

private slots:
    void onVerifyStatus(const QString& result, bool done);

private:
    void finish(bool match, const QString& reason);
    void release();

    QDBusConnection bus_;
    QString device_;
    bool verifying_ = false;
    bool listening_ = false;
};

}  // namespace tilika::platform
