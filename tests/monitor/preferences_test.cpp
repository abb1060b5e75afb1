// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/preferences.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

namespace tarn {
namespace {

using testing::HasSubstr;

class PreferencesTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(directory_.isValid()); }

  QString path(const char* name = "store.conf") const { return directory_.filePath(QLatin1String(name)); }

  std::string contents(const QString& path) const {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "no file";
  }

  /// Writes the file as another process would, without QSettings.
  void write(const QByteArray& contents) const {
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(contents), contents.size());
  }

  QTemporaryDir directory_;
};

TEST_F(PreferencesTest, HideTheFootprintByDefault) {
  EXPECT_FALSE(Preferences(path()).showFrontmostFootprint());
}

TEST_F(PreferencesTest, AreWrittenImmediately) {
  Preferences preferences(path());
  preferences.setShowFrontmostFootprint(true);
  EXPECT_THAT(contents(path()), HasSubstr("showFrontmostFootprint=true\n"));
  EXPECT_TRUE(preferences.showFrontmostFootprint());
  preferences.setShowFrontmostFootprint(false);
  EXPECT_THAT(contents(path()), HasSubstr("showFrontmostFootprint=false\n"));
  EXPECT_FALSE(preferences.showFrontmostFootprint());
}

TEST_F(PreferencesTest, ArePersistent) {
  Preferences(path()).setShowFrontmostFootprint(true);
  EXPECT_TRUE(Preferences(path()).showFrontmostFootprint());
}

TEST_F(PreferencesTest, ReadWhatAnotherProcessWrote) {
  Preferences preferences(path());
  EXPECT_FALSE(preferences.showFrontmostFootprint());
  write("[General]\nshowFrontmostFootprint=true\n");
  EXPECT_TRUE(preferences.showFrontmostFootprint());
  write("[General]\nshowFrontmostFootprint=false\n");
  EXPECT_FALSE(preferences.showFrontmostFootprint());
}

TEST_F(PreferencesTest, ReadWhatAnotherObjectWrote) {
  Preferences reader(path());
  EXPECT_FALSE(reader.showFrontmostFootprint());
  Preferences(path()).setShowFrontmostFootprint(true);
  EXPECT_TRUE(reader.showFrontmostFootprint());
}

TEST_F(PreferencesTest, ReturnTheDefaultWhenTheFileIsRemoved) {
  Preferences preferences(path());
  preferences.setShowFrontmostFootprint(true);
  ASSERT_TRUE(QFile::remove(path()));
  EXPECT_FALSE(preferences.showFrontmostFootprint());
}

TEST_F(PreferencesTest, EmitWillChangeBeforeTheChange) {
  Preferences preferences(path());
  std::vector<bool> seen;
  QObject::connect(&preferences, &Preferences::willChange, &preferences,
                   [&] { seen.push_back(preferences.showFrontmostFootprint()); });
  preferences.setShowFrontmostFootprint(true);
  preferences.setShowFrontmostFootprint(false);
  EXPECT_THAT(seen, testing::ElementsAre(false, true));
}

TEST_F(PreferencesTest, DoNotEmitWillChangeWithoutAChange) {
  Preferences preferences(path());
  int emitted = 0;
  QObject::connect(&preferences, &Preferences::willChange, &preferences, [&emitted] { ++emitted; });
  preferences.setShowFrontmostFootprint(false);
  EXPECT_EQ(emitted, 0);
  preferences.setShowFrontmostFootprint(true);
  preferences.setShowFrontmostFootprint(true);
  EXPECT_EQ(emitted, 1);
}

TEST_F(PreferencesTest, ReadHandWrittenTrueAndTreatOtherTextAsFalse) {
  Preferences preferences(path());
  for (const char* yes : {"true", "1", "\"true\""}) {
    write(QByteArray("[General]\nshowFrontmostFootprint=") + yes + "\n");
    EXPECT_TRUE(preferences.showFrontmostFootprint()) << yes;
  }
  for (const char* no : {"false", "0", "", "banana", "@Invalid()", "@ByteArray(\\0)", "true, true"}) {
    write(QByteArray("[General]\nshowFrontmostFootprint=") + no + "\n");
    EXPECT_FALSE(preferences.showFrontmostFootprint()) << no;
  }
}

TEST_F(PreferencesTest, SurviveAMalformedFileAndOverwriteIt) {
  write(QByteArray("\0\xff\xfe[[[=\n==\n]\r\x01", 15) + QByteArray(100'000, '\x80'));
  Preferences preferences(path());
  EXPECT_FALSE(preferences.showFrontmostFootprint());
  preferences.setShowFrontmostFootprint(true);
  EXPECT_TRUE(preferences.showFrontmostFootprint());
  EXPECT_TRUE(Preferences(path()).showFrontmostFootprint());
}

TEST_F(PreferencesTest, SurviveAnUnwritableStore) {
  const QString insideAFile = path() + QStringLiteral("/store.conf");
  write("a file where a directory should be");
  Preferences preferences(insideAFile);
  EXPECT_FALSE(preferences.showFrontmostFootprint());
  preferences.setShowFrontmostFootprint(true);
  EXPECT_TRUE(preferences.showFrontmostFootprint()) << "the value is kept until the program ends";
}

TEST_F(PreferencesTest, AreStoredInTheUsersSettings) {
  QCoreApplication::setOrganizationName("tarn");
  QCoreApplication::setApplicationName("tarn");
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory_.path());
  Preferences().setShowFrontmostFootprint(true);
  EXPECT_THAT(contents(path("tarn/tarn.conf")), HasSubstr("showFrontmostFootprint=true\n"));
  EXPECT_TRUE(Preferences().showFrontmostFootprint());
}

}  // namespace
}  // namespace tarn
