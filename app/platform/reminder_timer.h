#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tilika::platform {

// The systemd user timer that runs `tilika --deliver-due` once a minute, so
// that reminders come while the program is closed. Its two units are made
// from the templates in the resources' `systemd/` folder and live among the
// user's own units; systemctl makes the user manager pick them up.
class ReminderTimer final {
public:
    static constexpr std::string_view kServiceUnit = "tilika-reminders.service";
    static constexpr std::string_view kTimerUnit = "tilika-reminders.timer";

    enum class Outcome {
        done,
        noSystemctl,     // systemctl is missing, or it failed (see detail())
        cannotWrite,     // the folder of the user's units takes no files
        noTemplates,     // the resources lack the unit templates
        badProgramPath,  // systemd starts no program whose path has quotes or backslashes
    };

    // `templates`: the folder with the unit templates; `unitDir`: the folder
    // of the user's units.
    explicit ReminderTimer(std::filesystem::path templates,
                           std::filesystem::path unitDir = defaultUnitDir());

    // ${XDG_CONFIG_HOME:-~/.config}/systemd/user
    static std::filesystem::path defaultUnitDir();

    // The words of a unit's command line, read back by systemd as exactly
    // these bytes: quoted for spaces, with systemd's own escapes. The program
    // is not expanded the way the arguments are, and may hold no quotes,
    // backslashes or control characters at all (nullopt then).
    static std::optional<std::string> quotedProgram(std::string_view path);
    static std::string quotedArgument(std::string_view word);

    const std::filesystem::path& unitDir() const { return unitDir_; }

    // Whether the timer's unit is among the user's units.
    bool installed() const;

    // Writes both units for `program` serving `dataDir` (both absolute),
    // reloads the user manager and starts the timer now and at every login.
    // Anything but done leaves the units as they were before.
    Outcome install(const std::filesystem::path& program, const std::filesystem::path& dataDir);

    // Stops the timer and removes both units. The files go even when
    // systemctl fails (noSystemctl then says the manager may still hold the
    // timer until the next login); without systemctl there is no manager to
    // tell, and that is done.
    Outcome remove();

    // What systemctl said when it failed, or why a file could not be written.
    const std::string& detail() const { return detail_; }

private:
    bool systemctl(std::initializer_list<std::string_view> arguments);
    std::filesystem::path wantsLink() const;

    std::filesystem::path templates_;
    std::filesystem::path unitDir_;
    std::string detail_;
};

// What an install came to, in a line for the user.
std::string installText(ReminderTimer::Outcome outcome, const ReminderTimer& timer);

// `tilika --install-reminders`: installs the timer, says in Russian what
// that means for the reminders, and returns the program's exit status (0,
// 69 without a working systemctl, 73 when the units can't be written, 1
// when the program's resources are incomplete or systemd can't start it
// from where it is).
int installReminders(const std::filesystem::path& resourceDir, const std::filesystem::path& program,
                     const std::filesystem::path& dataDir);

// `tilika --remove-reminders`: the same for removing it.
int removeReminders(const std::filesystem::path& resourceDir);

}  // namespace tilika::platform
