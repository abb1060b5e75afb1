// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// GoogleTest and the headers of qt.hpp.

#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qt.hpp"
