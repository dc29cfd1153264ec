# A generation is the library built for one processor level. This is the one place where it is chosen:
# the machine flag, the file name and the macro that src/frame/generation.hpp reads.
set(moxvc_march_px x86-64)
set(moxvc_march_e9 x86-64-v2)
set(moxvc_march_v3 x86-64-v3)

file(GLOB moxvc_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*/*.cpp)

# The linker's version script follows from the list of exports.
file(STRINGS ${CMAKE_SOURCE_DIR}/src/exports.txt moxvc_exports REGEX "^mox")
list(TRANSFORM moxvc_exports APPEND ";" OUTPUT_VARIABLE moxvc_export_lines)
string(REPLACE ";;" ";\n    " moxvc_export_lines "${moxvc_export_lines};")
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/moxvc.map
  CONTENT "{\n  global:\n    @moxvc_export_lines@\n  local:\n    *;\n};\n" @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/exports.txt)

# The one file with a parallel loop, and its runtime.
find_package(OpenMP REQUIRED COMPONENTS CXX)
set_source_files_properties(${CMAKE_SOURCE_DIR}/src/filters/lowpass.cpp PROPERTIES
  COMPILE_OPTIONS "${OpenMP_CXX_FLAGS}")

function(moxvc_add_generation generation)
  if(NOT DEFINED moxvc_march_${generation})
    message(FATAL_ERROR "unknown generation '${generation}': choose from e9, px, v3")
  endif()
  set(target moxvc_${generation})
  add_library(${target} SHARED ${moxvc_sources})
  target_include_directories(${target}
    PUBLIC $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    PRIVATE ${CMAKE_SOURCE_DIR}/src)
  target_compile_definitions(${target} PRIVATE MOXVC_GENERATION_${generation})
  # Products and sums are not fused, which would skip a rounding where the processor can do it: all generations give the
  # same bits.
  target_compile_options(${target} PRIVATE -march=${moxvc_march_${generation}} -ffp-contract=off
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>
    -fno-semantic-interposition)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:moxvc_options> moxcore ${OpenMP_CXX_LIBRARIES})
  target_link_options(${target} PRIVATE
    -Wl,--version-script=${CMAKE_BINARY_DIR}/moxvc.map -Wl,-soname,libmoxvc.so.6
    -Wl,-z,relro,-z,now -Wl,--as-needed -Wl,-Bsymbolic)
  if(NOT MOXVC_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,-z,defs)
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE C)  # no libstdc++ at run time
  endif()
  # The library may be found through glibc-hwcaps/x86-64-v3/, two levels below the core library.
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME moxvc${generation} SUFFIX .so.6.1 NO_SONAME ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    INSTALL_RPATH "$ORIGIN;$ORIGIN/../.." BUILD_WITH_INSTALL_RPATH ON LINK_DEPENDS ${CMAKE_BINARY_DIR}/moxvc.map)
  # lib/<generation>/libmoxvc.so.6 lets a program run with a chosen generation: LD_LIBRARY_PATH=lib/px:lib program
  set(file libmoxvc${generation}.so.6.1)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/lib/${generation}
    COMMAND ${CMAKE_COMMAND} -E create_symlink ../${file} ${CMAKE_BINARY_DIR}/lib/${generation}/libmoxvc.so.6)
  if(NOT TARGET moxvc::moxvc)  # the first of the list is the default, e9 unless chosen otherwise
    add_library(moxvc::moxvc ALIAS ${target})
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E create_symlink ${file} ${CMAKE_BINARY_DIR}/lib/libmoxvc.so.6)
  endif()
endfunction()
