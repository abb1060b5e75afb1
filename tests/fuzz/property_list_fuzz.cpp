// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/app_identity/application_information.hpp"

FUZZ_TARGET(property_list, text) {
  tarn::parsePropertyList(text);
}
