# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# CPack runs this script before it builds the package from CPACK_TEMPORARY_DIRECTORY. It adds the Debian changelog, and
# compresses the changelog and the manual page without a time stamp, so that builds are reproducible.

set(share "${CPACK_TEMPORARY_DIRECTORY}/usr/share")
execute_process(COMMAND date --utc --rfc-email "--date=${CPACK_TARN_RELEASE_DATE} 12:00"
  OUTPUT_VARIABLE release_time OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file("${CMAKE_CURRENT_LIST_DIR}/changelog.in" "${share}/doc/tarn/changelog.Debian" @ONLY)
foreach(document doc/tarn/changelog.Debian man/man1/tarn.1)
  file(CHMOD "${share}/${document}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  execute_process(COMMAND gzip --best --no-name "${share}/${document}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
