#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "diary/catalogue.h"
#include "diary/entry_forms.h"

namespace tilika::core {
struct Context;
}

namespace tilika::diary {

class DayCloud;
class DiaryStore;

// The table of every weight or every height of a child: the one place where
// a measure is edited apart from its day.
class MeasureTable {
public:
    // What the table lists.
    static constexpr int kWeight = 1;
    static constexpr int kHeight = 2;

    struct Row {
        core::Date dat{};
        std::string value;  // as the diary shows it
        std::string day;    // "01 декабря 2026"
        std::string age;    // the child's age on that day
    };

    MeasureTable(core::Context& context, DiaryStore& store, DayCloud& cloud);

    void prepare(int regim, std::string gid);
    void reloadData();

    const std::string& caption() const { return caption_; }  // "Вес" or "Рост"
    const std::vector<Row>& rows() const { return rows_; }
    const std::string& field() const { return field_; }

    // The form of a new measure: the value on a slider, from the last one up
    // to today, and the day, today.
    EntryForm addForm();
    // Stores the value of that form on its day, replacing the day's measure.
    core::WriteResult editData(const std::vector<CatalogueRow>& answer);
    // Removes the measure of a row; the rest of its day stays.
    core::WriteResult deleteRow(std::size_t row);

private:
    std::string formatted(double value) const;
    void changed(core::Date date);

    core::Context& context_;
    DiaryStore& store_;
    DayCloud& cloud_;
    int regim_ = kWeight;
    std::string gid_;
    std::string field_ = "ves";
    std::string caption_ = "Вес";
    std::vector<Row> rows_;
};

}  // namespace tilika::diary
