#include "backends/linux/files/IniDocument.h"

#include <gtest/gtest.h>

namespace nocta {
namespace {

TEST(IniDocument, ReadsTypedValuesOfTheGeneralSection) {
    const auto document = IniDocument::parse("[General]\n"
                                             "a=true\n"
                                             " b = -12 \r\n"
                                             "c=0.5\n"
                                             "d=1e3\n"
                                             "e=eye\n"
                                             "f=\"12\"\n"
                                             "g=\n"
                                             "h=nan\n"
                                             "i=1e999\n"
                                             "j=99999999999999999999\n");
    EXPECT_TRUE(document.isWellFormed());
    EXPECT_EQ(document.values(), (DefaultsMap{{"a", true},
                                              {"b", std::int64_t{-12}},
                                              {"c", 0.5},
                                              {"d", 1000.0},
                                              {"e", "eye"},
                                              {"f", "12"},
                                              {"g", ""},
                                              {"h", "nan"},
                                              {"i", "1e999"},
                                              {"j", 1e20}}));
}

TEST(IniDocument, OnlyKeysInGeneralOrBeforeAnySectionAreRead) {
    const auto document = IniDocument::parse("a=1\n[Other]\na=2\nb=3\n[General]\nc=4\n");
    EXPECT_EQ(document.values(), (DefaultsMap{{"a", std::int64_t{1}}, {"c", std::int64_t{4}}}));
}

TEST(IniDocument, WritingKeepsTheRestOfTheDocument) {
    auto document = IniDocument::parse("; mine\n[General]\na=1\n# note\nb=2\n\n[Other]\na=7\n");
    document.set("b", 0.25);
    document.set("c", true);
    document.remove("a");
    EXPECT_EQ(document.text(), "; mine\n[General]\n# note\nb=0.25\n\nc=true\n[Other]\na=7\n");
}

TEST(IniDocument, EmptyDocumentGetsItsSection) {
    IniDocument document;
    document.set("a", std::int64_t{1});
    EXPECT_EQ(document.text(), "[General]\na=1\n");
    auto other = IniDocument::parse("[Other]\nx=1\n");
    other.set("a", std::int64_t{1});
    EXPECT_EQ(other.text(), "[General]\na=1\n[Other]\nx=1\n");
}

TEST(IniDocument, LastValueOfADuplicateKeyWinsAndIsWrittenOnce) {
    auto document = IniDocument::parse("[General]\na=1\nb=0\na=2\n");
    EXPECT_EQ(document.values().at("a"), DefaultsValue(std::int64_t{2}));
    document.set("a", std::int64_t{3});
    EXPECT_EQ(document.text(), "[General]\na=3\nb=0\n");
}

TEST(IniDocument, InvalidLinesAreReportedAndTheRestIsRead) {
    for (const auto& text : {std::string("[General]\na=1\nbreakTim"), std::string("a=1\n=5\n"),
                             std::string("a=1\n\x01\x02=3\n"), std::string("a=1\nb=\0\n", 8),
                             std::string("a=1\n[General\n")}) {
        const auto document = IniDocument::parse(text);
        EXPECT_FALSE(document.isWellFormed()) << text;
        EXPECT_EQ(document.values(), (DefaultsMap{{"a", std::int64_t{1}}})) << text;
        EXPECT_TRUE(IniDocument::parse(document.text()).isWellFormed());
    }
}

} // namespace
} // namespace nocta
