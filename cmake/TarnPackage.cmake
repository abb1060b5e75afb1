# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# Installs the desktop entry, D-Bus service, systemd unit, metainfo, manual page and icon, and builds the Debian package.

include(GNUInstallDirs)
set(input_folder "${PROJECT_SOURCE_DIR}/packaging/linux")
set(output_folder "${PROJECT_BINARY_DIR}/packaging/linux")
set(share "${CMAKE_INSTALL_DATAROOTDIR}")

install(TARGETS tarn RUNTIME)

# install_configured(FILE DESTINATION NAME): configures packaging/linux/FILE.in and installs the result as NAME.
function(install_configured file destination name)
  configure_file("${input_folder}/${file}.in" "${output_folder}/${file}" @ONLY)
  install(FILES "${output_folder}/${file}" DESTINATION "${destination}" RENAME "${name}")
endfunction()

install_configured(tarn.desktop "${share}/applications" "${TARN_APPLICATION_ID}.desktop")
install_configured(tarn.metainfo.xml "${share}/metainfo" "${TARN_APPLICATION_ID}.metainfo.xml")
install_configured(tarn.1 "${CMAKE_INSTALL_MANDIR}/man1" tarn.1)
install_configured(copyright "${share}/doc/tarn" copyright)
install(FILES "${input_folder}/tarn.svg" DESTINATION "${share}/icons/hicolor/scalable/apps"
  RENAME "${TARN_APPLICATION_ID}.svg")

# Configured at installation: these files contain the program's absolute path, which is not known earlier.
install(CODE "
  cmake_path(APPEND TARN_PROGRAM \"\${CMAKE_INSTALL_PREFIX}\" \"${CMAKE_INSTALL_BINDIR}\" tarn)
  set(TARN_APPLICATION_ID \"${TARN_APPLICATION_ID}\")
  foreach(file tarn.dbus.service tarn.service)
    configure_file(\"${input_folder}/\${file}.in\" \"${output_folder}/\${file}\" @ONLY)
  endforeach()")
install(FILES "${output_folder}/tarn.dbus.service" DESTINATION "${share}/dbus-1/services"
  RENAME "${TARN_APPLICATION_ID}.service")
# systemd reads lib/systemd/user, also where CMAKE_INSTALL_LIBDIR is not lib.
install(FILES "${output_folder}/tarn.service" DESTINATION lib/systemd/user)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarn)
set(CPACK_PACKAGE_VENDOR "${TARN_VENDOR_ADDRESS}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_TARN_RELEASE_DATE "${TARN_RELEASE_DATE}")
set(CPACK_PACKAGE_CONTACT "The Tarn authors <authors@${TARN_VENDOR_ADDRESS}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "circle in the panel that tells how memory and processor are doing")
set(CPACK_STRIP_FILES ON)
# Stages the files under their final prefix, because some contain the program's absolute path.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${input_folder}/debian/documents.cmake")
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://${TARN_VENDOR_ADDRESS}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# For the heart emoji in the about line, SVG icons, and Wayland.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-color-emoji, libqt6svg6, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "\
Tarn shows a small circle in the panel: green while there is memory to spare,
orange when it is getting short or the disk has begun to serve as overflow, red
when something has to be closed now.

A click opens a list of the applications that use the most memory or the most
of the processor, each with all its processes, and shows storage, battery,
temperature and uptime.

Tarn needs no privileges and uses no network. It wants a panel that shows
status items; where there is none it stays in a small window of its own.")
include(CPack)
