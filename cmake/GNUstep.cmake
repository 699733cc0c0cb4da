# AppKit on both systems: the target veltrix_appkit gives what an Objective-C++ file needs to
# compile and link against it. On macOS these are the frameworks; elsewhere GNUstep, with the
# additions of gnustep/ on the include path before GNUstep's own headers.
#
# Include after project(). Sets VELTRIX_HAVE_APPKIT; without an Objective-C++ compiler or without
# GNUstep only what needs no window system can be built.
#
# The Debian packages are listed in scripts/lib/packages.sh.
include_guard(GLOBAL)
include(CheckLanguage)

set(VELTRIX_HAVE_APPKIT FALSE)

if(NOT APPLE)
  # GCC's Objective-C++ knows no literals and no fast enumeration; clang emits code for GCC's
  # Objective-C runtime, the one that Debian builds GNUstep for.
  if(NOT CMAKE_OBJCXX_COMPILER)
    find_program(VELTRIX_CLANGXX NAMES clang++ clang++-19 clang++-16 clang++-14)
    if(VELTRIX_CLANGXX)
      set(CMAKE_OBJCXX_COMPILER "${VELTRIX_CLANGXX}")
    endif()
  endif()
  set(CMAKE_OBJCXX_FLAGS_INIT "-fobjc-runtime=gcc")
  find_program(VELTRIX_GNUSTEP_CONFIG gnustep-config)
endif()

check_language(OBJCXX)
if(NOT CMAKE_OBJCXX_COMPILER OR NOT (APPLE OR VELTRIX_GNUSTEP_CONFIG))
  message(STATUS "No AppKit: building only what needs no window system")
  return()
endif()

enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)

add_library(veltrix_appkit INTERFACE)
set(VELTRIX_HAVE_APPKIT TRUE)

if(APPLE)
  target_compile_options(veltrix_appkit INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:-fno-objc-arc>)
  target_link_libraries(veltrix_appkit INTERFACE "-framework AppKit" "-framework Foundation")
  return()
endif()

# gnustep-config speaks for GNUstep's own makefiles: dependency files, warnings, optimisation and
# folders of the person who builds are none of our business.
execute_process(
  COMMAND "${VELTRIX_GNUSTEP_CONFIG}" --objc-flags
  OUTPUT_VARIABLE objc_flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND "${VELTRIX_GNUSTEP_CONFIG}" --gui-libs
  OUTPUT_VARIABLE gui_libs OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT objc_flags OR NOT gui_libs)
  message(FATAL_ERROR "gnustep-config says nothing; is make installed?")
endif()
separate_arguments(objc_flags UNIX_COMMAND "${objc_flags}")
separate_arguments(gui_libs UNIX_COMMAND "${gui_libs}")

set(options "")
set(include_folders "")
foreach(flag IN LISTS objc_flags)
  if(flag MATCHES "^(-D|-fconstant-string-class=)|^-f(objc-)?exceptions$")
    list(APPEND options "${flag}")
  elseif(flag MATCHES "^-I(/usr/.*)$")
    list(APPEND include_folders "${CMAKE_MATCH_1}")
  endif()
endforeach()
list(REMOVE_DUPLICATES options)
list(FILTER gui_libs INCLUDE REGEX "^-(l|pthread)")

# objc/objc.h lies among GCC's own headers, which must not shadow clang's.
execute_process(
  COMMAND g++ -print-file-name=include
  OUTPUT_VARIABLE gcc_include OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
list(APPEND options "SHELL:-idirafter ${gcc_include}")

# A property without an instance variable compiles, and then has no accessors at run time.
list(APPEND options -Werror=objc-property-implementation)

# GNUstep's menus hand out id<NSMenuItem> where Apple's hand out NSMenuItem*. Object types are
# checked against Apple's declarations when building for macOS.
list(APPEND options -Wno-incompatible-pointer-types)

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH include_of_ours)
cmake_path(APPEND include_of_ours gnustep include)
target_compile_options(veltrix_appkit INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:${options}>")
target_include_directories(veltrix_appkit INTERFACE "${include_of_ours}")
target_include_directories(veltrix_appkit SYSTEM INTERFACE ${include_folders})
target_link_libraries(veltrix_appkit INTERFACE ${gui_libs})
