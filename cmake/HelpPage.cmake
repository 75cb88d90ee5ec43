# Makes one page of the help out of a page of the documents:
#
#   cmake -D CMARK=... -D TEMPLATE=page.html -D PAGES=a.md|b.md -D SOURCE=a.md -D OUT=a.html -P ...
#
# PAGES are all pages in their order, whose titles become the contents. Headings get the names that
# the documents' links use for them, and links to pages lead to the pages made of them.

cmake_minimum_required(VERSION 3.25)

# The name that a heading is linked by: its small letters, digits, `-` and `_`, with `-` for blanks.
function(anchor_of TEXT OUT_NAME)
    string(REGEX REPLACE "<[^>]*>|&[a-z]+;" "" name "${TEXT}")
    string(TOLOWER "${name}" name)
    string(REGEX REPLACE "[^a-z0-9 _-]" "" name "${name}")
    string(REPLACE " " "-" name "${name}")
    set(${OUT_NAME} "${name}" PARENT_SCOPE)
endfunction()

function(file_of PAGE OUT_NAME)
    get_filename_component(name "${PAGE}" NAME_WE)
    if(name STREQUAL "README")
        set(name VardelinHelp)
    endif()
    set(${OUT_NAME} "${name}.html" PARENT_SCOPE)
endfunction()

execute_process(COMMAND "${CMARK}" --extension table "${SOURCE}"
    OUTPUT_VARIABLE body COMMAND_ERROR_IS_FATAL ANY)

set(sections "")
while(body MATCHES "<h([1-6])>([^\n]*)</h[1-6]>")
    set(heading "${CMAKE_MATCH_0}")
    set(level ${CMAKE_MATCH_1})
    set(text "${CMAKE_MATCH_2}")
    anchor_of("${text}" anchor)
    string(REPLACE "${heading}" "<h${level} id=\"${anchor}\">${text}</h${level}>" body "${body}")
    if(level EQUAL 2)
        string(APPEND sections "<li><a href=\"#${anchor}\">${text}</a></li>\n")
    endif()
endwhile()

string(REGEX REPLACE "href=\"(\\.\\./)?([A-Za-z0-9-]+)\\.md([#\"])" "href=\"\\2.html\\3" body "${body}")
string(REPLACE "href=\"README.html" "href=\"VardelinHelp.html" body "${body}")

set(contents "<ul>\n")
string(REPLACE "|" ";" PAGES "${PAGES}")
foreach(page IN LISTS PAGES)
    file(STRINGS "${page}" lines REGEX "^# " LIMIT_COUNT 1 ENCODING UTF-8)
    string(REGEX REPLACE "^# +" "" pageTitle "${lines}")
    file_of("${page}" file)
    if(page STREQUAL SOURCE)
        set(title "${pageTitle}")
        string(APPEND contents "<li><a href=\"${file}\" aria-current=\"page\">${pageTitle}</a>")
        if(sections)
            string(APPEND contents "\n<ul>\n${sections}</ul>")
        endif()
        string(APPEND contents "</li>\n")
    else()
        string(APPEND contents "<li><a href=\"${file}\">${pageTitle}</a></li>\n")
    endif()
endforeach()
string(APPEND contents "</ul>")

file(READ "${TEMPLATE}" html)
string(REPLACE "@TITLE@" "${title}" html "${html}")
string(REPLACE "@CONTENTS@" "${contents}" html "${html}")
string(REPLACE "@BODY@" "${body}" html "${html}")
file(WRITE "${OUT}" "${html}")
