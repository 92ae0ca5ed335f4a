cmake_minimum_required(VERSION 3.25)

# Writes the picture set into OUTPUT_DIR:
#   icons        c-<stem>.svg as drawn, b-<stem>.svg dark lines without the
#                accent fills, <stem>.svg white lines without them;
#   fixed        <stem>.svg unchanged;
#   backgrounds  bg640-<n>.svg as drawn, bd640-<n>.svg washed for text-heavy
#                screens, bs-<n>.svg sized for the chooser.
# Everything is read and checked before anything is written, and the stamp
# is written last, so a broken drawing fails the build instead of shipping.

# Whether each backdrop is light (black text) or dark (white text), and for
# the dark ones the deepest tone of their own palette, used as the wash so
# the quieter version keeps its colour rather than turning grey. The program
# chooses its text colour by the same split; keep the two in step.
set(backdrops
    "1=light"
    "2=#081231"
    "3=#0c2216"
    "4=light"
    "5=#36091a"
    "6=#042835"
    "7=light"
    "8=light"
    "9=light")
set(light_wash_opacity 0.55)
set(dark_wash_opacity 0.45)

# The colour of every line in an icon, and how accent fills are spelt.
set(line_colour "#3a3a3a")
set(accent_fill "fill=\"#[0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f]\" class=\"accent\"")

foreach(var ICONS FIXED BACKGROUNDS OUTPUT_DIR STAMP)
    if(NOT DEFINED ${var})
        message(FATAL_ERROR "build_pictures.cmake: ${var} is not set")
    endif()
endforeach()

# Output names in order; the text of the i-th is kept in text_<i>, since a
# drawing may not survive being stored as a list element.
set(outputs "")

function(add_output name text)
    list(LENGTH outputs index)
    list(APPEND outputs "${name}")
    set(outputs "${outputs}" PARENT_SCOPE)
    set("text_${index}" "${text}" PARENT_SCOPE)
endfunction()

foreach(source IN LISTS ICONS)
    get_filename_component(stem "${source}" NAME_WE)
    file(READ "${source}" drawing)
    string(FIND "${drawing}" "${line_colour}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "${source}: no line drawn in ${line_colour}")
    endif()
    string(REGEX REPLACE "${accent_fill}" "fill=\"none\"" outline "${drawing}")
    string(FIND "${outline}" "class=\"accent\"" at)
    if(NOT at EQUAL -1)
        message(FATAL_ERROR "${source}: an accent fill is not written as fill=\"#rrggbb\" class=\"accent\"")
    endif()
    string(REPLACE "${line_colour}" "#ffffff" white "${outline}")
    add_output("c-${stem}.svg" "${drawing}")
    add_output("b-${stem}.svg" "${outline}")
    add_output("${stem}.svg" "${white}")
endforeach()

foreach(source IN LISTS FIXED)
    get_filename_component(name "${source}" NAME)
    file(READ "${source}" drawing)
    add_output("${name}" "${drawing}")
endforeach()

set(known_backdrops "")
foreach(entry IN LISTS backdrops)
    string(REPLACE "=" ";" entry "${entry}")
    list(GET entry 0 n)
    list(GET entry 1 tone)
    list(APPEND known_backdrops "bg-${n}.svg")

    set(source "")
    foreach(candidate IN LISTS BACKGROUNDS)
        get_filename_component(name "${candidate}" NAME)
        if(name STREQUAL "bg-${n}.svg")
            set(source "${candidate}")
        endif()
    endforeach()
    if(NOT source)
        message(FATAL_ERROR "background bg-${n}.svg is missing")
    endif()

    file(READ "${source}" drawing)
    if(tone STREQUAL "light")
        set(wash "<rect width=\"640\" height=\"1136\" fill=\"#ffffff\" fill-opacity=\"${light_wash_opacity}\"/>")
    else()
        set(wash "<rect width=\"640\" height=\"1136\" fill=\"${tone}\" fill-opacity=\"${dark_wash_opacity}\"/>")
    endif()
    string(FIND "${drawing}" "</svg>" close)
    if(close EQUAL -1)
        message(FATAL_ERROR "${source}: no closing </svg>")
    endif()
    string(REPLACE "</svg>" "  ${wash}\n</svg>" washed "${drawing}")

    set(root_size "width=\"640\" height=\"1136\" viewBox=")
    string(FIND "${drawing}" "${root_size}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "${source}: the root element is not sized width=\"640\" height=\"1136\"")
    endif()
    string(REPLACE "${root_size}" "width=\"160\" height=\"284\" viewBox=" swatch "${drawing}")

    add_output("bg640-${n}.svg" "${drawing}")
    add_output("bd640-${n}.svg" "${washed}")
    add_output("bs-${n}.svg" "${swatch}")
endforeach()

# A drawing the table above does not know would ship with no text colour.
foreach(source IN LISTS BACKGROUNDS)
    get_filename_component(name "${source}" NAME)
    if(NOT name IN_LIST known_backdrops)
        message(FATAL_ERROR "${source}: not listed as light or dark in build_pictures.cmake")
    endif()
endforeach()

# Two sources must never write the same output.
set(seen "")
foreach(name IN LISTS outputs)
    if(name IN_LIST seen)
        message(FATAL_ERROR "two pictures would both be written as ${name}")
    endif()
    list(APPEND seen "${name}")
endforeach()

# Start from an empty folder so a picture removed from the sources does not
# linger in the build.
file(REMOVE_RECURSE "${OUTPUT_DIR}")
file(MAKE_DIRECTORY "${OUTPUT_DIR}")
list(LENGTH outputs count)
math(EXPR last "${count} - 1")
foreach(index RANGE ${last})
    list(GET outputs ${index} name)
    file(WRITE "${OUTPUT_DIR}/${name}" "${text_${index}}")
endforeach()
file(WRITE "${STAMP}" "")
