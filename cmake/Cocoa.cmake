# The interface targets `foundation` (Foundation and CoreFoundation, all the kernel may use) and
# `cocoa` (AppKit on top of it), for C, C++ and Objective-C(++) sources.

add_library(foundation INTERFACE)
add_library(cocoa INTERFACE)
target_link_libraries(cocoa INTERFACE foundation)

if(APPLE)
    target_link_libraries(foundation INTERFACE "-framework Foundation" "-framework CoreFoundation")
    target_link_libraries(cocoa INTERFACE
        "-framework AppKit" "-framework AudioToolbox" "-framework AudioUnit")
    return()
endif()

find_path(GNUSTEP_INCLUDE_DIR AppKit/AppKit.h PATH_SUFFIXES GNUstep REQUIRED)

# GCC's objc headers lie beside its intrinsic headers, which clang must never meet first.
file(GLOB _objc_headers "/usr/lib/gcc/*/12/include/objc/objc.h")
list(GET _objc_headers 0 _objc_header)
cmake_path(GET _objc_header PARENT_PATH _objc_dir)
cmake_path(GET _objc_dir PARENT_PATH _gcc_include_dir)

target_compile_options(foundation INTERFACE
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fobjc-runtime=gcc>
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fexceptions>
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fconstant-string-class=NSConstantString>
    $<$<COMPILE_LANGUAGE:OBJC>:-fobjc-exceptions>
    # @try in a .mm file is a compile error: see below.
    $<$<COMPILE_LANGUAGE:OBJCXX>:-fno-objc-exceptions>
    "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:SHELL:-idirafter ${_gcc_include_dir}>"
    # The framework headers use these by design.
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-Wno-gnu-statement-expression>)
target_compile_definitions(foundation INTERFACE
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:_NATIVE_OBJC_EXCEPTIONS>
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:GNUSTEP>
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:GNUSTEP_BASE_LIBRARY=1>
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:GNU_GUI_LIBRARY=1>
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:GNU_RUNTIME=1>)
target_include_directories(foundation SYSTEM INTERFACE "${GNUSTEP_INCLUDE_DIR}")
target_link_libraries(foundation INTERFACE gnustep-base objc m pthread)
target_link_libraries(cocoa INTERFACE gnustep-gui)

# clang gives every function of a .mm file GCC's Objective-C personality routine, which never
# matches a C++ exception: `catch (int)` would end in terminate. Naming the C++ routine instead
# makes C++ catches work there and lets Objective-C exceptions pass through. Both symbols are
# renamed, or .m and .mm objects of one library disturb each other. `@try` lives in .m files only.
set(CMAKE_OBJCXX_COMPILE_OBJECT "${CMAKE_OBJCXX_COMPILE_OBJECT}"
    "${CMAKE_CURRENT_LIST_DIR}/cxx-personality ${CMAKE_OBJCOPY} <OBJECT>")
