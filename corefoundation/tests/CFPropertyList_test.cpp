#include "CoreFoundation/CFPropertyList.h"

#include <gmock/gmock.h>

#include <cmath>

#include "Records.h"

namespace {

using testing::HasSubstr;

struct Outcome {
    CFRef<CFTypeRef> list;
    std::string error;
};

CFRef<CFDataRef> Data(const std::string& bytes) {
    return AdoptCF(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                static_cast<CFIndex>(bytes.size())));
}

Outcome ReadDocument(const std::string& xml) {
    CFStringRef error = nullptr;
    auto list =
        AdoptCF(CFPropertyListCreateFromXMLData(nullptr, Data(xml).get(), kCFPropertyListImmutable, &error));
    return {std::move(list), cf::ToUtf8(AdoptCF(error).get())};
}

Outcome ReadValue(const std::string& value) {
    return ReadDocument("<plist version=\"1.0\">\n" + value + "\n</plist>");
}

std::string Write(CFTypeRef list) {
    const auto data = AdoptCF(CFPropertyListCreateXMLData(nullptr, list));
    if (!data)
        return "";
    return {CFDataGetBytePtr(data.get()), CFDataGetBytePtr(data.get()) + CFDataGetLength(data.get())};
}

std::string Repeated(size_t count, const std::string& text) {
    std::string result;
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

TEST(CFPropertyList, WhatIsWrittenReadsBackEqual) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    const auto dictionary =
        Record("text", "a < b && \"c\" > 'd'\r\n\t\u4E2D\U0001F600 ]]>", "", "", "bytes", Data(bytes), "yes",
               true, "no", false, "array", List(INT64_MIN, 0.1, -INFINITY, Record()));
    const std::string xml = Write(dictionary.get());
    const auto [copy, error] = ReadDocument(xml);
    ASSERT_TRUE(copy) << error;
    EXPECT_TRUE(CFEqual(copy.get(), dictionary.get()));
    EXPECT_EQ(Write(copy.get()), xml);
}

