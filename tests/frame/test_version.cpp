#include <gtest/gtest.h>

#include <cstring>

#include "zevcv.h"

extern "C" int zev_c_smoke(void);

TEST(Version, RecordAndTexts) {
    const ZevLibraryVersion* v = zevcvGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->major, 7);
    EXPECT_EQ(v->minor, 1);
    EXPECT_EQ(v->patch, 1);
    EXPECT_EQ(v->revision, 37466);
    EXPECT_EQ(std::memcmp(v->targetTag, "v8\0\0", 4), 0);
    EXPECT_STREQ(v->name, "zevCV SSSE3 (v8)");
    EXPECT_STREQ(v->versionText, "7.1.1 (r37466)");
    EXPECT_STREQ(v->buildDate, "Sep 24 2012");
    EXPECT_EQ(zevcvGetLibVersion(), v) << "one constant record";
}

TEST(Header, UsableFromC) { EXPECT_EQ(zev_c_smoke(), 0); }
