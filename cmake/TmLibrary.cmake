# tm_add_library(NAME [PUBLIC_DEPS dep...] [PRIVATE_DEPS dep...] [SOURCES file...]
#                [EXCLUDE file...])
# A Qt-free core library from the .cpp files of the current folder (or only the SOURCES given, or
# all but those in EXCLUDE), as target tm_NAME with the alias tm::NAME. Includes name their layer
# from the repository root ("part/Pattern.h").
function(tm_add_library name)
    cmake_parse_arguments(ARG "" "" "PUBLIC_DEPS;PRIVATE_DEPS;SOURCES;EXCLUDE" ${ARGN})
    tm_folder_sources(sources "${ARG_SOURCES}" "${ARG_EXCLUDE}")
    if(sources)
        add_library(tm_${name} STATIC ${sources})
        target_include_directories(tm_${name} PUBLIC ${PROJECT_SOURCE_DIR})
        target_link_libraries(tm_${name} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE tm::warnings ${ARG_PRIVATE_DEPS})
    else()
        add_library(tm_${name} INTERFACE)
        target_include_directories(tm_${name} INTERFACE ${PROJECT_SOURCE_DIR})
        target_link_libraries(tm_${name} INTERFACE ${ARG_PUBLIC_DEPS})
    endif()
    add_library(tm::${name} ALIAS tm_${name})
endfunction()

# tm_folder_sources(OUT_VAR SOURCES EXCLUDE): the .cpp files of the current folder, or only those
# named in SOURCES, less those named in EXCLUDE (names relative to the folder).
function(tm_folder_sources out_var only excluded)
    if(only)
        list(TRANSFORM only PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE sources)
    else()
        file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    endif()
    foreach(file ${excluded})
        list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${file})
    endforeach()
    set(${out_var} ${sources} PARENT_SCOPE)
endfunction()

# tm_add_test(NAME [DEPS dep...] [EXCLUDE file...]): one GoogleTest executable from the .cpp files
# of the current folder (less EXCLUDE), registered with CTest test by test. A cross-built
# executable runs under its emulator (Wine), where each start costs a fraction of a second, so
# there it is registered as one test that runs all of its cases.
function(tm_add_test name)
    cmake_parse_arguments(ARG "" "" "DEPS;EXCLUDE" ${ARGN})
    tm_folder_sources(sources "" "${ARG_EXCLUDE}")
    if(NOT sources)
        return()
    endif()
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gtest_main GTest::gmock tm::warnings)
    target_compile_definitions(${name} PRIVATE
        TM_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
        TM_BINARY_DIR="${PROJECT_BINARY_DIR}"
        TM_SONG_CORPUS_DEFAULT="${PROJECT_SOURCE_DIR}/../shared/songs")
    add_dependencies(${name} tm_data)
    if(CMAKE_CROSSCOMPILING)
        add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
        set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77)
    else()
        gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
    endif()
endfunction()
