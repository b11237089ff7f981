#pragma once

#include "LibDate/dateset/zbdatesetentry.h"

#include <vector>

namespace Tervalon {

// The entries of a ZBDateSet in order, held in blocks of a few hundred, so that
// adding or taking out one entry in the middle of a large set shifts only its
// block and the blocks' first indexes, not every entry behind it: the planner
// splits and returns free time all the time. Owns its entries.
class ZBDateSetBlocks {
public:
    ZBDateSetBlocks() = default;
    ZBDateSetBlocks(const ZBDateSetBlocks& other);
    ZBDateSetBlocks& operator=(const ZBDateSetBlocks& other);
    ~ZBDateSetBlocks();
    bool operator==(const ZBDateSetBlocks& other) const;

    int size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    // No bounds check: for callers that keep to 0 .. size()-1. A walk through
    // the entries in either direction costs no search.
    ZBDateSetEntry* at(int index) const
    {
        if (!in_block(m_lastBlock, index))
            m_lastBlock = find_block(index);
        return m_block[size_t(m_lastBlock)][size_t(index - m_first[size_t(m_lastBlock)])];
    }
    ZBDateSetEntry* first() const { return m_size ? m_block.front().front() : nullptr; }
    ZBDateSetEntry* last() const { return m_size ? m_block.back().back() : nullptr; }

    // index may be size() to append.
    void insert(int index, ZBDateSetEntry* entry);
    // Takes the entry out; the caller owns it.
    ZBDateSetEntry* extract(int index);
    void remove(int index) { delete extract(index); }
    void push_back(ZBDateSetEntry* entry) { insert(m_size, entry); }
    // All entries in order, handed to the caller, leaving the array empty.
    std::vector<ZBDateSetEntry*> release();
    // Takes over entries, in the order given, in place of the present ones.
    void assign(const std::vector<ZBDateSetEntry*>& entries);
    void clear();

private:
    bool in_block(int block, int index) const
    {
        return block < int(m_block.size()) && index >= m_first[size_t(block)]
            && index < m_first[size_t(block)] + int(m_block[size_t(block)].size());
    }
    int find_block(int index) const;
    void renumber(int fromBlock);

    std::vector<std::vector<ZBDateSetEntry*>> m_block;
    std::vector<int> m_first; // index of each block's first entry
    int m_size = 0;
    mutable int m_lastBlock = 0;
};

} // namespace Tervalon
