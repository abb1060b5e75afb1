// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "app/tarn_app.hpp"
#include "platform/macos/mac_platform.hpp"

int main(int argc, char* argv[]) {
  tarn::macos::MacPlatform platform;
  return tarn::runTarn(argc, argv, platform);
}
