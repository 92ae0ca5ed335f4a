#pragma once

#include <optional>
#include <string>
#include <vector>

#include "diary/reference_lists.h"
#include "frame/form_row.h"

namespace tilika::diary {

// Editing kinds of catalogue and form rows: how a value is edited, stored
// and shown.
namespace tp {
inline constexpr int checkList = 1;     // several items of a reference list
inline constexpr int pickOne = 2;       // one item of a list
inline constexpr int text = 3;          // free text
inline constexpr int timedRows = 4;     // rows of time and text (temperature)
inline constexpr int reminders = 5;     // rows of time and reminder text
inline constexpr int centimetres = 6;   // a number on a slider
inline constexpr int kilograms = 7;     // a number on a slider
inline constexpr int pickFromList = 8;  // one item of a reference list (illness)
inline constexpr int bodyMeasures = 9;  // five body measures
inline constexpr int teeth = 13;        // change of teeth
inline constexpr int womanDay = 14;     // day type, woman edition
inline constexpr int ultrasound = 15;   // height and weight from an ultrasound
inline constexpr int birthResult = 16;  // birth summary
inline constexpr int popupList = 17;    // one item of a list, by popup
inline constexpr int medication = 23;   // medication courses
inline constexpr int popupText = 24;    // plain text in a popup
inline constexpr int diet = 25;         // diet state
inline constexpr int analyses = 26;     // analysis records
inline constexpr int popupText2 = 28;   // plain text in a popup
inline constexpr int periods = 29;      // periods with start and end (sleep, walk)
inline constexpr int pressure = 30;     // pressure measures
inline constexpr int fluids = 31;       // fluid balance
inline constexpr int photo = 100;       // the day's photo
inline constexpr int medicationLength = 106;
inline constexpr int medicationDose = 107;
inline constexpr int medicationPeriod = 108;
inline constexpr int popupList2 = 110;
}  // namespace tp

// The catalogue of entries is a table of form rows: the day editor edits a
// day through the same form engine as every other form.
using frame::MultiRow;
using CatalogueRow = frame::FormRow;

// Appends one row with an empty value and reading.
void addToNoteInit(std::vector<CatalogueRow>& rows, std::string pic, std::string caption, int type,
                   int listid, std::string editCap, std::string editDescr, std::string field,
                   bool edit, bool required);

// Replaces the rows with the catalogue of the child edition, in the order of
// the day editor; the photo row comes last.
void initTodayNoteStruct(std::vector<CatalogueRow>& rows);

// The running flags of one day while a diary is built.
struct DayFlags {
    bool isbirthdate = false;
    bool istoday = false;
    bool isphoto = false;
    bool isbolezn = false;
    bool isdieta = false;
};

// Sets every day flag to false.
void initNoteStruct(DayFlags& flags);

}  // namespace tilika::diary
