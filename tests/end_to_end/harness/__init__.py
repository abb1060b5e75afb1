# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Starts virtual desktops and Tarn on them, and reads their state for the end-to-end tests."""
