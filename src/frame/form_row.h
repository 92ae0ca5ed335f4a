#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/image_codec.h"

namespace tilika::frame {

// One item of a list a form row picks from; the reference lists keep their
// rows in this shape.
struct ListRow {
    std::string cap;    // the caption as stored, tail included
    std::string index;  // the row's guid
    int tp = 0;         // the list it belongs to
    int deleted = 0;
    int celltype = 1;
    bool checked = false;

    bool operator==(const ListRow&) const = default;
};

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

// A row of a form, and of the diary's entry catalogue: how one value is
// edited and shown, with the value itself in `source` and its reading in
// `text`.
struct FormRow {
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

using FormRows = std::vector<FormRow>;

}  // namespace tilika::frame
