# The help that Contents opens: the manual as pages for a browser, with its pictures. Without
# cmark-gfm there is none, and everything else builds.

find_program(CMARK cmark-gfm)
if(NOT CMARK)
    message(STATUS "No cmark-gfm: the help is not built")
    return()
endif()

set(helpFolder ${PROJECT_BINARY_DIR}/help)
# In the order of the contents.
set(helpPages "")
foreach(page README choosing options schedule profiles backup restore logs without-vardelin troubleshooting)
    list(APPEND helpPages ${PROJECT_SOURCE_DIR}/docs/manual/${page}.md)
endforeach()
list(APPEND helpPages ${PROJECT_SOURCE_DIR}/docs/security.md ${PROJECT_SOURCE_DIR}/docs/archive-format.md)
list(JOIN helpPages "|" allPages)

set(helpFiles "")
foreach(page IN LISTS helpPages)
    get_filename_component(name ${page} NAME_WE)
    if(name STREQUAL "README")
        set(name VardelinHelp)
    endif()
    set(file ${helpFolder}/${name}.html)
    add_custom_command(OUTPUT ${file}
        COMMAND ${CMAKE_COMMAND} -D CMARK=${CMARK} -D TEMPLATE=${PROJECT_SOURCE_DIR}/assets/help/page.html
            -D "PAGES=${allPages}" -D SOURCE=${page} -D OUT=${file}
            -P ${PROJECT_SOURCE_DIR}/cmake/HelpPage.cmake
        DEPENDS ${helpPages} ${PROJECT_SOURCE_DIR}/assets/help/page.html
            ${PROJECT_SOURCE_DIR}/cmake/HelpPage.cmake
        COMMENT "Making ${name}.html"
        VERBATIM)
    list(APPEND helpFiles ${file})
endforeach()

file(GLOB helpPictures CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/manual/*.png)
list(APPEND helpPictures ${PROJECT_SOURCE_DIR}/assets/icons/vardelin.svg)
foreach(picture IN LISTS helpPictures)
    get_filename_component(name ${picture} NAME)
    add_custom_command(OUTPUT ${helpFolder}/${name}
        COMMAND ${CMAKE_COMMAND} -E copy ${picture} ${helpFolder}/${name}
        DEPENDS ${picture} VERBATIM)
    list(APPEND helpFiles ${helpFolder}/${name})
endforeach()

add_custom_target(vardelin_help ALL DEPENDS ${helpFiles})
install(FILES ${helpFiles} DESTINATION Help)
