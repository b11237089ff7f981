#include "LibCore/ptrarray/zbptrarray.h"
#include "LibCore/ptrarray/zbptrarrayindex.h"
#include "LibCore/error/zberror.h"

#include <gtest/gtest.h>

#include <string>

using namespace Tervalon;

namespace {

int g_alive = 0;

struct Counted {
    explicit Counted(int v = 0) : value(v) { ++g_alive; }
    Counted(const Counted& o) : value(o.value) { ++g_alive; }
    ~Counted() { --g_alive; }
    bool operator==(const Counted& o) const { return value == o.value; }
    int value;
};

class PtrArrayOwnership : public ::testing::Test {
protected:
    void SetUp() override
    {
        g_alive = 0;
        get_zberror().clear_all();
    }
    void TearDown() override { get_zberror().clear_all(); }
    std::string last_error() const
    {
        const ZBErrDetails* top = get_zberror().top();
        return top ? top->get_details(ZBErrAsp_System) : std::string();
    }
};

TEST_F(PtrArrayOwnership, AViewDeletesNothingAndAManagedArrayEverything)
{
    Counted a(1), b(2);
    {
        ZBPtrArray<Counted> view(false);
        view.push_back(&a);
        view += &b;
        view.remove(0);
        view.clear();
    }
    EXPECT_EQ(g_alive, 2);
    {
        ZBPtrArray<Counted> owner;
        owner.push_back(new Counted(3));
        owner.push_back(new Counted(4));
        ZBPtrArray<Counted> copy(owner);
        EXPECT_EQ(g_alive, 6);
        EXPECT_TRUE(copy == owner);
        EXPECT_NE(copy[0], owner[0]);
        Counted* taken = owner.extract(0);
        EXPECT_EQ(g_alive, 6);
        delete taken;
        owner.replace(0, new Counted(5));
        EXPECT_EQ(g_alive, 5);
    }
    EXPECT_EQ(g_alive, 2);
}

TEST_F(PtrArrayOwnership, OutOfRangeIsReportedAndLeavesTheArrayAlone)
{
    ZBPtrArray<Counted> array;
    array.push_back(new Counted(1));
    EXPECT_TRUE(iszberr(array.check_bounds(-1, 0)));
    EXPECT_EQ(last_error(), "Element -1 out of bounds (1 items)");
    EXPECT_EQ(array.at(1), nullptr);
    EXPECT_TRUE(iszberr(array.remove(3)));
    EXPECT_TRUE(iszberr(array.insert(2, nullptr)));
    EXPECT_FALSE(iszbwarn(array.insert(1, new Counted(2))));
    EXPECT_EQ(array.size(), 2);
    EXPECT_TRUE(iszberr(array.sort(nullptr)));
    EXPECT_EQ(last_error(), "Null function pointer");
}

TEST_F(PtrArrayOwnership, IndexReplaceKeepsOrderAndRewritesTheKey)
{
    ZBPtrArrayIndex<Counted, std::string> index;
    index.add("a", new Counted(1));
    index.add("b", new Counted(2));
    index.add("c", new Counted(3));
    Counted* fresh = new Counted(20);
    ASSERT_FALSE(iszbwarn(index.replace(1, fresh)));
    EXPECT_EQ(index.find("b"), fresh);
    EXPECT_EQ(index.tag(1), "b");
    EXPECT_EQ(index[2]->value, 3);
    EXPECT_EQ(g_alive, 3);

    ASSERT_FALSE(iszbwarn(index.remove(0)));
    EXPECT_EQ(index.find("a"), nullptr);
    EXPECT_EQ(index.tag(0), "b");
    Counted* c = index.extract_value("c");
    EXPECT_EQ(c->value, 3);
    delete c;
    EXPECT_EQ(index.size(), 1);
    Counted* duplicate = new Counted(9);
    EXPECT_TRUE(iszberr(index.add("b", duplicate)));
    delete duplicate;
    EXPECT_EQ(index.size(), 1);
}

TEST_F(PtrArrayOwnership, IndexRefusesElementsWithoutAKey)
{
    ZBPtrArrayIndex<Counted, int> index;
    Counted loose(1);
    index.push_back(&loose);
    EXPECT_EQ(index.size(), 0);
    EXPECT_TRUE(iszberr(index.insert(0, &loose)));
    EXPECT_EQ(index.size(), 0);
    EXPECT_TRUE(iszberr(index.remove(0)));
}

TEST_F(PtrArrayOwnership, IndexWithRepeatsFindsTheFirstAndSortsKeysWithElements)
{
    ZBPtrArrayIndex<Counted, int> index(true);
    index.add(5, new Counted(50));
    index.add(1, new Counted(10));
    index.add(5, new Counted(51));
    EXPECT_EQ(index.find(5)->value, 50);
    index.sort([](const Counted& a, const Counted& b) { return a.value > b.value ? 1 : 0; });
    EXPECT_EQ(index.tag(0), 1);
    EXPECT_EQ(index.tag(1), 5);
    EXPECT_EQ(index[1]->value, 50);
    index.remove_value(5);
    EXPECT_EQ(index.find(5)->value, 51);
}

} // namespace
