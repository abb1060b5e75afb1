// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Standard and Qt headers that most files of the user interface include.

#pragma once

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QHash>
#include <QIcon>
#include <QImage>
#include <QLayout>
#include <QObject>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QScreen>
#include <QString>
#include <QTimer>
#include <QWidget>

#include "core.hpp"
