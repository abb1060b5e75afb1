# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# Builds the program as an application bundle, and a disk image of the bundle. The installation copies
# Qt into the bundle.

set_target_properties(tarn PROPERTIES
  OUTPUT_NAME Tarn
  MACOSX_BUNDLE ON
  MACOSX_BUNDLE_INFO_PLIST "${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in")

install(TARGETS tarn BUNDLE DESTINATION .)
find_package(Qt6 REQUIRED COMPONENTS Core)
set(script_argument OUTPUT_SCRIPT)
if(Qt6_VERSION VERSION_LESS 6.5)
  set(script_argument FILENAME_VARIABLE)  # the name of this argument before Qt 6.5
endif()
qt_generate_deploy_app_script(TARGET tarn ${script_argument} deploy_script)
install(SCRIPT "${deploy_script}")

set(CPACK_GENERATOR DragNDrop)
set(CPACK_PACKAGE_NAME Tarn)
set(CPACK_PACKAGE_VENDOR "${TARN_VENDOR_ADDRESS}")
set(CPACK_PACKAGE_FILE_NAME "Tarn-${PROJECT_VERSION}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
include(CPack)
