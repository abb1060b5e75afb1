// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/application_information.hpp"

#include <gmock/gmock.h>

#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

// From Debian's package textedit.app, shortened.
constexpr auto textEdit = R"({
    ApplicationDescription = "an OpenStep text editor";
    ApplicationName = TextEdit;
    ApplicationRelease = 5;
    CFBundleDocumentTypes = (
        { CFBundleTypeName = "RTF Document"; CFBundleTypeExtensions = ( rtf ); },
        { LSTypeIsPackage = <*BY>; }
    );
    NOTE = "Automatically generated, do not edit!";
    NSIcon = "accessories-text-editor";
}
)";

TEST(PropertyList, ParsesStringsWithAndWithoutQuotes) {
  EXPECT_THAT(parsePropertyList(R"({ A = b; "C D" = "e \"f\" \n"; })"),
              ElementsAre(Pair("A", "b"), Pair("C D", "e \"f\" \n")));
  EXPECT_THAT(parsePropertyList("/* x */ { // y\n A /* = */ = b; }"), ElementsAre(Pair("A", "b")));
}

TEST(PropertyList, SkipsOtherTypes) {
  EXPECT_THAT(parsePropertyList(R"({ A = (1, "}", {b = c;}); B = <0fbd>; C = { D = e; }; F = g; })"),
              ElementsAre(Pair("F", "g")));
}

TEST(PropertyList, KeepsEntriesBeforeASyntaxError) {
  EXPECT_THAT(parsePropertyList("{ A = b; C = ; D = e; }"), ElementsAre(Pair("A", "b")));
  EXPECT_THAT(parsePropertyList("{ A = b; C"), ElementsAre(Pair("A", "b")));
  EXPECT_THAT(parsePropertyList("{ A = b; C = \"open"), ElementsAre(Pair("A", "b")));
  for (const auto* text : {"", "{", "A = b;", "{ = b; }", "{ A = (((((", "<?xml version=\"1.0\"?>", "{ /*"}) {
    EXPECT_THAT(parsePropertyList(text), IsEmpty()) << text;
  }
  EXPECT_THAT(parsePropertyList("{ A = " + std::string(100'000, '(')), IsEmpty());
}

TEST(ApplicationInformation, OfABundleIsItsPropertyListWithCFBundleName) {
  const TemporaryTree tree;
  tree.write("usr/lib/GNUstep/Applications/TextEdit.app/Resources/Info-gnustep.plist", textEdit);
  const auto information = applicationInformation(tree.roots(), "/usr/lib/GNUstep/Applications/TextEdit.app");
  EXPECT_EQ(information.at("CFBundleName"), "TextEdit");
  EXPECT_EQ(information.at("ApplicationRelease"), "5");
  EXPECT_THAT(applicationInformation(tree.roots(), "/opt/None.app"), IsEmpty());
}

TEST(BundleIconFiles, AreTheNamedFileAndFilesWithThatPrefix) {
  const TemporaryTree tree;
  const std::string bundle = tree.at("TextEdit.app").string();
  tree.write("TextEdit.app/Resources/Info-gnustep.plist", textEdit);
  tree.write("TextEdit.app/Resources/accessories-text-editor.icns", "");
  tree.write("TextEdit.app/Resources/accessories-text-editor_128x128x32.png", "");
  tree.write("TextEdit.app/Resources/other.png", "");
  EXPECT_THAT(bundleIconFiles(bundle),
              ElementsAre(bundle + "/Resources/accessories-text-editor",
                          bundle + "/Resources/accessories-text-editor.icns",
                          bundle + "/Resources/accessories-text-editor_128x128x32.png"));
}

TEST(BundleIconFiles, AreNeverOutsideOfTheBundle) {
  const TemporaryTree tree;
  tree.write("A.app/Resources/Info-gnustep.plist", "{ NSIcon = \"../../secret.png\"; }");
  EXPECT_THAT(bundleIconFiles(tree.at("A.app").string()), IsEmpty());
  EXPECT_THAT(bundleIconFiles(tree.at("None.app").string()), IsEmpty());
}

}  // namespace
}  // namespace tarn
