#include "platform/reminder_timer.h"

#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <span>
#include <sstream>
#include <vector>

#include "core/files.h"

namespace tilika::platform {

namespace fs = std::filesystem;

namespace {

// A user manager that hangs must not hang the terminal with it.
constexpr int kSystemctlTimeoutMs = 60'000;

std::optional<std::string> readText(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

bool writeText(const fs::path& file, const std::string& text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    return core::writeFileReplacing(file, std::span(bytes, text.size()));
}

void replaceAll(std::string& text, std::string_view placeholder, const std::string& value) {
    for (std::size_t at = text.find(placeholder); at != std::string::npos;
         at = text.find(placeholder, at + value.size())) {
        text.replace(at, placeholder.size(), value);
    }
}

bool present(const fs::path& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

// The folders between the first missing one and `folder`, deepest first: what
// creating `folder` adds, and so what undoing it removes.
std::vector<fs::path> missingFolders(const fs::path& folder) {
    std::vector<fs::path> missing;
    for (fs::path at = folder; !at.empty() && !present(at); at = at.parent_path()) {
        missing.push_back(at);
        if (at == at.root_path()) {
            break;
        }
    }
    return missing;
}

// A unit file as it was before an install touched it, to be put back when the
// install doesn't go through.
struct KeptFile {
    fs::path path;
    std::optional<std::string> text;

    void restore() const {
        std::error_code error;
        if (text) {
            writeText(path, *text);
        } else {
            fs::remove(path, error);
        }
    }
};

}  // namespace

ReminderTimer::ReminderTimer(fs::path templates, fs::path unitDir)
    : templates_(std::move(templates)), unitDir_(std::move(unitDir)) {}

fs::path ReminderTimer::defaultUnitDir() {
    fs::path config;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg != nullptr && *xdg == '/') {
        config = xdg;
    } else {
        const char* home = std::getenv("HOME");
        config = fs::path(home != nullptr ? home : ".") / ".config";
    }
    return config / "systemd" / "user";
}

std::optional<std::string> ReminderTimer::quotedProgram(std::string_view path) {
    std::string quoted = "\"";
    for (const char c : path) {
        if (c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            return std::nullopt;
        }
        quoted += c == '%' ? std::string("%%") : std::string(1, c);
    }
    return quoted + "\"";
}

std::string ReminderTimer::quotedArgument(std::string_view word) {
    std::string quoted = "\"";
    for (const char c : word) {
        switch (c) {
            case '\\':
                quoted += "\\\\";
                break;
            case '"':
                quoted += "\\\"";
                break;
            case '%':  // a specifier otherwise
                quoted += "%%";
                break;
            case '$':  // an environment variable otherwise
                quoted += "$$";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
                    char escape[5];
                    std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned char>(c));
                    quoted += escape;
                } else {
                    quoted += c;
                }
        }
    }
    return quoted + "\"";
}

bool ReminderTimer::installed() const {
    return present(unitDir_ / kTimerUnit);
}

fs::path ReminderTimer::wantsLink() const {
    return unitDir_ / "timers.target.wants" / kTimerUnit;
}

bool ReminderTimer::systemctl(std::initializer_list<std::string_view> arguments) {
    const QString program = QStandardPaths::findExecutable(QStringLiteral("systemctl"));
    if (program.isEmpty()) {
        detail_ = "systemctl is not on PATH";
        return false;
    }
    QStringList list{QStringLiteral("--user")};
    std::string command = "systemctl --user";
    for (const std::string_view argument : arguments) {
        list << QString::fromUtf8(argument.data(), static_cast<qsizetype>(argument.size()));
        command += " " + std::string(argument);
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, list);
    if (!process.waitForFinished(kSystemctlTimeoutMs)) {
        process.kill();
        process.waitForFinished();
        detail_ = command + " did not finish";
        return false;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        detail_ = command + " failed (exit " + std::to_string(process.exitCode()) + ")";
        const std::string said = process.readAll().trimmed().toStdString();
        if (!said.empty()) {
            detail_ += ": " + said;
        }
        return false;
    }
    return true;
}

