#include "frame/translation.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include "core/app_state.h"
#include "core/text.h"
#include "platform/log.h"

namespace tilika::frame {

void prepareTranslate(core::AppState& state, const std::filesystem::path& database) {
    state.trandic.clear();
    if (state.langid == language::russian) {
        return;
    }
    // The Russian key of the French column is named differently on purpose;
    // both come from the same table.
    const char* query = state.langid == language::french
                            ? "select res, fra from translate where nullif(fra,'') is not null"
                            : "select rus, ger from translate where nullif(ger,'') is not null";
    try {
        SQLite::Database db(database.string(), SQLite::OPEN_READONLY);
        SQLite::Statement rows(db, query);
        while (rows.executeStep()) {
            // The table keeps line breaks as "|", since each text is one row
            // of a spreadsheet.
            std::string key = core::replaceAll(rows.getColumn(0).getString(), "|", "\n");
            std::string text = core::replaceAll(rows.getColumn(1).getString(), "|", "\n");
            state.trandic.insert_or_assign(std::move(key), std::move(text));
        }
    } catch (const std::exception& error) {
        platform::log(std::string("Translations not loaded: ") + error.what());
        state.trandic.clear();
    }
}

std::string translate(const core::AppState& state, std::string_view text) {
    if (state.langid != language::russian) {
        if (const auto it = state.trandic.find(std::string(text)); it != state.trandic.end()) {
            return it->second;
        }
    }
    return std::string(text);
}

}  // namespace tilika::frame
