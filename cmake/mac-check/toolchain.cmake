# Compiles the tree for Darwin on a Linux machine: proves that every source and every .mac twin
# compiles and that our own symbols link. Nothing built this way can run. The frameworks are
# declared by GNUstep's headers and by compat/linux/inc; their symbols stay open when linking.
#
# Used by scripts/check-mac, which makes the compiler drivers in TARVEL_MAC_TOOLS.

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TARVEL_MAC_ARCH TARVEL_MAC_TOOLS)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20)
set(CMAKE_SYSTEM_PROCESSOR "${TARVEL_MAC_ARCH}")
set(CMAKE_OSX_SYSROOT "" CACHE STRING "" FORCE)
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "" FORCE)
set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "" FORCE)

set(CMAKE_C_COMPILER "${TARVEL_MAC_TOOLS}/cc")
set(CMAKE_OBJC_COMPILER "${TARVEL_MAC_TOOLS}/cc")
set(CMAKE_CXX_COMPILER "${TARVEL_MAC_TOOLS}/c++")
set(CMAKE_OBJCXX_COMPILER "${TARVEL_MAC_TOOLS}/c++")
set(CMAKE_AR "${TARVEL_MAC_TOOLS}/ar" CACHE FILEPATH "")
set(CMAKE_RANLIB "${TARVEL_MAC_TOOLS}/ranlib" CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL "${TARVEL_MAC_TOOLS}/ranlib" CACHE FILEPATH "")

set(Boost_DIR "${CMAKE_CURRENT_LIST_DIR}/boost" CACHE PATH "")

set(_include "-I${CMAKE_CURRENT_LIST_DIR}/inc -isystem ${TARVEL_MAC_TOOLS}/include")
string(APPEND _include " -isystem ${CMAKE_CURRENT_LIST_DIR}/../../compat/linux/inc")
string(APPEND _include " -idirafter /usr/include/GNUstep")
set(_objc "-fobjc-runtime=macosx-11.0 -fexceptions -fobjc-exceptions")
string(APPEND _objc " -DGNUSTEP_BASE_LIBRARY=1 -DGNU_GUI_LIBRARY=1")
# The driver passes itself words that it then does not use.
string(APPEND _include " -Wno-unused-command-line-argument")
set(CMAKE_C_FLAGS_INIT "${_include}")
set(CMAKE_CXX_FLAGS_INIT "${_include}")
set(CMAKE_OBJC_FLAGS_INIT "${_include} ${_objc}")
set(CMAKE_OBJCXX_FLAGS_INIT "${_include} ${_objc}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-undefined dynamic_lookup")
