#include "LibDate/dateset/zbdatesetblocks.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace Tervalon;

// Inserts and removals at random places, through many block splits and
// emptied blocks, against a plain vector; walks both ways after each round.
TEST(DateSetBlocks, AgreesWithAVector)
{
    std::mt19937 random(3);
    ZBDateSetBlocks blocks;
    std::vector<ZBDateSetEntry*> model;
    int next = 0;
    auto check = [&]() {
        ASSERT_EQ(int(model.size()), blocks.size());
        for (int i = 0; i < blocks.size(); ++i)
            ASSERT_EQ(model[size_t(i)], blocks.at(i)) << i;
        for (int i = blocks.size() - 1; i >= 0; i -= 7)
            ASSERT_EQ(model[size_t(i)], blocks.at(i)) << i;
        EXPECT_EQ(model.empty() ? nullptr : model.front(), blocks.first());
        EXPECT_EQ(model.empty() ? nullptr : model.back(), blocks.last());
    };
    for (int round = 0; round < 12; ++round) {
        // Grow in the first rounds, shrink in the last ones.
        const bool grow = round < 8;
        for (int step = 0; step < 700; ++step) {
            const int n = int(model.size());
            if (grow || n == 0 || std::uniform_int_distribution<int>(0, 3)(random) == 0) {
                int at = std::uniform_int_distribution<int>(0, n)(random);
                auto* entry = new ZBDateSetEntry(ZBDateSlot(), next++);
                blocks.insert(at, entry);
                model.insert(model.begin() + at, entry);
            } else {
                int at = std::uniform_int_distribution<int>(0, n - 1)(random);
                EXPECT_EQ(model[size_t(at)], blocks.extract(at));
                delete model[size_t(at)];
                model.erase(model.begin() + at);
            }
        }
        check();
    }
    ZBDateSetBlocks copy(blocks);
    EXPECT_TRUE(copy == blocks);
    EXPECT_NE(blocks.at(0), copy.at(0));
    std::vector<ZBDateSetEntry*> all = blocks.release();
    EXPECT_EQ(model, all);
    EXPECT_TRUE(blocks.empty());
    blocks.assign(all);
    check();
    EXPECT_EQ(nullptr, blocks.extract(blocks.size()));
    // Emptying from the middle drops whole blocks.
    while (!model.empty()) {
        size_t at = model.size() / 2;
        ASSERT_EQ(model[at], blocks.extract(int(at)));
        delete model[at];
        model.erase(model.begin() + long(at));
        if (model.size() % 500 == 0)
            check();
    }
    check();
}
