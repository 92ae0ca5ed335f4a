#pragma once

#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QtTest>

#include <csignal>
#include <sys/prctl.h>

namespace tilika::test {

// Starts a message bus of the test's own in `daemon`, so that the services a
// test fakes never meet the machine's, and returns its address. Empty when
// the daemon did not start; call only when dbus-daemon is installed.
inline QString startPrivateBus(QProcess& daemon) {
    // A test that crashes takes its bus along.
    daemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    daemon.start(QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")),
                 {"--session", "--nofork", "--print-address"});
    if (!daemon.waitForStarted()) {
        return {};
    }
    while (!daemon.canReadLine()) {
        if (!daemon.waitForReadyRead(10000)) {
            return {};
        }
    }
    return QString::fromUtf8(daemon.readLine()).trimmed();
}

inline bool busDaemonInstalled() {
    return !QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty();
}

}  // namespace tilika::test
