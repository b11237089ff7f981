#include "LibDate/dateset/zbdatesetblocks.h"

#include <algorithm>

namespace Tervalon {

namespace {

// A block is split when it passes twice this, and filled to this when the
// whole array is laid out anew.
const int C_BlockSize = 256;

} // namespace

ZBDateSetBlocks::ZBDateSetBlocks(const ZBDateSetBlocks& other)
{
    *this = other;
}

ZBDateSetBlocks& ZBDateSetBlocks::operator=(const ZBDateSetBlocks& other)
{
    if (this == &other)
        return *this;
    std::vector<ZBDateSetEntry*> copies;
    copies.reserve(size_t(other.m_size));
    for (const auto& block : other.m_block)
        for (const ZBDateSetEntry* entry : block)
            copies.push_back(new ZBDateSetEntry(*entry));
    assign(copies);
    return *this;
}

ZBDateSetBlocks::~ZBDateSetBlocks()
{
    clear();
}

bool ZBDateSetBlocks::operator==(const ZBDateSetBlocks& other) const
{
    if (m_size != other.m_size)
        return false;
    for (int i = 0; i < m_size; ++i)
        if (!(*at(i) == *other.at(i)))
            return false;
    return true;
}

int ZBDateSetBlocks::find_block(int index) const
{
    // A walk steps into the next or the previous block.
    if (in_block(m_lastBlock + 1, index))
        return m_lastBlock + 1;
    if (m_lastBlock > 0 && in_block(m_lastBlock - 1, index))
        return m_lastBlock - 1;
    auto it = std::upper_bound(m_first.begin(), m_first.end(), index);
    return int(it - m_first.begin()) - 1;
}

void ZBDateSetBlocks::renumber(int fromBlock)
{
    for (size_t b = size_t(std::max(fromBlock, 0)); b < m_block.size(); ++b)
        m_first[b] = b == 0 ? 0 : m_first[b - 1] + int(m_block[b - 1].size());
}

void ZBDateSetBlocks::insert(int index, ZBDateSetEntry* entry)
{
    if (m_block.empty()) {
        m_block.emplace_back();
        m_first.push_back(0);
    }
    int block;
    if (index >= m_size) {
        block = int(m_block.size()) - 1;
    } else {
        at(index);
        block = m_lastBlock;
    }
    auto& items = m_block[size_t(block)];
    items.insert(items.begin() + (index - m_first[size_t(block)]), entry);
    ++m_size;
    if (int(items.size()) > 2 * C_BlockSize) {
        std::vector<ZBDateSetEntry*> back(items.begin() + C_BlockSize, items.end());
        items.resize(size_t(C_BlockSize));
        m_block.insert(m_block.begin() + block + 1, std::move(back));
        m_first.insert(m_first.begin() + block + 1, 0);
    }
    renumber(block + 1);
    m_lastBlock = block;
}

ZBDateSetEntry* ZBDateSetBlocks::extract(int index)
{
    if (index < 0 || index >= m_size)
        return nullptr;
    at(index);
    const int block = m_lastBlock;
    auto& items = m_block[size_t(block)];
    auto it = items.begin() + (index - m_first[size_t(block)]);
    ZBDateSetEntry* entry = *it;
    items.erase(it);
    --m_size;
    if (items.empty()) {
        m_block.erase(m_block.begin() + block);
        m_first.erase(m_first.begin() + block);
        m_lastBlock = 0;
        renumber(block);
    } else {
        renumber(block + 1);
    }
    return entry;
}

std::vector<ZBDateSetEntry*> ZBDateSetBlocks::release()
{
    std::vector<ZBDateSetEntry*> out;
    out.reserve(size_t(m_size));
    for (const auto& block : m_block)
        out.insert(out.end(), block.begin(), block.end());
    m_block.clear();
    m_first.clear();
    m_size = 0;
    m_lastBlock = 0;
    return out;
}

void ZBDateSetBlocks::assign(const std::vector<ZBDateSetEntry*>& entries)
{
    clear();
    for (size_t i = 0; i < entries.size(); i += size_t(C_BlockSize)) {
        size_t end = std::min(entries.size(), i + size_t(C_BlockSize));
        m_first.push_back(int(i));
        m_block.emplace_back(entries.begin() + long(i), entries.begin() + long(end));
    }
    m_size = int(entries.size());
}

void ZBDateSetBlocks::clear()
{
    for (const auto& block : m_block)
        for (ZBDateSetEntry* entry : block)
            delete entry;
    m_block.clear();
    m_first.clear();
    m_size = 0;
    m_lastBlock = 0;
}

} // namespace Tervalon
