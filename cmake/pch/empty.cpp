// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT
// A library needs a source; this one carries a precompiled header.
