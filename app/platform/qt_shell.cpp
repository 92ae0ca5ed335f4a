#include "platform/qt_shell.h"

#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

#include "platform/log.h"

namespace tilika::platform {

QtShell::QtShell() = default;

QtShell::~QtShell() = default;

ScreenSize QtShell::screenSize() const {
    return {static_cast<double>(kWindowWidth), static_cast<double>(kWindowHeight)};
}

void QtShell::registerUserNotifications(int types) {
    log("Notifications: desktop notifications need no registration (types " +
        std::to_string(types) + ")");
}

void QtShell::registerForRemoteNotifications() {
    log("Notifications: push messages are not available on the desktop");
}

void QtShell::setShortcuts(const std::vector<Shortcut>& shortcuts) {
    log("Shortcuts: the desktop has no home-screen shortcuts (" + std::to_string(shortcuts.size()) +
        " offered)");
}

void QtShell::showAlert(Alert alert) {
    auto* box = new QMessageBox(root_.get());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QString::fromStdString(alert.title));
    box->setText(QString::fromStdString(alert.title));
    box->setInformativeText(QString::fromStdString(alert.text));
    std::vector<QAbstractButton*> buttons;
    for (std::size_t i = 0; i < alert.buttons.size(); ++i) {
        const auto role = i == 0 ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
        buttons.push_back(box->addButton(QString::fromStdString(alert.buttons[i]), role));
    }
    if (!buttons.empty()) {
        box->setDefaultButton(static_cast<QPushButton*>(buttons.back()));
    }
    QObject::connect(box, &QMessageBox::buttonClicked, box,
                     [buttons, onClose = std::move(alert.onClose)](QAbstractButton* clicked) {
                         for (std::size_t i = 0; i < buttons.size(); ++i) {
                             if (buttons[i] == clicked && onClose) {
                                 onClose(static_cast<int>(i));
                             }
                         }
                     });
    box->open();
}

void QtShell::openUrl(const std::string& url) {
    if (url.empty() || !QDesktopServices::openUrl(QUrl(QString::fromStdString(url)))) {
        log("Could not open " + url);
    }
}

void QtShell::showRootWindow() {
    if (!root_ && rootFactory_) {
        root_ = rootFactory_();
    }
    if (root_) {
        root_->resize(kWindowWidth, kWindowHeight);
        root_->show();
    }
}

bool QtShell::rootIsCurrent() const {
    return root_ && QApplication::activeModalWidget() == nullptr;
}

void QtShell::openDayEditor(Date day) {
    if (!root_) {
        showRootWindow();
    }
    if (dayEditorOpener_) {
        dayEditorOpener_(day);
    }
}

void QtShell::hideKeyboard() {
    if (QWidget* focus = QApplication::focusWidget()) {
        focus->clearFocus();
    }
}

void QtShell::coverWithLock() {
    if (lockCoverer_) {
        lockCoverer_();
    }
}

}  // namespace tilika::platform
