# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# Run over the gathered files before the package is made of them: adds Debian's changelog, and compresses what Debian
# wants compressed, the same way each time.

set(share "${CPACK_TEMPORARY_DIRECTORY}/usr/share")
file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/changelog" "${share}/doc/tarn/changelog.Debian")
foreach(document doc/tarn/changelog.Debian man/man1/tarn.1)
  file(CHMOD "${share}/${document}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  execute_process(COMMAND gzip --best --no-name "${share}/${document}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
