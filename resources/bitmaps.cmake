# Makes resources of the pictures on the toolbar's buttons: cmake -DOUTPUT=FILE -P bitmaps.cmake
#
# bitmaps/ holds one text file a picture, NUMBER-NAME.txt, in which 16 rows of 16 characters and 32
# rows of 32 each draw it whole; other lines are comments. A character is a pixel of that colour (see
# `colors`). The small one becomes the bitmap resource NUMBER, the large one NUMBER + 10000, each a
# device-independent bitmap of 4 bits a pixel, written out as words.
cmake_minimum_required(VERSION 3.24)

# Character (none is a hexadecimal digit), place in the palette, and its colour there as two words:
# 0xGGBB, 0x00RR.
set(colors
    "#:0:0x0000:0x0000" # black: the text colour of the desktop's buttons
    "m:1:0x0000:0x0080" # dark red
    "g:2:0x8000:0x0000" # dark green
    "k:3:0x8000:0x0080" # brown
    "n:4:0x0080:0x0000" # dark blue
    "p:5:0x0080:0x0080" # purple
    "t:6:0x8080:0x0000" # teal
    ".:7:0xC0C0:0x00C0" # light grey: seen through
    "o:8:0x8080:0x0080" # dark grey: the desktop's shadows
    "r:9:0x0000:0x00FF" # red
    "l:a:0xFF00:0x0000" # green
    "y:b:0xFF00:0x00FF" # yellow
    "u:c:0x00FF:0x0000" # blue
    "v:d:0x00FF:0x00FF" # magenta
    "q:e:0xFFFF:0x0000" # cyan
    "w:f:0xFFFF:0x00FF") # white: the desktop's highlights

set(palette "")
foreach(color IN LISTS colors)
    string(REGEX REPLACE "^.:.:(.*):(.*)$" "\\1, \\2, " words "${color}")
    string(APPEND palette "${words}")
endforeach()

# pixels_as_words(RESULT ROW...): the rows from the bottom, four pixels a word.
function(pixels_as_words result)
    set(words "")
    foreach(row IN LISTS ARGN)
        foreach(color IN LISTS colors)
            string(SUBSTRING "${color}" 0 1 character)
            string(SUBSTRING "${color}" 2 1 place)
            string(REPLACE "${character}" "${place}" row "${row}")
        endforeach()
        string(REGEX REPLACE "(..)(..)" "0x\\2\\1, " row "${row}")
        string(PREPEND words "    ${row}\n")
    endforeach()
    set(${result} "${words}" PARENT_SCOPE)
endfunction()

# add_bitmap(FILE NUMBER SIZE LINE...)
function(add_bitmap file number size)
    set(rows ${ARGN})
    list(FILTER rows INCLUDE REGEX "^[#mgknpt.orlyuvqw]+$")
    string(REPEAT "." ${size} any)
    list(FILTER rows INCLUDE REGEX "^${any}$")
    list(LENGTH rows count)
    if(NOT count EQUAL size)
        message(FATAL_ERROR "${file}: ${count} rows of ${size} pixels instead of ${size}")
    endif()
    pixels_as_words(pixels ${rows})
    math(EXPR size_hex "${size}" OUTPUT_FORMAT HEXADECIMAL)
    string(APPEND resources
        "${number} 2 BEGIN\n"
        "    0x28, 0, ${size_hex}, 0, ${size_hex}, 0, 1, 4, 0, 0, 0, 0, 0, 0, 0, 0, 16, 0, 0, 0,\n"
        "    ${palette}\n${pixels}END\n")
    set(resources "${resources}" PARENT_SCOPE)
endfunction()

set(resources "/* Written by bitmaps.cmake. */\n")
file(GLOB files ${CMAKE_CURRENT_LIST_DIR}/bitmaps/*.txt)
foreach(file IN LISTS files)
    file(STRINGS ${file} lines)
    get_filename_component(name ${file} NAME)
    string(REGEX MATCH "^[0-9]+" number ${name})
    math(EXPR large_number "${number} + 10000")
    add_bitmap(${name} ${number} 16 ${lines})
    add_bitmap(${name} ${large_number} 32 ${lines})
endforeach()
file(WRITE ${OUTPUT} "${resources}")