ReminderTimer::Outcome ReminderTimer::install(const fs::path& program, const fs::path& dataDir) {
    detail_.clear();
    std::optional<std::string> service = readText(templates_ / (std::string(kServiceUnit) + ".in"));
    const std::optional<std::string> timer = readText(templates_ / kTimerUnit);
    if (!service || !timer) {
        detail_ = "no unit templates in " + templates_.string();
        return Outcome::noTemplates;
    }
    const std::optional<std::string> quotedPath = quotedProgram(program.string());
    if (!quotedPath) {
        detail_ = "systemd cannot start a program at " + program.string();
        return Outcome::badProgramPath;
    }
    replaceAll(*service, "@TILIKA@", *quotedPath);
    replaceAll(*service, "@DATA_DIR@", quotedArgument(dataDir.string()));

    const std::vector<fs::path> createdFolders = missingFolders(unitDir_);
    const bool hadWantsFolder = present(wantsLink().parent_path());
    const bool hadWantsLink = present(wantsLink());
    const std::vector<KeptFile> kept{
        {unitDir_ / kServiceUnit, readText(unitDir_ / kServiceUnit)},
        {unitDir_ / kTimerUnit, readText(unitDir_ / kTimerUnit)},
    };
    auto undo = [&] {
        std::error_code error;
        for (const KeptFile& file : kept) {
            file.restore();
        }
        if (!hadWantsLink) {
            fs::remove(wantsLink(), error);
        }
        if (!hadWantsFolder) {
            fs::remove(wantsLink().parent_path(), error);  // only when empty
        }
        for (const fs::path& folder : createdFolders) {
            fs::remove(folder, error);
        }
    };

    std::error_code error;
    fs::create_directories(unitDir_, error);
    if (error || !writeText(kept[0].path, *service) || !writeText(kept[1].path, *timer)) {
        detail_ = "cannot write the units into " + unitDir_.string();
        undo();
        return Outcome::cannotWrite;
    }
    if (!systemctl({"daemon-reload"}) || !systemctl({"enable", "--now", kTimerUnit})) {
        undo();
        return Outcome::noSystemctl;
    }
    return Outcome::done;
}

ReminderTimer::Outcome ReminderTimer::remove() {
    detail_.clear();
    // A timer that was never enabled has nothing to stop, and systemctl would
    // only complain about the missing unit.
    const bool wasInstalled = installed();
    const bool haveSystemctl =
        !QStandardPaths::findExecutable(QStringLiteral("systemctl")).isEmpty();
    bool told = !wasInstalled || !haveSystemctl || systemctl({"disable", "--now", kTimerUnit});
    std::error_code error;
    for (const fs::path& file : {unitDir_ / kServiceUnit, unitDir_ / kTimerUnit, wantsLink()}) {
        fs::remove(file, error);
    }
    if (wasInstalled && haveSystemctl && told) {
        told = systemctl({"daemon-reload"});
    }
    return told ? Outcome::done : Outcome::noSystemctl;
}

namespace {

constexpr const char* kOnlyWhileOpen = "напоминания будут приходить, только пока Тилика открыта.";

void explain(const ReminderTimer& timer) {
    if (!timer.detail().empty()) {
        std::cerr << "tilika: " << timer.detail() << "\n";
    }
}

}  // namespace

std::string installText(ReminderTimer::Outcome outcome, const ReminderTimer& timer) {
    switch (outcome) {
        case ReminderTimer::Outcome::done:
            return "Готово: напоминания будут приходить и тогда, когда Тилика закрыта.";
        case ReminderTimer::Outcome::noSystemctl:
            return std::string("Не удалось включить таймер напоминаний через systemctl: ") +
                   kOnlyWhileOpen;
        case ReminderTimer::Outcome::cannotWrite:
            return "Не удалось записать таймер напоминаний в папку " + timer.unitDir().string() +
                   ": " + kOnlyWhileOpen;
        case ReminderTimer::Outcome::badProgramPath:
            return std::string(
                       "systemd не запускает программы из папок, в названии которых "
                       "есть кавычки или обратная косая черта: ") +
                   kOnlyWhileOpen;
        case ReminderTimer::Outcome::noTemplates:
            break;
    }
    return std::string("Среди файлов программы нет таймера напоминаний: ") + kOnlyWhileOpen;
}

int installReminders(const fs::path& resourceDir, const fs::path& program,
                     const fs::path& dataDir) {
    ReminderTimer timer(resourceDir / "systemd");
    const ReminderTimer::Outcome outcome = timer.install(fs::absolute(program).lexically_normal(),
                                                         fs::absolute(dataDir).lexically_normal());
    explain(timer);
    const std::string text = installText(outcome, timer);
    switch (outcome) {
        case ReminderTimer::Outcome::done:
            std::cout << text << "\n";
            return 0;
        case ReminderTimer::Outcome::noSystemctl:
            std::cerr << text << "\n";
            return 69;
        case ReminderTimer::Outcome::cannotWrite:
            std::cerr << text << "\n";
            return 73;
        case ReminderTimer::Outcome::badProgramPath:
        case ReminderTimer::Outcome::noTemplates:
            break;
    }
    std::cerr << text << "\n";
    return 1;
}

int removeReminders(const fs::path& resourceDir) {
    ReminderTimer timer(resourceDir / "systemd");
    const ReminderTimer::Outcome outcome = timer.remove();
    explain(timer);
    if (outcome != ReminderTimer::Outcome::done) {
        std::cerr << "Таймер напоминаний удален, но systemctl не ответил: до следующего входа в "
                     "систему он может еще срабатывать.\n";
        return 69;
    }
    std::cout << "Таймер напоминаний удален: " << kOnlyWhileOpen << "\n";
    return 0;
}

}  // namespace tilika::platform
