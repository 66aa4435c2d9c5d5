# SPDX-License-Identifier: MIT
# Makes resources of pictures that are drawn as text: cmake -DOUTPUT=FILE -P bitmaps.cmake
#
# bitmaps/ holds the toolbar's buttons and icons/ the program's icon, one text file a picture,
# NUMBER-NAME.txt. As many rows of as many characters draw it whole, once for each size: 16 and 32
# for a button, 48 too for an icon; other lines are comments. A character is a pixel of that colour
# (see `colors`). A button's small picture becomes the bitmap resource NUMBER, the large one
# NUMBER + 10000, each a device-independent bitmap of 4 bits a pixel; an icon becomes the icon
# resource NUMBER with all its sizes. All of it is written out as words.
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

# take_rows(RESULT FILE SIZE LINE...): the rows that draw the picture in that size.
function(take_rows result file size)
    set(rows ${ARGN})
    list(FILTER rows INCLUDE REGEX "^[#mgknpt.orlyuvqw]+$")
    string(REPEAT "." ${size} any)
    list(FILTER rows INCLUDE REGEX "^${any}$")
    list(LENGTH rows count)
    if(NOT count EQUAL size)
        message(FATAL_ERROR "${file}: ${count} rows of ${size} pixels instead of ${size}")
    endif()
    set(${result} "${rows}" PARENT_SCOPE)
endfunction()

# bitmap_header(RESULT WIDTH HEIGHT): with the palette.
function(bitmap_header result width height)
    set(${result}
        "    0x28, 0, ${width}, 0, ${height}, 0, 1, 4, 0, 0, 0, 0, 0, 0, 0, 0, 16, 0, 0, 0,\n    ${palette}\n"
        PARENT_SCOPE)
endfunction()

# add_bitmap(FILE NUMBER SIZE LINE...)
function(add_bitmap file number size)
    take_rows(rows ${file} ${size} ${ARGN})
    bitmap_header(header ${size} ${size})
    pixels_as_words(pixels ${rows})
    string(APPEND resources "${number} 2 BEGIN\n${header}${pixels}END\n")
    set(resources "${resources}" PARENT_SCOPE)
endfunction()

# mask_as_words(RESULT ROW...): a bit a pixel, set where it is seen through; the rows from the bottom,
# each filled up to a multiple of 32.
function(mask_as_words result)
    set(words "")
    foreach(row IN LISTS ARGN)
        string(REGEX REPLACE "[^.]" "0" row "${row}")
        string(REPLACE "." "1" row "${row}0000000000000000")
        string(LENGTH "${row}" bits)
        math(EXPR bits "${bits} / 32 * 32")
        string(SUBSTRING "${row}" 0 ${bits} row)
        string(REGEX REPLACE "(....)" "\\1;" nibbles "${row}")
        set(digits "")
        foreach(nibble IN LISTS nibbles)
            list(FIND all_nibbles "${nibble}" value)
            if(value GREATER_EQUAL 0)
                string(SUBSTRING "0123456789abcdef" ${value} 1 digit)
                string(APPEND digits "${digit}")
            endif()
        endforeach()
        string(REGEX REPLACE "(..)(..)" "0x\\2\\1, " digits "${digits}")
        string(PREPEND words "    ${digits}\n")
    endforeach()
    set(${result} "${words}" PARENT_SCOPE)
endfunction()
set(all_nibbles 0000 0001 0010 0011 0100 0101 0110 0111 1000 1001 1010 1011 1100 1101 1110 1111)

# add_icon(FILE NUMBER LINE...): the sizes are icon resources counted from NUMBER on, and a group
# that names them. What is seen through is black in the colours and set in the mask behind them.
function(add_icon file number)
    set(group "0, 1, 3,")
    set(next ${number})
    foreach(size 16 32 48)
        take_rows(rows ${file} ${size} ${ARGN})
        mask_as_words(mask ${rows})
        string(REPLACE "." "#" rows "${rows}")
        pixels_as_words(pixels ${rows})
        math(EXPR double "${size} * 2")
        bitmap_header(header ${size} ${double})
        string(APPEND resources "${next} 3 BEGIN\n${header}${pixels}${mask}END\n")
        math(EXPR sides "${size} * 257" OUTPUT_FORMAT HEXADECIMAL) # width and height, a byte each
        math(EXPR bytes "40 + 64 + ${size} * ${size} / 2 + ${size} * ((${size} + 31) / 32 * 4)")
        string(APPEND group "\n    ${sides}, 16, 1, 4, ${bytes}, 0, ${next},")
        math(EXPR next "${next} + 1")
    endforeach()
    string(APPEND resources "${number} 14 BEGIN\n    ${group}\nEND\n")
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
file(GLOB files ${CMAKE_CURRENT_LIST_DIR}/icons/*.txt)
foreach(file IN LISTS files)
    file(STRINGS ${file} lines)
    get_filename_component(name ${file} NAME)
    string(REGEX MATCH "^[0-9]+" number ${name})
    add_icon(${name} ${number} ${lines})
endforeach()
file(WRITE ${OUTPUT} "${resources}")
