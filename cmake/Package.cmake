# Debian packages made by `cpack -G DEB` (scripts/package.sh): `lanyx`, the console, and
# `lanyx-hostsim`, the simulated host. The simulated host is a stand-in that a real host never
# wants: its PAM module and its tools do not belong on a machine that only runs the console.
# Library dependencies come from dpkg-shlibdeps; only programs run by path are named by hand.

# The changelog's newest entry names the version the packages get; they must not drift apart.
file(STRINGS ${CMAKE_SOURCE_DIR}/packaging/changelog lanyx_changelog_head LIMIT_COUNT 1)
if(NOT lanyx_changelog_head MATCHES "^lanyx \\(${PROJECT_VERSION}\\) ")
    message(FATAL_ERROR "packaging/changelog does not begin with version ${PROJECT_VERSION} "
                        "of the project: ${lanyx_changelog_head}")
endif()

set(LANYX_PACKAGE_MAINTAINER "lanyx maintainers <maintainers@lanyx.example>"
    CACHE STRING "Maintainer field of the Debian packages")

set(lanyx_packages console:lanyx)
if(TARGET hostsim)
    list(APPEND lanyx_packages hostsim:lanyx-hostsim)
endif()

# Each package carries the copyright file and the changelog in its documentation folder.
set(lanyx_changelog_gz ${CMAKE_BINARY_DIR}/packaging/changelog.gz)
add_custom_command(OUTPUT ${lanyx_changelog_gz}
    COMMAND sh -c "gzip -9 -n -c \"$1\" > \"$2\"" sh ${CMAKE_SOURCE_DIR}/packaging/changelog
            ${lanyx_changelog_gz}
    DEPENDS ${CMAKE_SOURCE_DIR}/packaging/changelog
    VERBATIM)
add_custom_target(lanyx_changelog ALL DEPENDS ${lanyx_changelog_gz})
foreach(entry IN LISTS lanyx_packages)
    string(REPLACE ":" ";" entry "${entry}")
    list(GET entry 0 component)
    list(GET entry 1 package)
    install(FILES ${CMAKE_SOURCE_DIR}/packaging/copyright ${lanyx_changelog_gz}
            DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component})
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
endforeach()

# A stripped program also loses the compiler's .comment section, as in Debian's own packages.
set(lanyx_stripped "lanyx:${CMAKE_INSTALL_FULL_SBINDIR}:console")
if(TARGET hostsim)
    list(APPEND lanyx_stripped "hostsim:${CMAKE_INSTALL_FULL_BINDIR}:hostsim"
         "hostsim-tool:${CMAKE_INSTALL_PREFIX}/${LANYX_HOSTSIM_LIBEXEC_DIR}:hostsim"
         "pam_hostsim:${LANYX_PAM_MODULE_DIR}:hostsim")
endif()
foreach(entry IN LISTS lanyx_stripped)
    string(REPLACE ":" ";" entry "${entry}")
    list(GET entry 0 target)
    list(GET entry 1 folder)
    list(GET entry 2 component)
    install(CODE "if(CMAKE_INSTALL_DO_STRIP)
        execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --remove-section=.comment
            \"\$ENV{DESTDIR}${folder}/$<TARGET_FILE_NAME:${target}>\" COMMAND_ERROR_IS_FATAL ANY)
    endif()" COMPONENT ${component})
endforeach()

# What lintian is told to let pass, each with its reason in the file.
install(FILES ${CMAKE_SOURCE_DIR}/packaging/lanyx.lintian-overrides
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides RENAME lanyx COMPONENT console)

# /etc/pam.d/lanyx is the administrator's to change; an upgrade must not overwrite it silently.
file(WRITE ${CMAKE_BINARY_DIR}/packaging/console/conffiles
     "${CMAKE_INSTALL_FULL_SYSCONFDIR}/pam.d/lanyx\n")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lanyx)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${LANYX_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL console)
if(TARGET hostsim)
    list(APPEND CPACK_COMPONENTS_ALL hostsim)
endif()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${LANYX_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SOURCE lanyx)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_CONSOLE_DESCRIPTION "local console of a hypervisor host
A full-screen text program for a virtual terminal of the host. It shows
who the host is and where it is managed, and after a PAM login it lets the
operator repair what remote management needs: the management network and
its restore, services and time-outs, the password, logs and power.")
set(CPACK_DEBIAN_CONSOLE_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/packaging/console/conffiles)
# The console loads PAM at the first login, where shlibdeps cannot see it; pam_start_confdir
# came with 1.4.
set(CPACK_DEBIAN_CONSOLE_PACKAGE_DEPENDS "libpam0g (>= 1.4)")
# The console sets its own locale, en_US.UTF-8, which the locales package generates.
set(CPACK_DEBIAN_CONSOLE_PACKAGE_RECOMMENDS locales)

if(TARGET hostsim)
    # This console is built on the simulated host's platform library: without a simulated
    # host there is nothing for it to manage.
    set(CPACK_COMPONENT_CONSOLE_DEPENDS hostsim)
    set(CPACK_DEBIAN_HOSTSIM_DESCRIPTION "simulated hypervisor host for the lanyx console
A host state document with the host's tools, a PAM module for its accounts
and the hostsim command, which makes host roots from profiles, changes their
settings and injects faults, so that the console can be run, shown and
tested without a hypervisor.")
    # hostsim makes a root with links to these programs of the machine.
    set(CPACK_DEBIAN_HOSTSIM_PACKAGE_DEPENDS "less, openssl, openssh-client")
endif()

include(CPack)
