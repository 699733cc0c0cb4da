# GCC's Objective-C runtime has every object file describe every protocol that its headers declare:
# with AppKit's, 23 KB of data a file. On Linux the Objective-C++ files of a folder are therefore
# compiled as one. (CMake's own unity builds do not know Objective-C++ yet.) On macOS, where the
# linker merges such descriptions, each file is compiled by itself, which proves that it can be.
include_guard(GLOBAL)

# veltrix_objcxx_sources(TARGET FILE...): adds the files, in folders below the current one.
function(veltrix_objcxx_sources target)
  if(APPLE)
    target_sources(${target} PRIVATE ${ARGN})
    return()
  endif()
  set(folders "")
  foreach(file IN LISTS ARGN)
    cmake_path(GET file PARENT_PATH folder)
    list(APPEND folders "${folder}")
    set_property(SOURCE "${file}" PROPERTY HEADER_FILE_ONLY TRUE)
  endforeach()
  list(REMOVE_DUPLICATES folders)
  foreach(folder IN LISTS folders)
    set(text "// All of ${folder}/, see cmake/Unity.cmake.\n")
    foreach(file IN LISTS ARGN)
      cmake_path(GET file PARENT_PATH its_folder)
      if(its_folder STREQUAL folder)
        string(APPEND text "#include \"${CMAKE_CURRENT_SOURCE_DIR}/${file}\"\n")
      endif()
    endforeach()
    string(REPLACE "/" "-" name "${folder}")
    set(unity "${CMAKE_CURRENT_BINARY_DIR}/unity/${target}-${name}.mm")
    file(CONFIGURE OUTPUT "${unity}" CONTENT "${text}" @ONLY)
    target_sources(${target} PRIVATE "${unity}")
  endforeach()
  target_sources(${target} PRIVATE ${ARGN})
endfunction()
