#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tilika::core {

// Why a write the user asked for did not land.
enum class WriteFailure {
    noDatabase,  // the diary's file is missing or can't be opened
    readOnly,    // the file or its folder can't be written to
    diskFull,
    busy,       // another program holds the file
    damaged,    // the file is not a database, or is broken
    diskError,  // the disk failed to read or write
    settings,   // the settings file could not be written
    other,
};

// The reason as the user reads it, after "Не удалось сохранить данные: ".
inline std::string_view failureReason(WriteFailure failure) {
    switch (failure) {
        case WriteFailure::noDatabase:
            return "файл дневника не найден или не открывается";
        case WriteFailure::readOnly:
            return "папка с данными доступна только для чтения";
        case WriteFailure::diskFull:
            return "на диске не осталось места";
        case WriteFailure::busy:
            return "файл дневника занят другой программой";
        case WriteFailure::damaged:
            return "файл дневника поврежден";
        case WriteFailure::diskError:
            return "ошибка чтения или записи на диске";
        case WriteFailure::settings:
            return "не удалось записать файл настроек";
        case WriteFailure::other:
            break;
    }
    return "ошибка при записи в базу данных";
}

// What a write on a user's action tells the screen that asked for it: all of
// it landed, or none of it did, and why. A screen told of a failure says so
// and keeps what the user typed; carrying on quietly would lose it.
class [[nodiscard]] WriteResult {
public:
    WriteResult() = default;
    // Implicit, so that an operation can simply return the reason.
    WriteResult(WriteFailure failure) : failure_(failure) {}

    bool ok() const { return !failure_.has_value(); }
    explicit operator bool() const { return ok(); }
    std::optional<WriteFailure> failure() const { return failure_; }

    // "Не удалось сохранить данные: на диске не осталось места."; empty when
    // the write landed.
    std::string message() const {
        if (!failure_) {
            return {};
        }
        return "Не удалось сохранить данные: " + std::string(failureReason(*failure_)) + ".";
    }

private:
    std::optional<WriteFailure> failure_;
};

// Carries a failure that a write met in a part it called out of the whole
// operation, so that its transaction rolls back and the caller hears the
// part's reason (see tryWrite in core/database.h).
class WriteFailed final : public std::runtime_error {
public:
    explicit WriteFailed(WriteFailure failure)
        : std::runtime_error("a part of it could not be written"), failure_(failure) {}
    WriteFailure failure() const { return failure_; }

private:
    WriteFailure failure_;
};

// Goes on with the operation when the part landed, and leaves it otherwise.
inline void throwIfFailed(const WriteResult& part) {
    if (const std::optional<WriteFailure> failure = part.failure()) {
        throw WriteFailed(*failure);
    }
}

}  // namespace tilika::core
