# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""check_bundle.py FILE: fails unless the template of Info.plist is a property list with the required values."""

import plistlib
import sys

REQUIRED = {
    "CFBundleIdentifier": "com.tarn.tarn",
    "CFBundleName": "Tarn",
    "CFBundlePackageType": "APPL",
    "CFBundleExecutable": "${MACOSX_BUNDLE_EXECUTABLE_NAME}",
    "CFBundleShortVersionString": "${PROJECT_VERSION}",
    "LSMinimumSystemVersion": "${CMAKE_OSX_DEPLOYMENT_TARGET}",
    "LSUIElement": True,
}


def main():
    with open(sys.argv[1], "rb") as template:
        information = plistlib.load(template)
    wrong = [key for key, value in REQUIRED.items() if information.get(key) != value]
    if wrong:
        sys.exit(f"{sys.argv[1]}: wrong or missing values: {', '.join(wrong)}")


if __name__ == "__main__":
    main()
