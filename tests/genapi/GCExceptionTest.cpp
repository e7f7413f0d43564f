#include <Base/GCException.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace GenICam;

namespace {

template <class E>
void ExpectCaughtAsGeneric() {
    try {
        throw E("described", "Source.cpp", 42);
    } catch (const GenericException& e) {
        EXPECT_STREQ(e.GetDescription(), "described");
        EXPECT_STREQ(e.what(), "described");
        EXPECT_STREQ(e.GetSourceFileName(), "Source.cpp");
        EXPECT_EQ(e.GetSourceLine(), 42u);
        EXPECT_NE(dynamic_cast<const E*>(&e), nullptr);
        return;
    }
    FAIL() << "not caught as GenericException";
}

} // namespace

TEST(GCException, EverySubclassIsCaughtAsGenericExceptionWithItsDetails) {
    ExpectCaughtAsGeneric<GenericException>();
    ExpectCaughtAsGeneric<BadAllocException>();
    ExpectCaughtAsGeneric<InvalidArgumentException>();
    ExpectCaughtAsGeneric<OutOfRangeException>();
    ExpectCaughtAsGeneric<PropertyException>();
    ExpectCaughtAsGeneric<RuntimeException>();
    ExpectCaughtAsGeneric<LogicalErrorException>();
    ExpectCaughtAsGeneric<AccessException>();
    ExpectCaughtAsGeneric<TimeoutException>();
    ExpectCaughtAsGeneric<DynamicCastException>();
}

TEST(GCException, SubclassesAreDistinctAndStdExceptions) {
    try {
        throw AccessException("not writable", "Node.cpp", 7);
    } catch (const OutOfRangeException&) {
        FAIL() << "caught by an unrelated subclass";
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "not writable");
    }
}

TEST(GCException, WhatReturnsTheDescriptionUnchanged) {
    // The SDK composes complete messages itself; nothing may be prepended or appended.
    const char* message = "RuntimeException: Unable to open system (Orvan, OpenSystem)";
    RuntimeException e(message, "/path/Orvan.cpp", 10);
    EXPECT_STREQ(e.what(), message);
    EXPECT_EQ(std::strstr(e.what(), "Orvan.cpp, line"), nullptr);
}

TEST(GCException, NullArgumentsGiveEmptyTexts) {
    GenericException e(nullptr, nullptr, 0);
    EXPECT_STREQ(e.what(), "");
    EXPECT_STREQ(e.GetSourceFileName(), "");
}

TEST(GCException, CopiesOwnTheirTexts) {
    std::string description = "temporary";
    RuntimeException copy("x", "y", 1);
    {
        RuntimeException original(description.c_str(), "File.cpp", 3);
        copy = original;
    }
    description.assign("overwritten");
    EXPECT_STREQ(copy.what(), "temporary");
    EXPECT_STREQ(copy.GetSourceFileName(), "File.cpp");
}

TEST(GCException, MacrosFormatTheDescriptionAndRecordTheThrowSite) {
    unsigned line = 0;
    try {
        line = __LINE__ + 1;
        throw OUT_OF_RANGE_EXCEPTION("Value %d is above the maximum of '%s' (%.1f)", 70, "Gain",
                                     48.0);
    } catch (const OutOfRangeException& e) {
        EXPECT_STREQ(e.what(), "Value 70 is above the maximum of 'Gain' (48.0)");
        EXPECT_NE(std::strstr(e.GetSourceFileName(), "GCExceptionTest.cpp"), nullptr);
        EXPECT_EQ(e.GetSourceLine(), line);
    }
}

TEST(GCException, MacrosTakePreformattedTextsVerbatim) {
    // A percent sign in a composed text must not be read as a format directive.
    gcstring composed("100% done");
    EXPECT_STREQ(RUNTIME_EXCEPTION(composed).what(), "100% done");
    EXPECT_STREQ(LOGICAL_ERROR_EXCEPTION(std::string("50% off")).what(), "50% off");
    std::string longText(5000, 'x');
    EXPECT_EQ(std::string(GENERIC_EXCEPTION("%s", longText.c_str()).what()), longText);
}
