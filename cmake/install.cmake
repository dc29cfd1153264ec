# The installed tree:
#
#   include/                                headers
#   lib/libmoxvce9.so.6.1                   the default generation, found as libmoxvc.so.6 and, to link, libmoxvc.so
#   lib/libmoxcore.so.6.1                   the core library, found as libmoxcore.so.6
#   lib/glibc-hwcaps/x86-64-v3/             v3: the dynamic loader looks here first if the processor can run it
#   lib/moxvc/<generation>/libmoxvc.so.6    a chosen generation: LD_LIBRARY_PATH=lib/moxvc/px program
#   lib/pkgconfig/, lib/cmake/moxvc/        for pkg-config and find_package
#
# Only one generation may lie in lib/ itself: all carry the name libmoxvc.so.6, and of several files with one name
# ldconfig makes the last of the alphabet the default, v3, which an older processor cannot run.
include(CMakePackageConfigHelpers)

install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(TARGETS moxcore LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_SKIP)

# Installs a link; the target need not exist yet.
function(moxvc_install_link directory name target)
  set(link ${CMAKE_BINARY_DIR}/links/${directory}/${name})
  cmake_path(GET link PARENT_PATH parent)
  file(MAKE_DIRECTORY ${parent})
  file(CREATE_LINK ${target} ${link} SYMBOLIC)
  install(FILES ${link} DESTINATION ${CMAKE_INSTALL_LIBDIR}/${directory})
endfunction()

list(GET MOXVC_GENERATIONS 0 moxvc_default)
foreach(generation IN LISTS MOXVC_GENERATIONS)
  set(file libmoxvc${generation}.so.6.1)
  set(chosen moxvc/${generation})
  if(generation STREQUAL moxvc_default)
    set(home .)
    moxvc_install_link(. libmoxvc.so.6 ${file})
    moxvc_install_link(. libmoxvc.so libmoxvc.so.6)
    moxvc_install_link(${chosen} libmoxvc.so.6 ../../${file})
  elseif(generation STREQUAL "v3")
    set(home glibc-hwcaps/x86-64-v3)
    moxvc_install_link(${home} libmoxvc.so.6 ${file})
    moxvc_install_link(${chosen} libmoxvc.so.6 ../../${home}/${file})
  else()
    set(home ${chosen})
    moxvc_install_link(${home} libmoxvc.so.6 ${file})
  endif()
  install(TARGETS moxvc_${generation} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/${home})
endforeach()

# Both descriptions find the tree from their own place, so it may be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE moxvc_prefix_of_pc)
configure_file(${CMAKE_SOURCE_DIR}/cmake/moxvc.pc.in ${CMAKE_BINARY_DIR}/moxvc.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/moxvc.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(moxvc_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/moxvc)
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/moxvc-config.cmake.in ${CMAKE_BINARY_DIR}/moxvc-config.cmake
  INSTALL_DESTINATION ${moxvc_config_dir} PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/moxvc-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/moxvc-config.cmake ${CMAKE_BINARY_DIR}/moxvc-config-version.cmake
  DESTINATION ${moxvc_config_dir})
