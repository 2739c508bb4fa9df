# add_view_bundle(<target> SOURCES <file>... RESOURCES <file>... [LIBRARIES <library>...])
#
# A loadable bundle <target>.bundle in the build's top folder, in the layout of the system: flat
# with Resources/ beside the module on GNUstep, Contents/ on macOS. A resource keeps its path below
# the directory's Resources/ folder. The target property VIEW_BUNDLE_DIR names the bundle.
#
# macOS loads compiled interface descriptions. A cross build, which has no compiler for them, takes
# them as they are: it can be linked but not run.
if(APPLE)
    find_program(XCRUN_PROGRAM xcrun)
endif()

function(add_view_bundle target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;RESOURCES;LIBRARIES")
    add_library(${target} MODULE ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE project_options ${ARG_LIBRARIES})
    set(bundle_dir "${PROJECT_BINARY_DIR}/${target}.bundle")
    set_target_properties(${target} PROPERTIES PREFIX "" SUFFIX "" VIEW_BUNDLE_DIR "${bundle_dir}")
    if(APPLE)
        set(module_dir "${bundle_dir}/Contents/MacOS")
        set(resource_dir "${bundle_dir}/Contents/Resources")
    else()
        set(module_dir "${bundle_dir}")
        set(resource_dir "${bundle_dir}/Resources")
    endif()
    set_target_properties(${target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${module_dir}")

    set(copies)
    foreach(resource IN LISTS ARG_RESOURCES)
        set(source "${CMAKE_CURRENT_SOURCE_DIR}/Resources/${resource}")
        set(copy "${resource_dir}/${resource}")
        set(install_resource COMMAND ${CMAKE_COMMAND} -E copy "${source}" "${copy}")
        if(APPLE AND resource STREQUAL "Info.plist")
            set(copy "${bundle_dir}/Contents/Info.plist")
            set(install_resource COMMAND ${CMAKE_COMMAND} -E copy "${source}" "${copy}")
        elseif(XCRUN_PROGRAM AND resource MATCHES "\\.xib$")
            string(REGEX REPLACE "\\.xib$" ".nib" copy "${copy}")
            set(install_resource COMMAND "${XCRUN_PROGRAM}" ibtool --compile "${copy}" "${source}")
        endif()
        add_custom_command(OUTPUT "${copy}" ${install_resource} DEPENDS "${source}" VERBATIM)
        list(APPEND copies "${copy}")
    endforeach()
    add_custom_target(${target}Resources DEPENDS ${copies})
    add_dependencies(${target} ${target}Resources)
endfunction()
