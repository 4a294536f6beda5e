# What a Windows build cross-compiled on Linux (preset "windows") needs besides the toolchain file:
# GoogleTest built from its sources, the JSON headers of the host, and Wine to run the tests.

# Built programs run under Wine with the build tree's own prefix. CMake prepends the runner to
# every test command that names a target of this build.
find_program(TM_WINE NAMES wine64 wine PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
find_program(TM_WINESERVER NAMES wineserver64 wineserver PATHS /usr/lib/wine
    NO_CMAKE_FIND_ROOT_PATH)
if(NOT TM_WINE OR NOT TM_WINESERVER)
    message(STATUS "wine64 not found: the tests of the Windows build will be skipped")
    set(TM_WINE "")
    set(TM_WINESERVER "")
endif()
set(TM_WINE_PREFIX ${CMAKE_BINARY_DIR}/wine-prefix)
set(TM_WINE_RUNNER ${CMAKE_BINARY_DIR}/wine-run.sh)
configure_file(${CMAKE_CURRENT_LIST_DIR}/wine-run.sh.in ${TM_WINE_RUNNER} @ONLY
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                     WORLD_EXECUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR ${TM_WINE_RUNNER})

# The command-line program under Wine, beside the .exe, for the end-to-end scripts (which find the
# build tree from the program's folder).
set(TM_WINE_CLI ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/tonalmancer-cli.exe)
set(TM_CLI_UNDER_WINE ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/tonalmancer-cli-wine)
configure_file(${CMAKE_CURRENT_LIST_DIR}/tonalmancer-cli-wine.sh.in ${TM_CLI_UNDER_WINE} @ONLY
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                     WORLD_EXECUTE)

# The Linux build's program, whose output the Windows program's must equal byte for byte.
set(TM_NATIVE_CLI ${PROJECT_SOURCE_DIR}/build/dev/bin/tonalmancer-cli CACHE FILEPATH
    "A Linux build of tonalmancer-cli to compare the Windows build's output with")

# nlohmann/json is header-only, but its package points at /usr/include, which must not reach a
# cross compiler (glibc's headers would shadow the target's). Its headers alone are copied.
find_path(TM_NLOHMANN_JSON_INCLUDE nlohmann/json.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH
    NO_DEFAULT_PATH)
if(NOT TM_NLOHMANN_JSON_INCLUDE)
    message(FATAL_ERROR "nlohmann/json.hpp not found: install nlohmann-json3-dev")
endif()
file(COPY ${TM_NLOHMANN_JSON_INCLUDE}/nlohmann DESTINATION ${CMAKE_BINARY_DIR}/host-headers)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE
    ${CMAKE_BINARY_DIR}/host-headers)

# GoogleTest from the sources that Debian's googletest package ships (there are no libraries of
# it for the target). It defines GTest::gtest, GTest::gtest_main and GTest::gmock.
if(TM_BUILD_TESTS)
    set(TM_GOOGLETEST_SOURCE_DIR /usr/src/googletest CACHE PATH "GoogleTest's sources")
    if(NOT EXISTS ${TM_GOOGLETEST_SOURCE_DIR}/CMakeLists.txt)
        message(FATAL_ERROR "GoogleTest's sources are missing in ${TM_GOOGLETEST_SOURCE_DIR}: "
            "install googletest, or set TM_GOOGLETEST_SOURCE_DIR")
    endif()
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
    add_subdirectory(${TM_GOOGLETEST_SOURCE_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL
        SYSTEM)
endif()
