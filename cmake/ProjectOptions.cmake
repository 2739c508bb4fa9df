# What every target of the project is compiled with. Nothing here touches a parent project: flags
# are set per directory from here down, or carried by the interface target `project_options`.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    find_program(CCACHE_PROGRAM ccache)
    if(CCACHE_PROGRAM)
        # What the compiler says it has read identifies a source (no preprocessing of its own), and
        # a precompiled header is identified by what it says, not by when it was made.
        foreach(_language C CXX OBJC OBJCXX)
            set(CMAKE_${_language}_COMPILER_LAUNCHER
                env CCACHE_DEPEND=1 CCACHE_SLOPPINESS=pch_defines,time_macros "${CCACHE_PROGRAM}")
        endforeach()
    endif()
    if(TARVEL_SANITIZE)
        add_compile_options(-fsanitize=${TARVEL_SANITIZE} -fno-omit-frame-pointer
                            -fno-sanitize-recover=all)
        add_link_options(-fsanitize=${TARVEL_SANITIZE})
    endif()
endif()

# Paths of the building machine stay out of the binaries, so builds of two checkouts are equal.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")

# A project that builds this one as a part, perhaps with a newer compiler, sees warnings only.
add_library(project_options INTERFACE)
target_compile_options(project_options INTERFACE -Wall -Wextra -Wpedantic)
if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(project_options INTERFACE -Werror)
endif()