TEST(CFPropertyList, WritesTheUsualForm) {
    EXPECT_EQ(Write(Record("A&B", List(5, Data("ab"))).get()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n"
              "<dict>\n\t<key>A&amp;B</key>\n\t<array>\n\t\t<integer>5</integer>\n"
              "\t\t<data>\n\t\tYWI=\n\t\t</data>\n\t</array>\n</dict>\n</plist>\n");
}

TEST(CFPropertyList, ReadsWhatOtherProgramsWrite) {
    EXPECT_EQ(cf::ToInt64(ReadValue("<integer> -0x1F </integer>").list.get()), -31);
    EXPECT_EQ(cf::ToInt64(ReadValue("<integer>+7</integer>").list.get()), 7);
    EXPECT_EQ(cf::ToDouble(ReadValue("<real>+1.5e3</real>").list.get()), 1500);
    EXPECT_TRUE(std::isnan(*cf::ToDouble(ReadValue("<real>nan</real>").list.get())));
    const auto text = ReadValue("<!-- c --><string>a<![CDATA[<b>]]>&#x4E2D;<!-- c -->&lt;</string><?pi?>");
    EXPECT_EQ(cf::ToUtf8(cf::As<CFStringRef>(text.list.get())), "a<b>\u4E2D<") << text.error;
    const auto data = ReadValue("<data>\n\t\tQU JD\n\tRA==\n</data>");
    EXPECT_EQ(cf::ToUtf8(AdoptCF(CFCopyDescription(data.list.get())).get()), "<41424344>");

    const std::string utf16(
        "\xFF\xFE<\0p\0l\0i\0s\0t\0>\0<\0s\0t\0r\0i\0n\0g\0/\0>\0<\0/\0p\0l\0i\0s\0t\0>\0", 50);
    EXPECT_TRUE(ReadDocument(utf16).list) << ReadDocument(utf16).error;
}

TEST(CFPropertyList, LargeDocumentsArriveWhole) {
    const std::string text(11U << 20, 'x');  // more than the XML parser takes in one piece
    const auto [list, error] = ReadValue("<array><string>" + text + "</string>" +
                                         Repeated(50000, "<string>name</string>\n") + "</array>");
    ASSERT_TRUE(list) << error;
    EXPECT_EQ(cf::Count(cf::As<CFArrayRef>(list.get())), 50001);
    EXPECT_EQ(cf::ToUtf8(cf::Get<CFStringRef>(cf::As<CFArrayRef>(list.get()), 0)), text);
    EXPECT_THAT(ReadDocument(std::string((64U << 20) + 1, ' ')).error, HasSubstr("larger than 64 MiB"));
}

TEST(CFPropertyList, ErrorsNameTheLineAndTheFault) {
    const std::pair<const char*, const char*> cases[] = {
        {"<dict><string/></dict>", "<string> has no <key> before it"},
        {"<dict><key>a</key></dict>", "\"a\" has no value"},
        {"<dict><key>a</key><key>b</key></dict>", "<key> stands where a value must be"},
        {"<array>loose</array>", "<array> cannot hold text"},
        {"<string><true/></string>", "<true> cannot stand inside <string>"},
        {"<font/>", "<font> is not an element of a property list"},
        {"<true/><true/>", "more than one value"},
        {"<date>2020-01-01T00:00:00Z</date>", "<date> is not supported"},
        {"<integer>9223372036854775808</integer>", "not an integer of 64 bits"},
        {"<integer/>", "not an integer of 64 bits"},
        {"<real>1,5</real>", "not a real number"},
        {"<string></array>", "mismatch"},
        {"<data>QUJ</data>", "valid base64"},
        {"<data>Q===</data>", "valid base64"},
        {"<data>QUJDRA</data>", "valid base64"}};
    for (const auto& [value, fault] : cases) {
        const auto [list, error] = ReadValue(value);
        EXPECT_FALSE(list) << value;
        EXPECT_THAT(error, testing::AllOf(testing::StartsWith("line 2: "), HasSubstr(fault))) << value;
    }
}

TEST(CFPropertyList, DocumentsThatAreNoPropertyListsAreRefused) {
    EXPECT_FALSE(ReadDocument("").list);
    EXPECT_FALSE(ReadDocument("<plist>").list);
    EXPECT_FALSE(ReadDocument("<plist><true/></plist>trailing").list);
    EXPECT_THAT(ReadDocument("<plist/>").error, HasSubstr("holds no value"));
    EXPECT_THAT(ReadDocument("<dict/>").error, HasSubstr("outermost"));
    EXPECT_THAT(ReadValue("<plist><true/></plist>").error, HasSubstr("outermost"));
    EXPECT_THAT(ReadDocument("bplist00\xD0").error, HasSubstr("binary"));
    const auto good = ReadValue("<true/>");
    EXPECT_EQ(good.list.get(), kCFBooleanTrue);
    EXPECT_EQ(good.error, "");
}

TEST(CFPropertyList, EntitiesAreNeitherExpandedNorFetched) {
    std::string laughs = "<!DOCTYPE plist [<!ENTITY a \"ha\">";
    for (char name = 'b'; name < 'm'; ++name) {
        const std::string inner = std::string("&") + static_cast<char>(name - 1) + ";";
        laughs += std::string("<!ENTITY ") + name + " \"" + Repeated(10, inner) + "\">";
    }
    laughs += "]><plist><string>&l;</string></plist>";
    EXPECT_THAT(ReadDocument(laughs).error, HasSubstr("entities"));

    const std::string url = "\"file:///etc/passwd\"";
    for (const std::string& xml :
         {"<!DOCTYPE plist [<!ENTITY e SYSTEM " + url + ">]><plist><string>&e;</string></plist>",
          "<!DOCTYPE plist [<!ENTITY % p SYSTEM " + url + "> %p;]><plist><string>&e;</string></plist>",
          "<!DOCTYPE plist SYSTEM " + url + "><plist><string>&e;</string></plist>",
          std::string("<plist><string>&e;</string></plist>")})
        EXPECT_FALSE(ReadDocument(xml).list) << xml;
}

TEST(CFPropertyList, NestingIsLimitedAlikeInBothDirections) {
    const auto nested = [](size_t depth) { return Repeated(depth, "<array>") + Repeated(depth, "</array>"); };
    const auto deepest = ReadValue(nested(128));
    ASSERT_TRUE(deepest.list) << deepest.error;
    EXPECT_NE(Write(deepest.list.get()), "");
    EXPECT_EQ(Write(List(deepest.list).get()), "");
    EXPECT_THAT(ReadValue(nested(129)).error, HasSubstr("nested too deeply"));
    EXPECT_FALSE(ReadValue(nested(1000000)).list);
}

TEST(CFPropertyList, OtherObjectsAndCharactersAreNotWritten) {
    EXPECT_EQ(Write(kCFNull), "");
    EXPECT_EQ(Write(AdoptCF(CFUUIDCreate(nullptr)).get()), "");
    EXPECT_EQ(Write(cf::String("bell \a").get()), "");
    EXPECT_EQ(Write(cf::String("\uFFFE").get()), "");
    const auto dictionary = cf::MutableDictionary();
    CFDictionarySetValue(dictionary.get(), cf::Number(1).get(), kCFBooleanTrue);
    EXPECT_EQ(Write(dictionary.get()), "");
}

}  // namespace
