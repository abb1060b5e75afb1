// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <libproc.h>

// expected: no member named 'pbi_parent'
unsigned parentOf(const proc_bsdinfo& record) {
  return record.pbi_parent;
}
