# What `cmake --install` puts where, relative to the prefix:
#   bin/                         tvrtool
#   lib/                         libvexa_tivorabase.so; on a host build the stand-ins libSNPE.so and
#                                libfastcvopt.so (a device build links the vendor's), and the NN
#                                runtime stand-in's snpe_onnx_probe beside it
#   lib/tivorabase/plugins/      the bundled processing plugins, found by tvrtool from its own folder
#   lib/cmake/tivorabase/        the CMake package: find_package(tivorabase CONFIG), tivora::tivorabase
#   lib/pkgconfig/tivorabase.pc
#   include/tivorabase/          the public headers; on a host build platform/snpe and platform/fastcv,
#                                our declarations of the vendor interfaces that the headers include
# Installed binaries find lib/ relative to themselves, so the tree may be moved as a whole.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(TIVORA_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/tivorabase")
set(TIVORA_INSTALL_PLUGINDIR "${CMAKE_INSTALL_LIBDIR}/tivorabase/plugins")
set(TIVORA_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/tivorabase")
# The plugin folder as tvrtool sees it from its own ("../lib/tivorabase/plugins").
file(RELATIVE_PATH TIVORA_PLUGINDIR_FROM_BINDIR "/${CMAKE_INSTALL_BINDIR}" "/${TIVORA_INSTALL_PLUGINDIR}")

# Installs `target` into `destination` (relative to the prefix). Its run path reaches lib/ from
# there ($ORIGIN-relative) and the folders of the system libraries it links from outside the usual
# ones (Debian's liblog). A device build keeps no run path: the device's linker finds its libraries.
function(tivora_install target destination)
  if(NOT ANDROID)
    file(RELATIVE_PATH to_lib "/${destination}" "/${CMAKE_INSTALL_LIBDIR}")
    set(origin "$ORIGIN")
    if(to_lib)
      string(APPEND origin "/${to_lib}")
    endif()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${origin}" INSTALL_RPATH_USE_LINK_PATH ON)
  endif()
  install(TARGETS ${target} RUNTIME DESTINATION ${destination} LIBRARY DESTINATION ${destination})
endfunction()

# Installs every plugin (MODULE library) defined in `dir` or below it into the plugin folder.
function(tivora_install_plugins dir)
  get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "MODULE_LIBRARY")
      tivora_install(${target} ${TIVORA_INSTALL_PLUGINDIR})
    endif()
  endforeach()
  get_property(subdirs DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
  foreach(subdir IN LISTS subdirs)
    tivora_install_plugins(${subdir})
  endforeach()
endfunction()

# One platform library (`name`: SNPE or FASTCV, built as `standin` or imported as `imported`):
# the stand-in and its declarations on a host build, else nothing. Adds its pkg-config flags
# to TIVORA_PC_CFLAGS and TIVORA_PC_LIBS.
function(tivora_install_platform name standin imported folder)
  if(TIVORA_${name}_STANDIN)
    tivora_install(${standin} ${CMAKE_INSTALL_LIBDIR})
    # The NN runtime's stand-in tries each ONNX model in this program first, found beside itself.
    if(name STREQUAL "SNPE" AND TARGET snpe_onnx_probe)
      tivora_install(snpe_onnx_probe ${CMAKE_INSTALL_LIBDIR})
    endif()
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/${folder}/
            DESTINATION ${TIVORA_INSTALL_INCLUDEDIR}/platform/${folder})
    string(APPEND TIVORA_PC_CFLAGS " -I\${includedir}/tivorabase/platform/${folder}")
    string(APPEND TIVORA_PC_LIBS " -l${standin}")
  else()
    get_target_property(include_dir ${imported} INTERFACE_INCLUDE_DIRECTORIES)
    get_target_property(location ${imported} IMPORTED_LOCATION)
    get_filename_component(lib_dir "${location}" DIRECTORY)
    get_filename_component(lib_name "${location}" NAME_WE)
    string(REGEX REPLACE "^lib" "" lib_name "${lib_name}")
    string(APPEND TIVORA_PC_CFLAGS " -I${include_dir}")
    string(APPEND TIVORA_PC_LIBS " -L${lib_dir} -l${lib_name}")
  endif()
  set(TIVORA_PC_CFLAGS "${TIVORA_PC_CFLAGS}" PARENT_SCOPE)
  set(TIVORA_PC_LIBS "${TIVORA_PC_LIBS}" PARENT_SCOPE)
endfunction()

# The library, its headers, the stand-ins it links on a host build, and the package files.
function(tivora_install_package)
  tivora_install(vexa_tivorabase ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${TIVORA_INSTALL_INCLUDEDIR})

  set(TIVORA_PC_CFLAGS "")
  set(TIVORA_PC_LIBS "")
  tivora_install_platform(SNPE SNPE Tivora::SNPE snpe)
  tivora_install_platform(FASTCV fastcvopt Tivora::FastCV fastcv)

  set(TIVORA_LIBRARY_FILE "${CMAKE_SHARED_LIBRARY_PREFIX}vexa_tivorabase${CMAKE_SHARED_LIBRARY_SUFFIX}")
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/package/tivorabaseConfig.cmake.in
    ${PROJECT_BINARY_DIR}/package/tivorabaseConfig.cmake
    INSTALL_DESTINATION ${TIVORA_INSTALL_CMAKEDIR}
    PATH_VARS CMAKE_INSTALL_LIBDIR TIVORA_INSTALL_INCLUDEDIR)
  # Before 1.0 a new minor version may change the interface.
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/tivorabaseConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
  install(FILES
    ${PROJECT_BINARY_DIR}/package/tivorabaseConfig.cmake
    ${PROJECT_BINARY_DIR}/package/tivorabaseConfigVersion.cmake
    ${PROJECT_SOURCE_DIR}/cmake/TivoraPlatformLibraries.cmake
    DESTINATION ${TIVORA_INSTALL_CMAKEDIR})

  # The .pc file finds the prefix from its own folder, so the tree may be moved.
  file(RELATIVE_PATH pc_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
  set(TIVORA_PC_PREFIX "\${pcfiledir}/${pc_to_prefix}")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/package/tivorabase.pc.in ${PROJECT_BINARY_DIR}/package/tivorabase.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/tivorabase.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
