#include "common/xml/find_xml_fault.h"

#include <utility>

#include <gtest/gtest.h>

TEST(FindXmlFault, CountsWhatTheParserNestsAndNothingElse) {
    std::string flat, nested;
    for (int i = 0; i < 3; ++i) {
        flat += "<x z='a > b'>1</x><y z=\"'\"/><!-- <a> --><![CDATA[<a>]]><?b?><!c>";
        nested += "<a x='/>'>\n<!--></a>--><![CDATA[</a>]]><?b?><!c>";
    }
    const std::string too_deep = "Elements are nested more than 2 deep (line ";
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"<a><b>1</b><b/></a>", ""},
        {flat, ""},
        {nested, too_deep + "3)."},
        {"</a></a><a><b><c>", too_deep + "1)."},
        {"<a x='</a>'>", "There is a \"<\" within a tag (line 1)."},
        {"<!DOCTYPE Config [\n<!ELEMENT Config ANY>]>", "A DOCTYPE with a \"<\" in it is not supported (line 2)."},
        {"<!DOCTYPE Config SYSTEM 'c'>", ""},
    };
    for (const auto& [content, fault] : cases) EXPECT_EQ(xml::find_xml_fault(content, 2), fault) << content;
    for (const char* cut_off : {"<", "<a", "<a x='", "<!--", "<![CDATA["})
        EXPECT_EQ(xml::find_xml_fault(cut_off, 2), "");
}
