#include "LibCore/ptrarray/zbptrarrayindex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace Tervalon;

namespace {

int by_length(const std::string& a, const std::string& b)
{
    return a.size() > b.size();
}

// Fills an index whose key of each element is the element's own text, in an
// order the sort has to change, with a run of equal lengths in it.
void fill(ZBPtrArrayIndex<std::string, std::string>& index)
{
    for (const char* text : {"ccc", "a", "dddd", "bb", "xx", "eeeee", "y"})
        index.add(text, new std::string(text));
}

// Every position's key must still be its element's, and every key must find it.
void expect_in_step(const ZBPtrArrayIndex<std::string, std::string>& index)
{
    for (int i = 0; i < index.size(); ++i) {
        EXPECT_EQ(index.tag(i), *index[i]) << "position " << i;
        EXPECT_EQ(index.find(*index[i]), index[i]) << "position " << i;
        EXPECT_EQ(index.position_of(*index[i]), i) << "position " << i;
    }
}

std::vector<std::string> texts(const ZBPtrArray<std::string>& array)
{
    std::vector<std::string> out;
    for (const std::string* text : array)
        out.push_back(*text);
    return out;
}

} // namespace

TEST(PtrArrayIndexSort, KeysMoveWithTheirElementsThroughTheBaseAsWell)
{
    ZBPtrArrayIndex<std::string, std::string> direct;
    fill(direct);
    ASSERT_EQ(direct.sort(by_length), ZBErrC_ok);
    expect_in_step(direct);

    // Code that holds any array sorts it through the base class.
    ZBPtrArrayIndex<std::string, std::string> viaBase;
    fill(viaBase);
    ZBPtrArray<std::string>& base = viaBase;
    ASSERT_EQ(base.sort(by_length), ZBErrC_ok);
    expect_in_step(viaBase);
    // The same order either way: equal lengths come out turned round.
    EXPECT_EQ(texts(viaBase), texts(direct));
    EXPECT_EQ(texts(direct), (std::vector<std::string>{"y", "a", "xx", "bb", "ccc", "dddd", "eeeee"}));

}

TEST(PtrArrayIndexSort, OneElementUnderTwoKeysKeepsBoth)
{
    ZBPtrArrayIndex<std::string, std::string> index(true);
    index.set_managed(false);
    std::string shared = "zz";
    std::string shorter = "q";
    index.add("first", &shared);
    index.add("other", &shorter);
    index.add("second", &shared);
    ASSERT_EQ(index.sort(by_length), ZBErrC_ok);
    EXPECT_EQ(index.tag(0), "other");
    std::vector<std::string> keys{index.tag(1), index.tag(2)};
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(keys, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(index.find("first"), &shared);
    EXPECT_EQ(index.find("second"), &shared);
}
