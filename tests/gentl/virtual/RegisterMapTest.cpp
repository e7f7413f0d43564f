#include "virtual/RegisterMap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

namespace {

using namespace Orvan::Producer;
using namespace GenTL;

RegisterDefinition Int(const std::string& name, uint64_t address, uint32_t length = 8) {
    RegisterDefinition d;
    d.name = name;
    d.address = address;
    d.length = length;
    return d;
}

GC_ERROR WriteBig(RegisterMap& map, uint64_t address, uint64_t value, size_t size = 8) {
    uint8_t bytes[8];
    for (size_t i = size; i-- > 0; value >>= 8)
        bytes[i] = uint8_t(value);
    return map.Write(address, bytes, size);
}

class RegisterMapTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterDefinition width = Int("Width", 0x100);
        width.min = RegisterLimit::Const(16);
        width.max = RegisterLimit::Named("WidthMax");
        width.inc = RegisterLimit::Const(4);
        width.lockedBy = "Locked";
        width.persistent = true;
        map.Add(width);
        RegisterDefinition widthMax = Int("WidthMax", 0x108);
        widthMax.access = RegisterAccess::RO;
        map.Add(widthMax);
        map.SetLiveInt("WidthMax", [this] { return liveMax; });
        map.Add(Int("Locked", 0x110, 4));
        RegisterDefinition mode = Int("Mode", 0x120, 4);
        mode.allowed = {0, 5};
        map.Add(mode);
        RegisterDefinition key = Int("Key", 0x124, 4);
        key.access = RegisterAccess::WO;
        map.Add(key);
        RegisterDefinition name = Int("Name", 0x200, 16);
        name.kind = RegisterKind::String;
        name.persistent = true;
        map.Add(name);
        RegisterDefinition go = Int("Go", 0x300, 4);
        go.command = true;
        map.Add(go);
        map.SetIntWriter("Go", [this](int64_t) {
            ++commands;
            return GC_ERR_SUCCESS;
        });
        map.SetInt("Width", 64);
    }

    RegisterMap map;
    int64_t liveMax = 1024;
    int commands = 0;
};

TEST_F(RegisterMapTest, WritesAreCheckedAgainstRightsLimitsAndLocks) {
    struct Case {
        uint64_t address;
        uint64_t value;
        size_t size;
        GC_ERROR expected;
    } cases[] = {
        {0x100, 128, 8, GC_ERR_SUCCESS},
        {0x100, 8, 8, GC_ERR_INVALID_VALUE},       // below the constant minimum
        {0x100, 1028, 8, GC_ERR_INVALID_VALUE},    // above the live maximum
        {0x100, 130, 8, GC_ERR_INVALID_VALUE},     // off the increment
        {0x100, 128, 4, GC_ERR_INVALID_PARAMETER}, // wrong width
        {0x108, 2048, 8, GC_ERR_ACCESS_DENIED},    // read-only
        {0x104, 1, 4, GC_ERR_INVALID_ADDRESS},     // inside a register, not at its start
        {0x400, 1, 4, GC_ERR_INVALID_ADDRESS},     // unmapped
        {0x120, 5, 4, GC_ERR_SUCCESS},
        {0x120, 3, 4, GC_ERR_INVALID_VALUE}, // not an enumeration value
        {0x124, 7, 4, GC_ERR_SUCCESS},       // write-only accepts writes
    };
    for (const Case& c : cases)
        EXPECT_EQ(WriteBig(map, c.address, c.value, c.size), c.expected)
            << std::hex << c.address << " <- " << std::dec << c.value;
    EXPECT_EQ(map.GetInt("Width"), 128);

    liveMax = 100;
    EXPECT_EQ(WriteBig(map, 0x100, 104), GC_ERR_INVALID_VALUE);
    map.SetInt("Locked", 1);
    EXPECT_EQ(WriteBig(map, 0x100, 64), GC_ERR_ACCESS_DENIED);
    map.SetInt("Locked", 0);
    EXPECT_EQ(WriteBig(map, 0x100, 64), GC_ERR_SUCCESS);
}

TEST_F(RegisterMapTest, ReadsAreBigEndianLiveAndMaySpanRegisters) {
    uint8_t bytes[16] = {};
    ASSERT_EQ(map.Read(0x100, bytes, 16), GC_ERR_SUCCESS);
    EXPECT_EQ(bytes[7], 64);
    EXPECT_EQ(bytes[8 + 6], 1024 >> 8); // WidthMax, computed on the read
    liveMax = 512;
    ASSERT_EQ(map.Read(0x10E, bytes, 2), GC_ERR_SUCCESS);
    EXPECT_EQ(bytes[0], 512 >> 8);

    EXPECT_EQ(map.Read(0x124, bytes, 4), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(map.Read(0x114, bytes, 8), GC_ERR_INVALID_ADDRESS); // runs into a gap

    const char text[] = "camera";
    EXPECT_EQ(map.Write(0x200, text, sizeof text), GC_ERR_SUCCESS);
    EXPECT_EQ(map.GetString("Name"), "camera");
    EXPECT_EQ(map.Write(0x200, text, 17), GC_ERR_INVALID_PARAMETER); // longer than the register
}

TEST_F(RegisterMapTest, CommandsRunTheirWriterAndReadBackDone) {
    EXPECT_EQ(WriteBig(map, 0x300, 1, 4), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteBig(map, 0x300, 1, 4), GC_ERR_SUCCESS);
    EXPECT_EQ(commands, 2);
    EXPECT_EQ(map.GetInt("Go"), 0);
}

TEST_F(RegisterMapTest, SnapshotsHoldOnlyPersistentRegisters) {
    map.SetString("Name", "first");
    map.SetInt("Mode", 5);
    const auto snapshot = map.SnapshotPersistent();
    EXPECT_EQ(snapshot.size(), 2u);
    map.SetInt("Width", 256);
    map.SetString("Name", "second");
    map.SetInt("Mode", 0);
    map.Restore(snapshot);
    EXPECT_EQ(map.GetInt("Width"), 64);
    EXPECT_EQ(map.GetString("Name"), "first");
    EXPECT_EQ(map.GetInt("Mode"), 0);
}

TEST_F(RegisterMapTest, OverlappingOrDuplicateRegistersAreRefused) {
    EXPECT_THROW(map.Add(Int("Overlap", 0x104)), std::logic_error);
    EXPECT_THROW(map.Add(Int("Before", 0xFC)), std::logic_error);
    EXPECT_THROW(map.Add(Int("Width", 0x800)), std::logic_error);
    EXPECT_NO_THROW(map.Add(Int("Adjacent", 0xF8)));
}

} // namespace
