# `cmake --install BUILD --prefix DIR` makes DIR an application folder: the program in its root, and
# beside it the folders that it works in. Installing over an application folder in use replaces the
# programs and leaves everything that a person or a run wrote.

if(TARGET vardelinctl)
    install(TARGETS vardelinctl RUNTIME DESTINATION .)
endif()

if(TARGET vardelin)
    install(TARGETS vardelin RUNTIME DESTINATION .)
    # Played while a backup runs.
    install(FILES ${PROJECT_SOURCE_DIR}/assets/Compress_ani.gif DESTINATION .)
    # The desktop's own part for all persons, below share as a desktop looks for it: a program for its
    # menu, the type of profiles, and their icons. A desktop sees it once share is among its data
    # folders, or copied to one of them; the program's entry names this folder, wherever it is copied
    # to. A person alone needs none of it: the program itself tells the desktop at its start.
    install(FILES ${PROJECT_SOURCE_DIR}/assets/icons/vardelin.svg
        DESTINATION share/icons/hicolor/scalable/apps COMPONENT desktop)
    install(FILES ${PROJECT_SOURCE_DIR}/assets/icons/application-x-vardelin-profile.svg
        DESTINATION share/icons/hicolor/scalable/mimetypes COMPONENT desktop)
    install(FILES ${PROJECT_SOURCE_DIR}/assets/desktop/vardelin.xml
        DESTINATION share/mime/packages COMPONENT desktop)
    install(CODE [[
        file(WRITE "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/share/applications/vardelin.desktop"
"[Desktop Entry]
Type=Application
Name=Vardelin
Comment=Keeps copies and earlier versions of your files
Exec=\"${CMAKE_INSTALL_PREFIX}/vardelin\" %f
Icon=${CMAKE_INSTALL_PREFIX}/share/icons/hicolor/scalable/apps/vardelin.svg
Terminal=false
Categories=Utility;Archiving;
MimeType=application/x-vardelin-profile;
")
    ]] COMPONENT desktop)
endif()
# The window starts them by the application folder that it finds itself in.
install(TARGETS VDFileMon VDIdleMon VDScheduleMon RUNTIME DESTINATION .)

foreach(folder Profiles Data Log/Backup Log/Restore Queue BackupPackages Help)
    install(DIRECTORY DESTINATION ${folder})
endforeach()

# The list of recent and primary profiles has to exist, and belongs to the person from then on.
install(CODE [[
    set(list "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/Data/Other_Dsk.txt")
    if(NOT EXISTS "${list}")
        message(STATUS "Installing: ${list}")
        file(WRITE "${list}" "")
    endif()
]])

# The manual page and the completion stand beside the program that they describe.
file(GLOB manualPages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/assets/man/*.1)
if(manualPages)
    install(FILES ${manualPages} DESTINATION share/man/man1)
endif()
file(GLOB completions CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/assets/completion/*)
if(completions)
    install(FILES ${completions} DESTINATION share/bash-completion/completions)
endif()
