#include "SpineTestSupport.h"

#include <Orvan/localization.h>

#include <gtest/gtest.h>

namespace {

namespace loc = Orvan::loc;

TEST(Localization, PlaceholdersAreFilledByIndex) {
    EXPECT_EQ(loc::al("{0} of {1}", {"3", ""}), "3 of -");
    EXPECT_EQ(loc::al("{0} of {1}", {"3", ""}, "none"), "3 of none");
    EXPECT_EQ(loc::al("{1}{0}{1}", {"a", "b"}), "bab");
    EXPECT_EQ(loc::al("{0} and {2}", {"x"}), "x and {2}");
    EXPECT_EQ(loc::al("{0} {10}", {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k"}), "a k");
    EXPECT_EQ(loc::al("{0}"), "{0}");
    EXPECT_EQ(loc::al(""), "");
    EXPECT_EQ(loc::interpolate("{0}!", {""}, ""), "!");
}

// Each argument is substituted in turn over the result so far: an argument that holds a later
// placeholder is filled in by that later argument.
TEST(Localization, LaterArgumentsFillPlaceholdersBroughtInByEarlierOnes) {
    EXPECT_EQ(loc::al("<{0}>", {"{1}", "x"}), "<x>");
    EXPECT_EQ(loc::al("<{1}>", {"a", "{0}"}), "<{0}>");
}

void ExpectNullError(void (*call)()) {
    EXPECT_EQ(SpineTest::Message(call), "basic_string::_M_construct null not valid");
}

TEST(Localization, NullTextOrArgumentIsALogicError) {
    ExpectNullError([] { loc::al(nullptr); });
    ExpectNullError([] { loc::al("{0}", {"a", nullptr}); });
    ExpectNullError([] { loc::interpolate("{0}", {""}, nullptr); });
    EXPECT_EQ(loc::interpolate("{0}", {"a"}, nullptr), "a")
        << "the empty value is only read when needed";
}

TEST(Localization, InitAlwaysFailsAndLeavesNoCatalogueBehind) {
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            loc::init("catalogue", 0);
            ADD_FAILURE() << "init succeeded";
        } catch (const char* error) {
            EXPECT_STREQ(error, "fail impl here");
        }
        EXPECT_EQ(loc::al("{0}", {"still works"}), "still works");
    }
    loc::close();
    EXPECT_EQ(loc::al("after close"), "after close");
}

} // namespace
