# The Debian packages: kavhrloan (the application, the T-SQL script, the desktop entry with
# its icon, the manual page) and libkavhrloan-dev (the static library a host links, its
# headers and its CMake package configuration). `cpack` in a configured build tree makes
# both; scripts/package.sh does it and checks them.

set(KAV_PACKAGING_DIR ${PROJECT_SOURCE_DIR}/packaging)

# The manual page and the changelog carry the version; Debian wants them gzipped without a
# time stamp.
configure_file(${KAV_PACKAGING_DIR}/kavhrloan.1 ${CMAKE_CURRENT_BINARY_DIR}/packaging/kavhrloan.1 @ONLY)
configure_file(${KAV_PACKAGING_DIR}/changelog.in ${CMAKE_CURRENT_BINARY_DIR}/packaging/changelog @ONLY)
find_program(KAV_GZIP gzip REQUIRED)
set(KAV_GZIPPED
  ${CMAKE_CURRENT_BINARY_DIR}/packaging/kavhrloan.1.gz
  ${CMAKE_CURRENT_BINARY_DIR}/packaging/changelog.gz)
add_custom_command(
  OUTPUT ${KAV_GZIPPED}
  COMMAND ${KAV_GZIP} -9nf -k packaging/kavhrloan.1 packaging/changelog
  DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/packaging/kavhrloan.1
          ${CMAKE_CURRENT_BINARY_DIR}/packaging/changelog
  WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
  COMMENT "Compressing the manual page and the changelog")
add_custom_target(kav_packaging_files ALL DEPENDS ${KAV_GZIPPED})

install(FILES ${KAV_PACKAGING_DIR}/kavhrloan.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT Runtime)
install(FILES ${KAV_PACKAGING_DIR}/kavhrloan.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT Runtime)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/packaging/kavhrloan.1.gz
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT Runtime)
foreach(component_package IN ITEMS "Runtime;kavhrloan" "Development;libkavhrloan-dev")
  list(GET component_package 0 component)
  list(GET component_package 1 package)
  install(FILES ${KAV_PACKAGING_DIR}/copyright ${CMAKE_CURRENT_BINARY_DIR}/packaging/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()

# A stripped install (cpack, cmake --install --strip) strips the executable; the static
# library a host links loses its debugging sections too.
install(CODE [[
  if(CMAKE_INSTALL_DO_STRIP)
    file(GLOB_RECURSE archives "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/lib*/libKAVHRLoan.a")
    foreach(archive IN LISTS archives)
      execute_process(COMMAND strip --strip-debug "${archive}" COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
  endif()
]] COMPONENT Development)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kavhrloan)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "KAV")
set(CPACK_PACKAGE_CONTACT "KAV developers <developers@kav.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES TRUE)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://kav.invalid/kavhrloan")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME kavhrloan)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# Loaded at run time by name, so dpkg-shlibdeps cannot see them: Qt's SQLite and ODBC SQL
# drivers, the ODBC driver manager's tools, Qt's window-system plugins, a Persian font and
# Qt's Persian translation.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS
  "libqt6sql6-sqlite, libqt6sql6-odbc, unixodbc, qt6-qpa-plugins, fonts-farsiweb | fonts-noto-core, qt6-translations-l10n")
# FreeTDS reaches the suite's SQL Server when Microsoft's ODBC driver is not installed.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "tdsodbc")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
 "employee loans of the HR and payroll suite
Payroll clerks define the loans granted to employees: loan type and ceiling,
amount, monthly instalments and remainder, Jalali dates, borrowers with up to
three guarantors, per-member instalment adjustments, temporary and final loans.
They search loans, follow each member's repayment schedule and the payroll's
monthly deduction register. The interface is Persian, right to left.
.
The suite's data lives on SQL Server (through ODBC: FreeTDS or Microsoft's
driver); an embedded SQLite database serves a demo and a single workstation.
'kavhrloan --demo' opens the demo database.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkavhrloan-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qt6-base-dev (>= 6.4), libsqlite3-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
 "employee loans of the HR and payroll suite - library for host applications
The static library KAVHRLoan with the loan control kavHRLoan1, its headers and
its CMake package configuration, for host applications of the suite that embed
the employee-loan module: find_package(KAVHRLoan) and link
KAVHRLoan::KAVHRLoan.")

include(CPack)
