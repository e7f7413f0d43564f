#include "core/ErrorTranslation.h"

#include <GenTL/GenTL.h>
#include <gtest/gtest.h>

#include <string>

using namespace Orvan;

namespace {

// Produces a producer last-error text on this thread: closing an uninitialised producer.
void LeaveProducerError() {
    ASSERT_EQ(GenTL::GCCloseLib(), GenTL::GC_ERR_NOT_INITIALIZED);
}

// The text the producer holds for this thread, read without translation.
std::string RawProducerText() {
    char text[2048] = {};
    size_t size = sizeof(text);
    GenTL::GC_ERROR code = 0;
    EXPECT_EQ(GenTL::GCGetLastError(&code, text, &size), GenTL::GC_ERR_SUCCESS);
    return text;
}

template <class E>
std::string TranslatedMessage(int32_t code) {
    LeaveProducerError();
    try {
        ThrowGenTLError(code, "Unable to open system", ORVAN_SITE("Orvan", "OpenSystem"), "TLOpen");
    } catch (const GenICam::GenericException& e) {
        EXPECT_NE(dynamic_cast<const E*>(&e), nullptr) << "code " << code << ": " << e.what();
        return e.what();
    }
    return {};
}

} // namespace

TEST(ErrorTranslation, EveryCodeMapsToItsClassAndName) {
    struct Row {
        int32_t code;
        const char* name;
        const char* className;
    };
    const Row rows[] = {
        {-1022, "GC_ERR_BUSY", "RuntimeException"},
        {-1019, "GC_ERR_INVALID_VALUE", "InvalidArgumentException"},
        {-1017, "GC_ERR_INVALID_INDEX", "OutOfRangeException"},
        {-1014, "GC_ERR_NOT_AVAILABLE", "LogicalErrorException"},
        {-1011, "GC_ERR_TIMEOUT", "TimeoutException"},
        {-1005, "GC_ERR_ACCESS_DENIED", "AccessException"},
        {-1004, "GC_ERR_RESOURCE_IN_USE", "LogicalErrorException"},
        {-1002, "GC_ERR_NOT_INITIALIZED", "LogicalErrorException"},
        {-1001, "GC_ERR_ERROR", "GenericException"},
        {-1023, "GC_ERR_ERROR", "GenericException"},
        {-1000, "GC_ERR_ERROR", "GenericException"},
        {5, "GC_ERR_ERROR", "GenericException"},
    };
    for (const Row& row : rows) {
        EXPECT_STREQ(GenTLErrorName(row.code), row.name) << row.code;
        EXPECT_STREQ(GenTLErrorClassName(row.code), row.className) << row.code;
    }
    // The table is contiguous: every code in range has a name of its own.
    for (int32_t code = -1022; code <= -1002; ++code)
        EXPECT_STRNE(GenTLErrorName(code), "GC_ERR_ERROR") << code;
}

TEST(ErrorTranslation, MessageIsComposedPieceByPieceWithTheProducerText) {
    std::string message = TranslatedMessage<GenICam::TimeoutException>(GenTL::GC_ERR_TIMEOUT);
    EXPECT_EQ(message, "TimeoutException (GC_ERR_TIMEOUT): Unable to open system (Orvan, "
                       "OpenSystem; GenTL::TLOpen); " +
                           RawProducerText());
    EXPECT_EQ(TranslatedMessage<GenICam::GenericException>(-1001).rfind(
                  "GenericException (GC_ERR_ERROR): Unable to open system", 0),
              0u);
    EXPECT_EQ(TranslatedMessage<GenICam::AccessException>(GenTL::GC_ERR_ACCESS_DENIED)
                  .rfind("AccessException (GC_ERR_ACCESS_DENIED): ", 0),
              0u);
}

TEST(ErrorTranslation, ShortFormOmitsCallAndProducerText) {
    LeaveProducerError();
    try {
        ThrowGenTLErrorShort(GenTL::GC_ERR_INVALID_HANDLE, "Unable to get URL",
                             ORVAN_SITE("Port", "GetUrl"));
    } catch (const GenICam::InvalidArgumentException& e) {
        EXPECT_STREQ(e.what(), "InvalidArgumentException (GC_ERR_INVALID_HANDLE): Unable to get "
                               "URL (Port, GetUrl)");
    }
}

TEST(ErrorTranslation, LibraryErrorsNameClassFileAndFunctionAndRecordTheLine) {
    ErrorSite site = ORVAN_SITE("Orvan", "OpenSystem");
    unsigned line = __LINE__ - 1;
    try {
        ThrowLibraryError<GenICam::BadAllocException>("Library failed to allocate resources", site);
    } catch (const GenICam::BadAllocException& e) {
        EXPECT_STREQ(e.what(), "BadAllocException: Library failed to allocate resources (Orvan, "
                               "OpenSystem)");
        EXPECT_EQ(e.GetSourceLine(), line);
        EXPECT_NE(std::string(e.GetSourceFileName()).find("ErrorTranslationTest.cpp"),
                  std::string::npos);
    }
}
