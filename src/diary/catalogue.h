#pragma once

#include <optional>
#include <string>
#include <vector>

#include "diary/reference_lists.h"
#include "platform/image_codec.h"

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

// One display row of an entry that holds several rows a day. Rows of times
// (temperature, reminders) use `time`, `cap` and `index`; rows of records
// (medication courses, sleep and walks) use `source`, the record as JSON
// text, and `text`, its reading.
struct MultiRow {
    std::string time;
    std::string cap;
    int index = 0;
    std::string source;
    std::string text;

    bool operator==(const MultiRow&) const = default;
};

// A row of the entry catalogue, and of every form: how one value is edited
// and shown, with the value itself in `source` and its reading in `text`.
struct CatalogueRow {
    int tp = 0;
    int listid = 0;  // the reference list the row picks from; 0 for none
    std::string caption;
    std::string pic;
    std::string editcap;
    std::string editdescr;
    std::string field;  // the diary type this row stands for
    bool edit = false;
    bool required = false;
    std::string text;
    std::string source;
    std::optional<std::string> oldsource;
    std::vector<MultiRow> multiarray;
    std::optional<bool> active;  // height and weight: the value is above zero

    // The photo row of a day.
    bool isphoto = false;
    std::string photopath;
    bool changephoto = false;

    // Form-only keys.
    std::string location;  // "first" or "second": two short fields share a line
    // A photo row: what the user did with the picture (1 a new picture, 2
    // removed) and the picture itself.
    int save = 0;
    std::optional<platform::Image> image;

    // Form keys of lists, sliders, stopwatches and teeth.
    std::vector<ListRow> list;      // the items of a list row
    std::vector<ListRow> listdata;  // ready items of a list not kept among the reference lists
    int celltype = 0;               // how the items of a list row are drawn
    int listtype = 0;               // 1 one choice, 2 many
    int listedittype = 0;           // how a new item is added: 1, 2 or 3
    std::string scalemin;
    std::string scalemax;
    std::string scaletype;  // "3" keeps three decimals
    bool startactive = false;
    std::string autocalc;  // "start", "end" or "length" of one span
    bool startbutton = false;
    std::string startprogress;
    std::string tooth;  // the teeth known before, joined by "<tr>"
};

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
