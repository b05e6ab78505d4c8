# Where `cmake --install` puts each file. With the /usr prefix of a package the PAM module and
# the systemd unit go where the machine's PAM and systemd look for them; any other prefix keeps
# every file under the prefix. The simulated host's files form a component of their own.
include(GNUInstallDirs)

set(lanyx_default_pam_dir "${CMAKE_INSTALL_FULL_LIBDIR}/security")
set(lanyx_default_unit_dir "${CMAKE_INSTALL_PREFIX}/lib/systemd/system")
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    pkg_get_variable(lanyx_pam_libdir pam libdir)
    if(lanyx_pam_libdir)
        set(lanyx_default_pam_dir "${lanyx_pam_libdir}/security")
    endif()
    pkg_get_variable(lanyx_systemd_unit_dir systemd systemdsystemunitdir)
    # Debian 12 keeps its units in /lib; a machine without systemd's pkg-config file gets the same.
    if(lanyx_systemd_unit_dir)
        set(lanyx_default_unit_dir "${lanyx_systemd_unit_dir}")
    else()
        set(lanyx_default_unit_dir "/lib/systemd/system")
    endif()
endif()
set(LANYX_PAM_MODULE_DIR "${lanyx_default_pam_dir}" CACHE PATH "Folder of PAM modules")
set(LANYX_SYSTEMD_UNIT_DIR "${lanyx_default_unit_dir}" CACHE PATH "Folder of systemd system units")
set(LANYX_HOSTSIM_LIBEXEC_DIR "${CMAKE_INSTALL_LIBEXECDIR}/hostsim")

# The console.
install(TARGETS lanyx RUNTIME DESTINATION ${CMAKE_INSTALL_SBINDIR} COMPONENT console)
install(FILES packaging/lanyx.pam DESTINATION ${CMAKE_INSTALL_FULL_SYSCONFDIR}/pam.d
        RENAME lanyx COMPONENT console)
set(LANYX_CONSOLE_PROGRAM "${CMAKE_INSTALL_FULL_SBINDIR}/lanyx")
configure_file(packaging/lanyx@.service.in ${CMAKE_BINARY_DIR}/packaging/lanyx@.service @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/packaging/lanyx@.service DESTINATION ${LANYX_SYSTEMD_UNIT_DIR}
        COMPONENT console)

# The simulated host. hostsim finds the other two from its own folder, so the paths between
# them are built in relative to it: a staged install (DESTDIR) works as well as the final one.
if(TARGET hostsim)
    install(TARGETS hostsim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT hostsim)
    install(TARGETS hostsim-tool RUNTIME DESTINATION ${LANYX_HOSTSIM_LIBEXEC_DIR}
            COMPONENT hostsim)
    install(TARGETS pam_hostsim LIBRARY DESTINATION ${LANYX_PAM_MODULE_DIR} COMPONENT hostsim)
    file(RELATIVE_PATH hostsim_installed_tool ${CMAKE_INSTALL_FULL_BINDIR}
         ${CMAKE_INSTALL_PREFIX}/${LANYX_HOSTSIM_LIBEXEC_DIR}/hostsim-tool)
    file(RELATIVE_PATH hostsim_installed_module ${CMAKE_INSTALL_FULL_BINDIR}
         ${LANYX_PAM_MODULE_DIR}/pam_hostsim.so)
    target_compile_definitions(hostsim PRIVATE
        HOSTSIM_INSTALLED_TOOL="${hostsim_installed_tool}"
        HOSTSIM_INSTALLED_PAM_MODULE="${hostsim_installed_module}")
endif()

# Manual pages, compressed as Debian installs them; the pages are written by hand in docs/man.
set(lanyx_man_pages lanyx.8:console)
if(TARGET hostsim)
    list(APPEND lanyx_man_pages hostsim.1:hostsim)
endif()
set(lanyx_man_outputs)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/man)
foreach(entry IN LISTS lanyx_man_pages)
    string(REPLACE ":" ";" entry "${entry}")
    list(GET entry 0 page)
    list(GET entry 1 component)
    string(REGEX REPLACE ".*\\." "" section "${page}")
    set(output ${CMAKE_BINARY_DIR}/man/${page}.gz)
    add_custom_command(OUTPUT ${output}
        COMMAND sh -c "gzip -9 -n -c \"$1\" > \"$2\"" sh ${CMAKE_SOURCE_DIR}/docs/man/${page} ${output}
        DEPENDS ${CMAKE_SOURCE_DIR}/docs/man/${page}
        COMMENT "Compressing manual page ${page}"
        VERBATIM)
    list(APPEND lanyx_man_outputs ${output})
    install(FILES ${output} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
            COMPONENT ${component})
endforeach()
add_custom_target(lanyx_man_pages ALL DEPENDS ${lanyx_man_outputs})
