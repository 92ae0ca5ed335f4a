#!/usr/bin/env bash
# Installs and removes the reminder timer the way a user does, with a fake
# systemctl that only writes down what it was asked, and checks the units left
# among the user's own.
#   install_reminders_test.sh BUILD_TREE_TILIKA
set -euo pipefail
built=$1
build=$(dirname "$built")
# Inside the build folder, so that the program can be hard-linked from there.
work=$(mktemp -d "$build/reminders-test.XXXXXX")
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

# The program runs from a folder whose name systemd must be told exactly: a
# space, "%", "$" and Cyrillic letters. It finds its resources beside itself.
place() {
    mkdir -p "$1"
    ln "$built" "$1/tilika" 2>/dev/null || cp "$built" "$1/tilika"
    ln -s "$build/resources" "$1/resources"
}
bin="$work/Тилика 100% \$HOME"
place "$bin"

mkdir "$work/fake" "$work/empty"
cat >"$work/fake/systemctl" <<EOF
#!/bin/sh
echo "\$*" >>"$work/calls"
if [ -n "\${FAKE_SYSTEMCTL_FAILS:-}" ]; then
    echo "Failed to connect to bus: No medium found" >&2
    exit 1
fi
EOF
chmod +x "$work/fake/systemctl"

export XDG_CONFIG_HOME=$work/config
units=$XDG_CONFIG_HOME/systemd/user
service=$units/tilika-reminders.service
timer=$units/tilika-reminders.timer
# No display: the option must not need one.
run() {
    local path=$1
    shift
    env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM PATH="$path" "$@"
}

# Installing writes both units for this program and data folder, and has the
# user manager reload and start the timer.
data="$work/data 100% \$USER \"q\""
out=$(run "$work/fake:$PATH" "$bin/tilika" --install-reminders --data-dir "$data" 2>&1) \
    || fail "install: exit $?: $out"
[[ "$out" == *"когда Тилика закрыта"* ]] || fail "install: says $out"
exec_line="ExecStart=\"$work/Тилика 100%% \$HOME/tilika\" --deliver-due --data-dir"
exec_line+=" \"$work/data 100%% \$\$USER \\\"q\\\"\""
grep -qxF "$exec_line" "$service" || fail "service runs $(grep ExecStart "$service")"
for line in Type=oneshot SuccessExitStatus=75; do
    grep -qxF "$line" "$service" || fail "service lacks $line"
done
for line in 'OnCalendar=*:*:00' AccuracySec=1s WantedBy=timers.target; do
    grep -qxF "$line" "$timer" || fail "timer lacks $line"
done
printf '%s\n' "--user daemon-reload" "--user enable --now tilika-reminders.timer" \
    | diff - "$work/calls" >&2 || fail "systemctl calls"

# systemd itself reads the units back; it also checks that the program is
# there under the path it decoded. A known-good unit first tells whether
# systemd-analyze can work in this environment at all.
if command -v systemd-analyze >/dev/null; then
    mkdir -m 700 "$work/runtime" "$work/probe"
    printf '[Service]\nType=oneshot\nExecStart=/bin/true\n' >"$work/probe/probe.service"
    verify() { XDG_RUNTIME_DIR=$work/runtime systemd-analyze --user verify "$@" 2>&1; }
    if verify "$work/probe/probe.service" >/dev/null; then
        report=$(verify "$service" "$timer") || fail "systemd-analyze verify: $report"
    else
        echo "systemd-analyze cannot verify units here: the units are not verified"
    fi
else
    echo "systemd-analyze is not installed: the units are not verified"
fi

# When systemctl fails, an install over an earlier one leaves that one as it was.
cp "$service" "$work/service.before"
rm "$work/calls"
set +e
out=$(FAKE_SYSTEMCTL_FAILS=1 run "$work/fake:$PATH" "$bin/tilika" --install-reminders \
    --data-dir "$work/other" 2>&1)
status=$?
set -e
[ "$status" -eq 69 ] || fail "failing systemctl: exit $status"
[[ "$out" == *"только пока Тилика открыта"* ]] || fail "failing systemctl: says $out"
cmp -s "$service" "$work/service.before" || fail "failing systemctl: earlier unit changed"
[ -f "$timer" ] || fail "failing systemctl: earlier timer removed"

# Removing stops the timer and takes both units away.
rm "$work/calls"
out=$(run "$work/fake:$PATH" "$bin/tilika" --remove-reminders 2>&1) || fail "remove: exit $?: $out"
[ ! -e "$service" ] && [ ! -e "$timer" ] || fail "remove: units left"
printf '%s\n' "--user disable --now tilika-reminders.timer" "--user daemon-reload" \
    | diff - "$work/calls" >&2 || fail "remove: systemctl calls"

# Without systemctl nothing is left behind, not even the folders.
export XDG_CONFIG_HOME=$work/config-none
set +e
out=$(run "$work/empty" "$bin/tilika" --install-reminders --data-dir "$work/d" 2>&1)
status=$?
set -e
[ "$status" -eq 69 ] || fail "no systemctl: exit $status"
[[ "$out" == *"только пока Тилика открыта"* ]] || fail "no systemctl: says $out"
[ ! -e "$XDG_CONFIG_HOME" ] || fail "no systemctl: left $(find "$XDG_CONFIG_HOME")"

# A program path that systemd would refuse to start is refused here, before
# anything is written.
place "$work/with \"quote\""
set +e
out=$(run "$work/fake:$PATH" "$work/with \"quote\"/tilika" --install-reminders 2>&1)
status=$?
set -e
[ "$status" -eq 1 ] || fail "quoted path: exit $status: $out"
[ ! -e "$XDG_CONFIG_HOME" ] || fail "quoted path: units written"

echo "reminder timer checks passed"
