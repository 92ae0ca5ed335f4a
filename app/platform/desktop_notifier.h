#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <filesystem>
#include <optional>

namespace tilika::platform {

class Folders;

// Our alarm clock, the picture a reminder is shown with.
std::filesystem::path reminderPicture(const Folders& folders);

// Shows reminders through the desktop's notification service on the D-Bus
// session bus (the freedesktop.org interface that desktops share).
class DesktopNotifier final : public QObject {
    Q_OBJECT

public:
    // `icon` is the picture shown beside the text.
    explicit DesktopNotifier(std::filesystem::path icon,
                             QDBusConnection bus = QDBusConnection::sessionBus(),
                             QObject* parent = nullptr);

    // Whether a notification service answers on the bus (one that the bus
    // starts on demand counts).
    bool available();
    // Shows a reminder with the program's summary. With `clickable`, a click
    // on it emits activated(); only the running program can act on one.
    // False when the service is missing or refused it.
    bool notify(const QString& body, bool clickable);

signals:
    // The user clicked one of our notifications.
    void activated();

private slots:
    void onActionInvoked(uint id, const QString& action);

private:
    QDBusConnection bus_;
    QString icon_;
    std::optional<bool> markup_;  // asked once: whether bodies are read as markup
    QList<uint> clickable_;
    bool listening_ = false;
};

}  // namespace tilika::platform
