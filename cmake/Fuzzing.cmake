# add_fuzzer(<name> SOURCES <file>... [LIBRARIES <library>...])
#
# Builds the libFuzzer program <name> and registers two tests: the seed corpus fuzz/corpus/<name>
# replayed, and a short random run that starts from it. Inputs found by the run stay in the build
# folder; a longer run is `<name> corpus-folder`.
set(TARVEL_FUZZ_SECONDS 5 CACHE STRING "Length of each fuzzer's random run under ctest")

function(add_fuzzer name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LIBRARIES")
    add_executable(${name} ${ARG_SOURCES}
        "${PROJECT_SOURCE_DIR}/tests/support/SanitizerDefaults.cpp")
    add_dependencies(checks ${name})
    target_link_libraries(${name} PRIVATE project_options ${ARG_LIBRARIES})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    set(corpus "${PROJECT_SOURCE_DIR}/fuzz/corpus/${name}")
    set(found "${CMAKE_CURRENT_BINARY_DIR}/found/${name}")
    file(MAKE_DIRECTORY "${found}")
    add_test(NAME ${TARVEL_TEST_PREFIX}${name}.SeedCorpus COMMAND ${name} -runs=0 "${corpus}")
    add_test(NAME ${TARVEL_TEST_PREFIX}${name}.RandomRun
        COMMAND ${name} -max_total_time=${TARVEL_FUZZ_SECONDS} -max_len=4096 -timeout=10
                "-artifact_prefix=${found}/" "${found}" "${corpus}")
endfunction()
