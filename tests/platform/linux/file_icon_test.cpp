// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/file_icon.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

namespace tarn {
namespace {

class FileIconTest : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return folder_.filePath(name); }

  QString writeImage(const QString& name, const QSize& size, Qt::GlobalColor color = Qt::red) const {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(path(name)));
    return path(name);
  }

  QIcon iconOfDesktopFile(const QString& icon) const {
    QFile file(path(QStringLiteral("no-such-program.desktop")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(("[Desktop Entry]\nType=Application\nExec=a\nIcon=" + icon + '\n').toUtf8());
    file.close();
    return applicationIcon(file.fileName().toStdString());
  }

  static QColor colorOf(const QIcon& icon) {
    return icon.pixmap(QSize(32, 32), 1).toImage().pixelColor(16, 16);
  }

  QTemporaryDir folder_;
};

TEST_F(FileIconTest, IsTheImageThatTheDesktopFileNames) {
  const QIcon icon = iconOfDesktopFile(writeImage(QStringLiteral("a.png"), {48, 48}, Qt::blue));
  EXPECT_EQ(colorOf(icon), QColor(Qt::blue));
}

TEST_F(FileIconTest, IsScaledDownFromALargeImage) {
  const QIcon icon = imageIcon(writeImage(QStringLiteral("a.png"), {2000, 1000}));
  ASSERT_FALSE(icon.isNull());
  EXPECT_EQ(icon.availableSizes(), QList<QSize>{QSize(128, 64)});
}

TEST_F(FileIconTest, IsNullForAnImageOrFileThatIsTooLarge) {
  EXPECT_TRUE(imageIcon(writeImage(QStringLiteral("wide.png"), {5000, 2})).isNull());
  QFile file(path(QStringLiteral("large.png")));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_TRUE(file.resize(qint64{50} << 20));
  EXPECT_TRUE(imageIcon(file.fileName()).isNull());
}

TEST_F(FileIconTest, IsNullForAFileThatIsNotAnImage) {
  EXPECT_TRUE(imageIcon(QStringLiteral("/dev/zero")).isNull());
  EXPECT_TRUE(imageIcon(folder_.path()).isNull());
  EXPECT_TRUE(imageIcon(path(QStringLiteral("absent.png"))).isNull());
  const QString pipe = path(QStringLiteral("pipe.png"));
  ASSERT_EQ(::mkfifo(qPrintable(pipe), 0600), 0);
  EXPECT_TRUE(imageIcon(pipe).isNull());
  QFile text(path(QStringLiteral("text.png")));
  ASSERT_TRUE(text.open(QIODevice::WriteOnly));
  text.write("not an image");
  text.close();
  EXPECT_TRUE(imageIcon(text.fileName()).isNull());
}

TEST_F(FileIconTest, FallsBackToTheIconForExecutables) {
  const auto expected = QIcon::fromTheme(QStringLiteral("application-x-executable")).name();
  for (const auto* icon : {"", "no-such-icon-anywhere", "../../etc/passwd", "/dev/zero"}) {
    EXPECT_EQ(iconOfDesktopFile(QString::fromLatin1(icon)).name(), expected) << icon;
  }
  EXPECT_EQ(applicationIcon("/nowhere/no-such-program.app").name(), expected);
  EXPECT_EQ(iconOfDesktopFile(QString(5000, u'a')).name(), expected);
}

}  // namespace
}  // namespace tarn
