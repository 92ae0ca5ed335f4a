#include "platform/desktop_notifier.h"

#include <QDBusMessage>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include "platform/folders.h"
#include "platform/log.h"

namespace tilika::platform {
namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
// A service that hangs must not hang the window or the timer run for long.
constexpr int kCallTimeoutMs = 5000;
// Clicks on older notifications are still welcome, but not forever.
constexpr qsizetype kRememberedClickable = 64;

QDBusMessage call(const QDBusConnection& bus, const QString& method,
                  const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kService, method);
    message.setArguments(arguments);
    QDBusMessage reply = bus.call(message, QDBus::Block, kCallTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        log("Desktop notifications: " + method.toStdString() +
            " failed: " + reply.errorMessage().toStdString());
    }
    return reply;
}

}  // namespace

std::filesystem::path reminderPicture(const Folders& folders) {
    return folders.path(SystemFolder::Root) / "pictures" / "c-ne-alarm128.svg";
}

DesktopNotifier::DesktopNotifier(std::filesystem::path icon, QDBusConnection bus, QObject* parent)
    : QObject(parent),
      bus_(std::move(bus)),
      icon_(QUrl::fromLocalFile(QString::fromStdString(icon.string())).toString()) {}

bool DesktopNotifier::available() {
    const QDBusMessage reply = call(bus_, QStringLiteral("GetCapabilities"), {});
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return false;
    }
    markup_ = reply.arguments().value(0).toStringList().contains(QStringLiteral("body-markup"));
    return true;
}

bool DesktopNotifier::notify(const QString& body, bool clickable) {
    if (!markup_ && !available()) {
        return false;
    }
    // A bus string can't carry a NUL, and a service that reads markup
    // would take "<" and "&" of the reminder's own text for tags.
    QString text = body;
    text.remove(QChar(u'\0'));
    if (*markup_) {
        text = text.toHtmlEscaped();
    }
    const QStringList actions =
        clickable ? QStringList{QStringLiteral("default"), QStringLiteral("Открыть")}
                  : QStringList{};
    const QVariantMap hints{
        {QStringLiteral("urgency"), QVariant::fromValue<uchar>(1)},
        {QStringLiteral("sound-name"), QStringLiteral("alarm-clock-elapsed")},
        {QStringLiteral("desktop-entry"), QStringLiteral("tilika")},
    };
    const QDBusMessage reply = call(bus_, QStringLiteral("Notify"),
                                    {QStringLiteral("Тилика"), 0u, icon_,
                                     QStringLiteral("Напоминание"), text, actions, hints, 0});
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return false;
    }
    if (clickable) {
        if (!listening_) {
            listening_ = bus_.connect(kService, kPath, kService, QStringLiteral("ActionInvoked"),
                                      this, SLOT(onActionInvoked(uint, QString)));
        }
        clickable_.append(reply.arguments().value(0).toUInt());
        if (clickable_.size() > kRememberedClickable) {
            clickable_.removeFirst();
        }
    }
    return true;
}

void DesktopNotifier::onActionInvoked(uint id, const QString& action) {
    if (action == QStringLiteral("default") && clickable_.contains(id)) {
        emit activated();
    }
}

}  // namespace tilika::platform
