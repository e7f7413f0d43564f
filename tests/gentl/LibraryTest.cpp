#include <GenTL/GenTL.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

using namespace GenTL;

namespace {

std::string LastErrorText(GC_ERROR* code) {
    size_t size = 0;
    EXPECT_EQ(GCGetLastError(code, nullptr, &size), GC_ERR_SUCCESS);
    std::string text(size, '\0');
    EXPECT_EQ(GCGetLastError(code, text.data(), &size), GC_ERR_SUCCESS);
    text.resize(size ? size - 1 : 0);
    return text;
}

} // namespace

TEST(ProducerLibrary, InitialisesOnceAndRefusesUseWhenClosed) {
    TL_HANDLE system = nullptr;
    EXPECT_EQ(TLOpen(&system), GC_ERR_NOT_INITIALIZED);
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(GCInitLib(), GC_ERR_RESOURCE_IN_USE);
    ASSERT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(GCCloseLib(), GC_ERR_NOT_INITIALIZED);
}

TEST(ProducerLibrary, SystemModuleOpensOnceAndRejectsForeignHandles) {
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    TL_HANDLE system = nullptr;
    ASSERT_EQ(TLOpen(&system), GC_ERR_SUCCESS);
    TL_HANDLE second = nullptr;
    EXPECT_EQ(TLOpen(&second), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(TLOpen(nullptr), GC_ERR_INVALID_PARAMETER);
    int foreign = 0;
    EXPECT_EQ(TLClose(&foreign), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(TLClose(system), GC_ERR_SUCCESS);
    EXPECT_EQ(TLClose(system), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
}

TEST(ProducerLibrary, LastErrorIsPerThread) {
    EXPECT_EQ(GCCloseLib(), GC_ERR_NOT_INITIALIZED);
    GC_ERROR code = GC_ERR_SUCCESS;
    std::string text = LastErrorText(&code);
    EXPECT_EQ(code, GC_ERR_NOT_INITIALIZED);
    EXPECT_FALSE(text.empty());

    std::thread other([] {
        GC_ERROR otherCode = GC_ERR_ERROR;
        EXPECT_EQ(LastErrorText(&otherCode), "");
        EXPECT_EQ(otherCode, GC_ERR_SUCCESS);
    });
    other.join();
}

// A consumer asking with a fixed buffer, as the SDK does, still gets the code and the text's
// beginning when the text is longer than the buffer.
TEST(ProducerLibrary, LastErrorTextLongerThanTheBufferIsCut) {
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    TL_HANDLE system = nullptr;
    ASSERT_EQ(TLOpen(&system), GC_ERR_SUCCESS);
    IF_HANDLE interface = nullptr;
    const std::string longId(3000, 'x');
    EXPECT_EQ(TLOpenInterface(system, longId.c_str(), &interface), GC_ERR_INVALID_ID);

    char buffer[2048];
    std::memset(buffer, '#', sizeof(buffer));
    size_t size = sizeof(buffer);
    GC_ERROR code = GC_ERR_SUCCESS;
    ASSERT_EQ(GCGetLastError(&code, buffer, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(code, GC_ERR_INVALID_ID);
    EXPECT_EQ(size, sizeof(buffer));
    ASSERT_EQ(buffer[sizeof(buffer) - 1], '\0');
    const std::string text = LastErrorText(&code);
    EXPECT_GT(text.size(), sizeof(buffer));
    EXPECT_EQ(text.compare(0, sizeof(buffer) - 1, buffer), 0) << "not the text's beginning";

    EXPECT_EQ(TLClose(system), GC_ERR_SUCCESS);
    EXPECT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
}

TEST(ProducerLibrary, IdentifiesItselfBeforeInitialisation) {
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    uint32_t major = 0;
    size_t size = sizeof(major);
    ASSERT_EQ(GCGetInfo(TL_INFO_GENTL_VER_MAJOR, &type, &major, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(type, INFO_DATATYPE_UINT32);
    EXPECT_EQ(major, 1u);
    char name[256];
    size = sizeof(name);
    ASSERT_EQ(GCGetInfo(TL_INFO_NAME, &type, name, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(type, INFO_DATATYPE_STRING);
    EXPECT_NE(std::string(name).find("OrvanGenTL"), std::string::npos) << name;
    EXPECT_EQ(GCGetInfo(999, &type, name, &size), GC_ERR_INVALID_PARAMETER);
}
