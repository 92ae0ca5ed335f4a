#include "platform/fingerprint_reader.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tilika::platform {
namespace {

const QString kService = QStringLiteral("net.reactivated.Fprint");
const QString kManagerPath = QStringLiteral("/net/reactivated/Fprint/Manager");
const QString kManager = QStringLiteral("net.reactivated.Fprint.Manager");
const QString kDevice = QStringLiteral("net.reactivated.Fprint.Device");
// An empty user name is the user who asks.
const QString kCurrentUser;

QDBusMessage deviceCall(const QString& device, const QString& method, QVariantList args = {}) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, device, kDevice, method);
    message.setArguments(args);
    return message;
}

// Runs `then` with the finished call, once, in the reader's own thread.
template <typename Then>
void whenDone(const QDBusConnection& bus, const QDBusMessage& message, QObject* context,
              Then then) {
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, then](QDBusPendingCallWatcher*) {
                         watcher->deleteLater();
                         then(*watcher);
                     });
}

}  // namespace

FingerprintReader::FingerprintReader(QDBusConnection bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)) {}

FingerprintReader::~FingerprintReader() {
    cancel();
}

void FingerprintReader::canEvaluate() {
    if (!bus_.isConnected()) {
        emit evaluated(false);
        return;
    }
    const QDBusMessage ask =
        QDBusMessage::createMethodCall(kService, kManagerPath, kManager, "GetDefaultDevice");
    whenDone(bus_, ask, this, [this](const QDBusPendingCall& call) {
        const QDBusPendingReply<QDBusObjectPath> device = call;
        if (device.isError()) {
            device_.clear();
            emit evaluated(false);
            return;
        }
        const QString path = device.value().path();
        whenDone(bus_, deviceCall(path, "ListEnrolledFingers", {kCurrentUser}), this,
                 [this, path](const QDBusPendingCall& listed) {
                     const QDBusPendingReply<QStringList> fingers = listed;
                     const bool can = !fingers.isError() && !fingers.value().isEmpty();
                     device_ = can ? path : QString();
                     emit evaluated(can);
                 });
    });
}

void FingerprintReader::verify() {
    if (verifying_) {
        return;
    }
    if (device_.isEmpty()) {
        emit verified(false, QStringLiteral("no reader"));
        return;
    }
    verifying_ = true;
    whenDone(bus_, deviceCall(device_, "Claim", {kCurrentUser}), this,
             [this](const QDBusPendingCall& claim) {
                 if (!verifying_) {
                     // Cancelled while the claim was on its way.
                     if (!claim.isError()) {
                         bus_.asyncCall(deviceCall(device_, "Release"));
                     }
                     return;
                 }
                 if (claim.isError()) {
                     verifying_ = false;
                     emit verified(false, claim.error().message());
                     return;
                 }
                 listening_ = bus_.connect(kService, device_, kDevice, "VerifyStatus", this,
                                           SLOT(onVerifyStatus(QString, bool)));
                 whenDone(bus_, deviceCall(device_, "VerifyStart", {QStringLiteral("any")}), this,
                          [this](const QDBusPendingCall& start) {
                              if (start.isError() && verifying_) {
                                  finish(false, start.error().message());
                              }
                          });
             });
}

void FingerprintReader::onVerifyStatus(const QString& result, bool done) {
    // A scan too short or off centre is followed by another try; only the
    // last status says how it ended.
    if (verifying_ && done) {
        finish(result == QStringLiteral("verify-match"), result);
    }
}

void FingerprintReader::finish(bool match, const QString& reason) {
    release();
    emit verified(match, reason);
}

void FingerprintReader::cancel() {
    if (verifying_) {
        release();
    }
}

void FingerprintReader::release() {
    verifying_ = false;
    if (listening_) {
        bus_.disconnect(kService, device_, kDevice, "VerifyStatus", this,
                        SLOT(onVerifyStatus(QString, bool)));
        listening_ = false;
        bus_.asyncCall(deviceCall(device_, "VerifyStop"));
        bus_.asyncCall(deviceCall(device_, "Release"));
    }
}

}  // namespace tilika::platform
