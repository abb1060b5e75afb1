// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT
// The source file of the libraries tarn_pch_*, which only build a precompiled header. CMake requires a
// source.
