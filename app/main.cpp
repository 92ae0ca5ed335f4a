// Tilika: a family diary for parents of young children.
//
//   tilika [--data-dir DIR] [--screenshot FILE.png]
//   tilika --install-reminders | --remove-reminders [--data-dir DIR]
//   tilika --deliver-due [--data-dir DIR]
//
// Exits with 0 when the window is closed (or the picture is drawn), 1 when the
// data folder can't be used or another copy of the program works on it (a
// window says which, or the picture shows it), 2 without a display, 64 for
// options it doesn't know how to read. The reminder timer's options need no
// display and exit with 0 when done, 69 without a working systemctl.
// --deliver-due, run by that timer, shows the reminders that came due while
// the program is closed (its exit codes are in platform/deliver_due.h).

#include <QApplication>
#include <QCoreApplication>
#include <QMessageBox>
#include <QPixmap>
#include <QtGlobal>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "core/folder_lock.h"
#include "frame/session.h"
#include "platform/clock.h"
#include "platform/deliver_due.h"
#include "platform/log.h"
#include "platform/reminder_timer.h"

namespace {

struct Options {
    std::optional<std::filesystem::path> dataDir;
    std::optional<std::filesystem::path> screenshot;
    bool help = false;
    bool installReminders = false;
    bool removeReminders = false;
    bool deliverDue = false;
    std::string error;
};

constexpr const char* kUsage =
    "usage: tilika [--data-dir DIR] [--screenshot FILE.png]\n"
    "       tilika --install-reminders | --remove-reminders | --deliver-due [--data-dir DIR]\n"
    "  --data-dir DIR         keep the diary in DIR instead of $XDG_DATA_HOME/tilika\n"
    "  --screenshot FILE.png  draw the first screen into FILE.png without a display and exit\n"
    "  --install-reminders    show reminders while the program is closed (a systemd user timer)\n"
    "  --remove-reminders     remove that timer\n"
    "  --deliver-due          show the reminders that are due, if the program is closed\n";

// Reads our own options and leaves anything else to Qt.
Options parseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        auto valueOf = [&](std::string_view name) -> std::optional<std::string> {
            if (arg.starts_with(std::string(name) + "=")) {
                return std::string(arg.substr(name.size() + 1));
            }
            if (arg == name) {
                if (i + 1 < argc) {
                    return std::string(argv[++i]);
                }
                options.error = std::string(name) + " needs a value";
            }
            return std::nullopt;
        };
        if (arg == "--help" || arg == "-h") {
            options.help = true;
        } else if (arg == "--install-reminders") {
            options.installReminders = true;
        } else if (arg == "--remove-reminders") {
            options.removeReminders = true;
        } else if (arg == "--deliver-due") {
            options.deliverDue = true;
        } else if (auto dir = valueOf("--data-dir")) {
            options.dataDir = *dir;
        } else if (auto file = valueOf("--screenshot")) {
            options.screenshot = *file;
        }
        if (!options.error.empty()) {
            break;
        }
    }
    return options;
}

bool hasDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return true;
        }
    }
    return false;
}

bool saveScreenshot(QWidget* window, const std::filesystem::path& file) {
    if (window == nullptr) {
        return false;
    }
    QApplication::processEvents();
    return window->grab().save(QString::fromStdString(file.string()), "PNG");
}

// Why the program can't start, in a window, since a person who started it from
// a menu never sees the terminal. With --screenshot the window is drawn into
// the picture instead; the first screen the user would have seen is this one.
int refuseToStart(const QString& text, const QString& details,
                  const std::optional<std::filesystem::path>& screenshot) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Тилика"), text, QMessageBox::Ok);
    box.setInformativeText(details);
    if (!screenshot) {
        box.exec();
        return 1;
    }
    box.show();
    if (!saveScreenshot(&box, *screenshot)) {
        std::cerr << "tilika: cannot write " << screenshot->string() << "\n";
    }
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = parseOptions(argc, argv);
    if (!options.error.empty()) {
        std::cerr << "tilika: " << options.error << "\n" << kUsage;
        return 64;
    }
    if (options.help) {
        std::cout << kUsage;
        return 0;
    }
    if (options.installReminders || options.removeReminders) {
        const QCoreApplication app(argc, argv);
        const std::filesystem::path resources = tilika::frame::Session::defaultResourceDir();
        if (options.removeReminders) {
            return tilika::platform::removeReminders(resources);
        }
        return tilika::platform::installReminders(
            resources, QCoreApplication::applicationFilePath().toStdString(),
            options.dataDir.value_or(tilika::frame::Session::defaultDataDir()));
    }
    if (options.deliverDue) {
        const QCoreApplication app(argc, argv);
        return tilika::platform::deliverDue(
            options.dataDir.value_or(tilika::frame::Session::defaultDataDir()),
            tilika::frame::Session::defaultResourceDir());
    }
    if (options.screenshot) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else if (!hasDisplay()) {
        std::cerr << "tilika: no display to show the window on; start it in a desktop session, "
                     "or pass --screenshot FILE.png to draw the first screen into a picture\n";
        return 2;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tilika"));
    tilika::platform::setLogSink([](std::string_view line) {
        qInfo().noquote() << QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()));
    });

    const tilika::platform::SystemClock clock;
    tilika::frame::Session session(
        clock, options.dataDir.value_or(tilika::frame::Session::defaultDataDir()),
        tilika::frame::Session::defaultResourceDir());
    switch (session.start()) {
        case tilika::frame::Session::StartResult::Started:
            break;
        case tilika::frame::Session::StartResult::FolderUnavailable: {
            const std::string path = session.dataDir().string();
            const std::string reason = tilika::core::folderErrorText(session.folderError());
            std::cerr << "tilika: cannot use the data folder " << path << ": "
                      << session.folderError().message() << "\n";
            return refuseToStart(QStringLiteral("Не удалось открыть папку с данными"),
                                 QString::fromStdString(path + "\n\nПричина: " + reason + "."),
                                 options.screenshot);
        }
        case tilika::frame::Session::StartResult::AlreadyRunning:
            std::cerr << "tilika: the program is already open on this data folder\n";
            return refuseToStart(
                QStringLiteral("Тилика уже открыта."),
                QStringLiteral("Перейдите в открытое окно программы. Папка с данными: ") +
                    QString::fromStdString(session.dataDir().string()),
                options.screenshot);
    }
    if (options.screenshot) {
        if (!saveScreenshot(session.rootWindow(), *options.screenshot)) {
            std::cerr << "tilika: cannot write " << options.screenshot->string() << "\n";
            return 1;
        }
        return 0;
    }
    return app.exec();
}
