# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Virtual desktops, Tarn on them, and what the end-to-end tests read from outside."""
