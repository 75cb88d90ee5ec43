# One folder is one subsystem: one static library and one test program. What a folder links is what
# it may include, so link lists name exactly the folders used, PRIVATE unless a public header needs them.

add_library(vardelin_options INTERFACE)
target_compile_features(vardelin_options INTERFACE cxx_std_20)
target_compile_options(vardelin_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Wold-style-cast -Woverloaded-virtual -Wnull-dereference -Wimplicit-fallthrough -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 sees null dereferences, overlapping copies and unset optionals inside its own headers when
    # it optimises; clang-tidy looks for the real ones.
    target_compile_options(vardelin_options INTERFACE -Wno-null-dereference -Wno-restrict -Wno-maybe-uninitialized)
endif()
if(VARDELIN_SANITIZE)
    target_compile_options(vardelin_options INTERFACE
        -fsanitize=${VARDELIN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(vardelin_options INTERFACE -fsanitize=${VARDELIN_SANITIZE})
endif()

# vardelin_library(NAME [PUBLIC links...] [PRIVATE links...])
#
# Collects the folder's sources; headers form a public header set, so that the build can check that
# each compiles on its own. Sources of the other platforms are left out by folder, file by file.
function(vardelin_library NAME)
    cmake_parse_arguments(ARG "" "" "PUBLIC;PRIVATE;SUBDIRS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp)
    file(GLOB headers CONFIGURE_DEPENDS *.h)
    foreach(dir IN LISTS ARG_SUBDIRS)
        file(GLOB subSources CONFIGURE_DEPENDS ${dir}/*.cpp)
        file(GLOB subHeaders CONFIGURE_DEPENDS ${dir}/*.h)
        list(APPEND sources ${subSources})
        list(APPEND headers ${subHeaders})
    endforeach()
    if(NOT sources)
        add_library(vardelin_${NAME} INTERFACE)
        return()
    endif()
    add_library(vardelin_${NAME} STATIC ${sources})
    # A source that has a header's name includes it before all else, which `scripts/test` sees to; so
    # only the other headers need to be compiled on their own.
    set(alone)
    foreach(header IN LISTS headers)
        string(REGEX REPLACE "\\.h$" ".cpp" source ${header})
        if(NOT EXISTS ${source})
            list(APPEND alone ${header})
        endif()
    endforeach()
    if(alone)
        list(REMOVE_ITEM headers ${alone})
    endif()
    target_sources(vardelin_${NAME} PUBLIC
        FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src FILES ${headers}
        FILE_SET alone TYPE HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src FILES ${alone})
    set_target_properties(vardelin_${NAME} PROPERTIES INTERFACE_HEADER_SETS_TO_VERIFY alone)
    set_target_properties(vardelin_${NAME} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(vardelin_${NAME} PUBLIC vardelin_options ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
endfunction()

# vardelin_test(NAME LINKS links...)
#
# One test program a subsystem, linked to that subsystem alone, its ports' doubles and GoogleTest.
function(vardelin_test NAME)
    cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp)
    if(NOT sources)
        return()
    endif()
    add_executable(${NAME}_test ${sources})
    target_include_directories(${NAME}_test PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${NAME}_test PRIVATE
        VARDELIN_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/data")
    target_link_libraries(${NAME}_test PRIVATE ${ARG_LINKS} GTest::gmock GTest::gtest_main)
    gtest_discover_tests(${NAME}_test DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES PROPERTIES TIMEOUT 300)
endfunction()
