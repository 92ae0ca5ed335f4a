#pragma once

namespace tilika::frame {

// Kinds of row of a form, with the format each keeps its value in.
namespace formkind {
inline constexpr int diaryTime = 17;     // "HH:mm"
inline constexpr int diaryDate = 24;     // "dd.MM.yyyy"
inline constexpr int dateEntry = 102;    // "dd.MM.yyyy"
inline constexpr int textEntry = 103;    // text
inline constexpr int numberEntry = 105;  // text
inline constexpr int moment = 110;       // "dd.MM.yyyy HH:mm"
inline constexpr int momentEntry = 111;  // "dd.MM.yyyy HH:mm"
inline constexpr int separator = 1001;   // a gap
inline constexpr int heading = 1002;
inline constexpr int date = 1003;      // "dd.MM.yyyy"
inline constexpr int time = 1004;      // "HH:mm", maybe with a stopwatch
inline constexpr int dateTime = 1005;  // "dd.MM.yyyy HH:mm"
inline constexpr int textLine = 1006;
inline constexpr int number = 1007;
inline constexpr int label = 1008;
inline constexpr int segments = 1009;  // the chosen segment's index
inline constexpr int photo = 1010;
inline constexpr int figures = 1011;
inline constexpr int derived = 1012;  // shown only, such as the body index
inline constexpr int longText = 1013;
inline constexpr int duration = 1014;    // "HH:mm"
inline constexpr int slider = 1015;      // "%.1f", "%.3f" or ""
inline constexpr int list = 1016;        // checked indices joined by "<tr>"
inline constexpr int listPick = 1017;    // a sub-form
inline constexpr int dosePicker = 1018;  // the course pickers
inline constexpr int oftenPicker = 1019;
inline constexpr int lengthPicker = 1020;
inline constexpr int times = 1021;   // times joined by "<td>"
inline constexpr int action = 1022;  // a tap answers the form's caller
inline constexpr int button = 1023;  // a picture and a caption
inline constexpr int documents = 1024;
inline constexpr int toggle = 1025;  // "1" or ""
inline constexpr int picture = 1026;
inline constexpr int teeth = 1027;  // changes against the teeth known
inline constexpr int measure = 1028;
}  // namespace formkind

}  // namespace tilika::frame
