# Installs the library, its header, a pkg-config file and a CMake package.
install(TARGETS zebldapcfg pwcodec EXPORT zebldapcfg)
install(FILES include/zebldapcfg.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES examples/zebslapd.conf examples/tour.c DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zebldapcfg)
install(EXPORT zebldapcfg NAMESPACE zebldapcfg:: FILE zebldapcfg-targets.cmake DESTINATION ${package_dir})
if(NOT WIN32)
    set(find_ldap "find_dependency(PkgConfig)\npkg_check_modules(LDAP REQUIRED IMPORTED_TARGET ldap)\n")
    set(pc_private "Requires.private: ldap")
else()
    set(pc_private "Libs.private: -l${ldap_library}")
endif()
configure_package_config_file(cmake/zebldapcfg-config.cmake.in zebldapcfg-config.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(zebldapcfg-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zebldapcfg-config.cmake ${PROJECT_BINARY_DIR}/zebldapcfg-config-version.cmake
    DESTINATION ${package_dir})

# Its paths start from where it lies, so that it stays true below any prefix of cmake --install.
file(RELATIVE_PATH prefix_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig "${prefix_from_pkgconfig}")
configure_file(cmake/zebldapcfg.pc.in zebldapcfg.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zebldapcfg.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
