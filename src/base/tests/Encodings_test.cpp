#include "base/Encodings.h"

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <set>
#include <string>

namespace tavix {
namespace {

TEST(Encodings, EveryOneHasAConverterOfItsOwnAndIsFoundByNameAndCode) {
    std::set<std::string> names;
    std::set<std::string> converters;
    for (const CEncoding& encoding : encodingCatalogue()) {
        UErrorCode status = U_ZERO_ERROR;
        UConverter* converter = ucnv_open(encoding.converter, &status);
        ASSERT_TRUE(U_SUCCESS(status)) << encoding.name;
        EXPECT_TRUE(converters.insert(ucnv_getName(converter, &status)).second) << encoding.name;
        ucnv_close(converter);
        EXPECT_TRUE(names.insert(encoding.name).second);
        EXPECT_EQ(findEncoding(encoding.code), &encoding);
        EXPECT_EQ(findEncoding(encoding.name), &encoding);
        EXPECT_EQ(findEncoding("cp" + std::to_string(encoding.code)), &encoding);
    }
}

TEST(Encodings, NamesThatPeopleUseLeadToTheCodePageTheyMean) {
    const std::pair<const char*, int> cases[] = {
        {"utf8", 65001},
        {"UTF_8", 65001},
        {"latin1", 28591},
        {"Latin-9", 28605},
        {"WINDOWS-1252", 1252},
        {"1252", 1252},
        {"cp1252", 1252},
        {"ansi", 0},
        {"sjis", 932},
        {"utf-16le", 1200},
        {"windows-31j", 932},
        {"ascii", 20127},
        {"cp437", 437},
        {"", 0},
        {"12520", 0},
        {"no such thing", 0},
        {"CP", 0},
        {"big5", 950},
        {"gb18030", 54936},
        {"iso8859-15", 28605},
        {"utf-16", 1200},
    };
    for (const auto& [name, code] : cases) {
        const CEncoding* found = findEncoding(name);
        EXPECT_EQ(found ? found->code : 0, code) << name;
    }
    EXPECT_EQ(findEncoding(std::string(500, 'x')), nullptr);
}

} // namespace
} // namespace tavix
