# What many files include is read once: some headers are compiled beforehand, and some files as one.
#
# On Linux the Objective-C++ files of a folder of the product are compiled as one, because GCC's
# Objective-C runtime has every object file describe every protocol that its headers declare, 23 KB
# of data a file with AppKit's; and so are the tests, some at a time, because their headers are most
# of what it takes to compile them. (CMake's own unity builds do not know Objective-C++ yet.)
#
# On macOS each file is compiled by itself, which proves that it includes what it needs.
include_guard(GLOBAL)

if(APPLE)
  set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()

# veltrix_objcxx_sources(TARGET [AT_MOST COUNT] FILE...): adds the files. Those of Objective-C++ in
# one folder become one, or as many as it takes for none to be of more than COUNT.
function(veltrix_objcxx_sources target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "AT_MOST" "")
  set(files ${arg_UNPARSED_ARGUMENTS})
  target_sources(${target} PRIVATE ${files})
  if(APPLE)
    return()
  endif()
  list(FILTER files INCLUDE REGEX "[.]mm$")
  set_property(SOURCE ${files} PROPERTY HEADER_FILE_ONLY TRUE)
  set(folders "")
  foreach(file IN LISTS files)
    cmake_path(GET file PARENT_PATH folder)
    string(PREPEND folder "/")  # or the empty one would not be an element of a list
    list(APPEND folders "${folder}")
    list(APPEND "files of ${folder}" "${file}")
  endforeach()
  list(REMOVE_DUPLICATES folders)
  foreach(folder IN LISTS folders)
    list(LENGTH "files of ${folder}" count)
    set(most ${count})
    if(arg_AT_MOST)
      set(most ${arg_AT_MOST})
    endif()
    math(EXPR last "${count} - 1")
    foreach(start RANGE 0 ${last} ${most})
      list(SUBLIST "files of ${folder}" ${start} ${most} together)
      list(TRANSFORM together REPLACE "(.+)" "#include \"${CMAKE_CURRENT_SOURCE_DIR}/\\1\"\n")
      list(JOIN together "" text)
      string(REGEX REPLACE "[./]+" "-" name "${target}${folder}/${start}")
      set(unity "${CMAKE_CURRENT_BINARY_DIR}/unity/${name}.mm")
      file(CONFIGURE OUTPUT "${unity}" CONTENT "// See cmake/Unity.cmake.\n${text}" @ONLY)
      target_sources(${target} PRIVATE "${unity}")
    endforeach()
  endforeach()
endfunction()
