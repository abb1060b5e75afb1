// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <libproc.h>

// expected: cannot initialize a variable of type
int (*const listPIDs)(const char* type, void* buffer) = proc_listpids;
