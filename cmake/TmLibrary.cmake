# tm_add_library(NAME [PUBLIC_DEPS dep...] [PRIVATE_DEPS dep...])
# A Qt-free core library from the .cpp files of the current folder, as target tm_NAME with the
# alias tm::NAME. Includes name their layer from the repository root ("part/Pattern.h").
function(tm_add_library name)
    cmake_parse_arguments(ARG "" "" "PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
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

# tm_add_test(NAME [DEPS dep...]): one GoogleTest executable from the .cpp files of the current
# folder, registered with CTest test by test.
function(tm_add_test name)
    cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
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
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
