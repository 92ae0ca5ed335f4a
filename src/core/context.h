#pragma once

namespace tilika::platform {
class Clock;
class Folders;
class SettingsStore;
}  // namespace tilika::platform

namespace tilika::core {

class Dates;
class DatabaseStore;
struct AppState;

// What the operations of every subsystem work with. It is handed in, never
// reached for, so each service can be built over a test folder, a fixed
// clock and a fresh settings file.
struct Context {
    const platform::Clock& clock;
    platform::SettingsStore& settings;
    const platform::Folders& folders;
    const Dates& dates;
    DatabaseStore& database;
    AppState& state;
};

}  // namespace tilika::core
