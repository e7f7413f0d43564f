#include <Base/GCString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <sstream>
#include <unordered_set>

using GenICam::gcstring;

TEST(Gcstring, ConstructsFromCStringsStdStringsAndNull) {
    EXPECT_STREQ(gcstring("Width").c_str(), "Width");
    EXPECT_STREQ(gcstring(std::string("Height")).c_str(), "Height");
    EXPECT_STREQ(gcstring("OffsetX", 6).c_str(), "Offset");
    EXPECT_STREQ(gcstring(3, 'x').c_str(), "xxx");
    // A null C string is an empty value, never a crash.
    const char* none = nullptr;
    EXPECT_TRUE(gcstring(none).empty());
    EXPECT_TRUE(gcstring(none, 5).empty());
    // Embedded zero bytes are kept in the length.
    EXPECT_EQ(gcstring("a\0b", 3).size(), 3u);
}

TEST(Gcstring, ConvertsImplicitlyToConstCharPointer) {
    gcstring name("ExposureTime");
    const char* raw = name;
    EXPECT_EQ(std::strcmp(raw, "ExposureTime"), 0);
    EXPECT_EQ(std::strlen(name), 12u);
    EXPECT_EQ(name.size(), name.length());
    EXPECT_EQ(name[0], 'E');
    EXPECT_EQ(name.str(), "ExposureTime");
}

TEST(Gcstring, ComparesWithGcstringsCStringsAndStdStrings) {
    gcstring a("Gain");
    EXPECT_TRUE(a == "Gain");
    EXPECT_TRUE("Gain" == a);
    EXPECT_TRUE(a == gcstring("Gain"));
    EXPECT_TRUE(a == std::string("Gain"));
    EXPECT_TRUE(std::string("Gain") == a);
    EXPECT_TRUE(a != "Gamma");
    EXPECT_TRUE("Gamma" != a);
    EXPECT_FALSE(a == "Gai");
    EXPECT_FALSE(a == "GainAuto");
    // Content, not pointer identity, decides.
    char buffer[] = "Gain";
    EXPECT_TRUE(a == static_cast<const char*>(buffer));
    EXPECT_TRUE(gcstring("A") < gcstring("B"));
    EXPECT_TRUE(gcstring("B") > "A");
    EXPECT_TRUE("A" < gcstring("B"));
    EXPECT_TRUE(gcstring("A") <= gcstring("A"));
    EXPECT_TRUE(gcstring("B") >= gcstring("A"));
    EXPECT_LT(gcstring("abc").compare("abd"), 0);
}

TEST(Gcstring, ConcatenatesInEveryOperandOrder) {
    gcstring base("Chunk");
    EXPECT_EQ(base + "Width", "ChunkWidth");
    EXPECT_EQ("Event" + gcstring("Test"), "EventTest");
    EXPECT_EQ(base + gcstring("Enable"), "ChunkEnable");
    EXPECT_EQ(base + 'X', "ChunkX");
    gcstring grown("A");
    grown += "B";
    grown += gcstring("C");
    grown += 'D';
    grown.append(2, 'E');
    EXPECT_EQ(grown, "ABCDEE");
    EXPECT_EQ(base, "Chunk"); // operands are left alone
}

TEST(Gcstring, FindsAndSlicesLikeStdString) {
    gcstring url("Local:camera.zip;10000;3fa2");
    EXPECT_EQ(url.find(':'), 5u);
    EXPECT_EQ(url.find(";"), 16u);
    EXPECT_EQ(url.find(gcstring(";"), 17), 22u);
    EXPECT_EQ(url.find("missing"), gcstring::npos);
    EXPECT_EQ(url.rfind(';'), 22u);
    EXPECT_EQ(url.find_first_of(";:"), 5u);
    EXPECT_EQ(url.find_last_of(";:"), 22u);
    EXPECT_EQ(url.substr(6, 10), "camera.zip");
    EXPECT_EQ(url.substr(23), "3fa2");
    EXPECT_THROW(url.substr(100), std::out_of_range);
}

TEST(Gcstring, StreamsInAndOut) {
    std::ostringstream out;
    out << gcstring("Mono8") << ' ' << gcstring();
    EXPECT_EQ(out.str(), "Mono8 ");
    std::istringstream in("Mono12 Bayer");
    gcstring first, second;
    in >> first >> second;
    EXPECT_EQ(first, "Mono12");
    EXPECT_EQ(second, "Bayer");
}

TEST(Gcstring, WorksAsContainerKey) {
    std::map<gcstring, int> ordered{{"b", 2}, {"a", 1}};
    EXPECT_EQ(ordered.begin()->first, "a");
    std::unordered_set<gcstring> names{"Width", "Height"};
    EXPECT_EQ(names.count("Width"), 1u);
    EXPECT_EQ(names.count("Depth"), 0u);
}
