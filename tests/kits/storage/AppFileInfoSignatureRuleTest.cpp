// The rule that turns desktop file IDs and executable paths into signatures, and back.
#include "storage/AppSignature.h"

#include <MimeType.h>

#include <gtest/gtest.h>

using namespace BPrivate;

TEST(AppFileInfoSignatureRuleTest, DesktopIdBecomesSignatureWithoutSuffix) {
    EXPECT_EQ("application/x-vnd.desktop-org.gnome.gedit",
              signature_for_desktop_id("org.gnome.gedit.desktop"));
}

TEST(AppFileInfoSignatureRuleTest, ExecutablePathIsEscaped) {
    std::string signature = signature_for_executable("/usr/bin/x term");
    EXPECT_EQ("application/x-vnd.exec-%2Fusr%2Fbin%2Fx%20term", signature);
    EXPECT_TRUE(BMimeType::IsValid(signature.c_str()));
}

TEST(AppFileInfoSignatureRuleTest, DerivedSignaturesRunBackwards) {
    std::string id;
    ASSERT_TRUE(desktop_id_for_signature(
        signature_for_desktop_id("odd name;with:specials.desktop").c_str(), &id));
    EXPECT_EQ("odd name;with:specials.desktop", id);
    std::string path;
    ASSERT_TRUE(
        executable_for_signature(signature_for_executable("/opt/\xc3\xa9/run").c_str(), &path));
    EXPECT_EQ("/opt/\xc3\xa9/run", path);
}

TEST(AppFileInfoSignatureRuleTest, PrefixComparesWithoutCase) {
    std::string id;
    ASSERT_TRUE(desktop_id_for_signature("Application/X-Vnd.Desktop-viewer", &id));
    EXPECT_EQ("viewer.desktop", id);
}

TEST(AppFileInfoSignatureRuleTest, MalformedEscapesAreNoSignature) {
    std::string path;
    EXPECT_FALSE(executable_for_signature("application/x-vnd.exec-%2", &path));
    EXPECT_FALSE(executable_for_signature("application/x-vnd.exec-%zz", &path));
    EXPECT_FALSE(executable_for_signature("application/x-vnd.exec-%00", &path));
    EXPECT_FALSE(executable_for_signature("application/x-vnd.exec-relative", &path));
    EXPECT_FALSE(executable_for_signature("application/x-vnd.other", &path));
}

TEST(AppFileInfoSignatureRuleTest, TooLongNameHasNoSignature) {
    EXPECT_EQ("", signature_for_desktop_id(std::string(300, 'a') + ".desktop"));
    EXPECT_EQ("", signature_for_executable("/" + std::string(300, 'a')));
}
