#pragma once

#include "LibCore/error/zberror.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Tervalon {

// An array of pointers. While managed (the default) it owns its elements:
// clear, remove, destruction and assignment delete them, and a copy copies them.
// set_managed(false) makes a non-owning view, as used for results and selections.
// Bounds errors are reported through the error system, never thrown by the array.
template <class T>
class ZBPtrArray {
public:
    using CompareFn = int (*)(const T&, const T&);
    // From this many elements in the range the sort keeps its sorted tail in
    // blocks, so that an insertion moves one block rather than the whole tail.
    static const int C_BlockSortMin = 1024;

    ZBPtrArray() = default;
    explicit ZBPtrArray(bool managed) : m_managed(managed) {}
    ZBPtrArray(const ZBPtrArray& other) { *this = other; }
    ZBPtrArray(ZBPtrArray&& other) noexcept : m_data(std::move(other.m_data)), m_managed(other.m_managed) { other.m_data.clear(); }
    virtual ~ZBPtrArray() { clear(); }

    ZBPtrArray& operator=(const ZBPtrArray& other)
    {
        if (this == &other)
            return *this;
        clear();
        m_managed = other.m_managed;
        m_data.reserve(other.m_data.size());
        for (T* element : other.m_data)
            m_data.push_back(m_managed && element ? new T(*element) : element);
        return *this;
    }

    ZBPtrArray& operator=(ZBPtrArray&& other) noexcept
    {
        if (this != &other) {
            clear();
            m_data = std::move(other.m_data);
            m_managed = other.m_managed;
            other.m_data.clear();
        }
        return *this;
    }

    bool operator==(const ZBPtrArray& other) const
    {
        if (m_data.size() != other.m_data.size())
            return false;
        for (size_t i = 0; i < m_data.size(); ++i) {
            const T* a = m_data[i];
            const T* b = other.m_data[i];
            if (a == b)
                continue;
            if (!a || !b || !(*a == *b))
                return false;
        }
        return true;
    }
    bool operator!=(const ZBPtrArray& other) const { return !(*this == other); }

    bool is_managed() const { return m_managed; }
    void set_managed(bool managed) { m_managed = managed; }

    int size() const { return int(m_data.size()); }
    bool empty() const { return m_data.empty(); }
    void reserve(int n) { m_data.reserve(size_t(n)); }

    // Element access; an index out of range reports and gives null.
    T* operator[](int index) const { return at(index); }
    T* at(int index) const
    {
        if (iszbwarn(check_bounds(index, 0)))
            return nullptr;
        return m_data[size_t(index)];
    }
    T* first() const { return m_data.empty() ? nullptr : m_data.front(); }
    T* last() const { return m_data.empty() ? nullptr : m_data.back(); }

    virtual void push_back(T* element) { m_data.push_back(element); }
    ZBPtrArray& operator+=(T* element)
    {
        push_back(element);
        return *this;
    }

    // Inserting at size() appends.
    virtual int insert(int index, T* element)
    {
        if (iszbwarn(check_bounds(index, 1)))
            return zbpass(ZBLOC);
        m_data.insert(m_data.begin() + index, element);
        return ZBErrC_ok;
    }

    virtual int remove(int index)
    {
        if (iszbwarn(check_bounds(index, 0)))
            return zbpass(ZBLOC);
        T* element = m_data[size_t(index)];
        m_data.erase(m_data.begin() + index);
        if (m_managed)
            delete element;
        return ZBErrC_ok;
    }

    // Takes an element out without deleting it; the caller owns it.
    virtual T* extract(int index)
    {
        if (iszbwarn(check_bounds(index, 0)))
            return nullptr;
        T* element = m_data[size_t(index)];
        m_data.erase(m_data.begin() + index);
        return element;
    }

    // Puts a new element in place of the old one, deleting the old when managed.
    virtual int replace(int index, T* element)
    {
        if (iszbwarn(check_bounds(index, 0)))
            return zbpass(ZBLOC);
        T* old = m_data[size_t(index)];
        m_data[size_t(index)] = element;
        if (m_managed && old != element)
            delete old;
        return ZBErrC_ok;
    }

    virtual void clear()
    {
        if (m_managed)
            for (T* element : m_data)
                delete element;
        m_data.clear();
    }

    int index_of(const T* element) const
    {
        for (size_t i = 0; i < m_data.size(); ++i)
            if (m_data[i] == element)
                return int(i);
        return -1;
    }

    // Reports ZBErrC_ArrayBounds for an index outside 0 .. size()-1+extra.
    int check_bounds(int index, int extra) const
    {
        if (index < 0 || index >= int(m_data.size()) + extra)
            return zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", index, int(m_data.size()));
        return ZBErrC_ok;
    }

    // The one sort of the system: a binary insertion sort from the back of the
    // range to its front. compare(a, b) is non-zero when a belongs behind b.
    // Each run of elements that compare equal comes out in reverse order; the
    // planner's results depend on that, so it must not be replaced by another sort.
    // Virtual so that an array that keeps something beside each element (an
    // index's keys) moves it with the element, even when sorted through a
    // reference to this base.
    virtual int sort(CompareFn compare, int first = 0, int last = -1)
    {
        bool done = false;
        int result = check_sort(compare, first, last, done);
        if (done)
            return result;
        return sort_range(m_data, first, last, [compare](const T* a, const T* b) { return compare(*a, *b); });
    }

    typename std::vector<T*>::const_iterator begin() const { return m_data.begin(); }
    typename std::vector<T*>::const_iterator end() const { return m_data.end(); }

protected:
    std::vector<T*> m_data;
    bool m_managed = true;

    // The checks that come before any sort; done when there is nothing to sort
    // (or the arguments are wrong, with the result to give). last is made real.
    int check_sort(CompareFn compare, int first, int& last, bool& done) const
    {
        done = true;
        if (m_data.size() < 2)
            return ZBErrC_ok;
        if (first < 0 || first >= int(m_data.size()))
            return zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", first, int(m_data.size()));
        if (!compare)
            return zberror(ZBErrC_NullPointer, ZBLOC, "Null function pointer");
        if (last < 0 || last >= int(m_data.size()))
            last = int(m_data.size()) - 1;
        if (last <= first)
            return ZBErrC_ok;
        done = false;
        return ZBErrC_ok;
    }

    // Sorts v[first..last] (checked already) by the one algorithm; behind(a, b)
    // is non-zero when a belongs behind b. E is an element pointer, or a
    // position for a caller that moves other data along.
    template <class E, class Behind>
    static int sort_range(std::vector<E>& v, int first, int last, Behind behind)
    {
        if (last - first + 1 >= C_BlockSortMin)
            return sort_blocks(v, first, last, behind);
        for (int i = last - 1; i >= first; --i) {
            E e = v[size_t(i)];
            int lo = i + 1;
            int hi = last + 1;
            int mid = lo;
            bool place = false;
            for (;;) {
                mid = (lo + hi) / 2;
                if (behind(v[size_t(mid)], e)) {
                    if (lo >= mid)
                        break;
                    hi = mid;
                } else {
                    if (hi - mid < 2) {
                        place = true;
                        break;
                    }
                    lo = mid;
                }
            }
            if (place) {
                // Shift i+1..mid one place to the front and put e at mid.
                std::move(v.begin() + i + 1, v.begin() + mid + 1, v.begin() + i);
                v[size_t(mid)] = e;
            }
        }
        return ZBErrC_ok;
    }

private:
    // The same search as the plain loop, probe for probe, so that the order of
    // the result is the same for every compare function, even one that is not
    // a consistent ordering. Only the storage of the sorted tail differs: it is
    // held in blocks of about sqrt(n) elements, which turns the quadratic
    // shifting of a long tail into short moves inside one block.
    template <class E, class Behind>
    static int sort_blocks(std::vector<E>& v, int first, int last, Behind behind)
    {
        const size_t n = size_t(last - first + 1);
        const size_t blockMax = 2 * std::max<size_t>(32, size_t(std::sqrt(double(n))));
        std::vector<std::vector<E>> blocks(1);
        std::vector<int> starts(1, 0);
        blocks[0].reserve(blockMax + 1);
        blocks[0].push_back(v[size_t(last)]);
        auto block_of = [&](int j) { return size_t(std::upper_bound(starts.begin(), starts.end(), j) - starts.begin()) - 1; };
        auto element = [&](int j) {
            const size_t b = block_of(j);
            return blocks[b][size_t(j - starts[b])];
        };
        auto insert_at = [&](int j, E e) {
            const size_t b = block_of(j);
            std::vector<E>& block = blocks[b];
            block.insert(block.begin() + (j - starts[b]), e);
            for (size_t k = b + 1; k < starts.size(); ++k)
                ++starts[k];
            if (block.size() > blockMax) {
                const size_t half = block.size() / 2;
                std::vector<E> tail;
                tail.reserve(blockMax + 1);
                tail.assign(block.begin() + long(half), block.end());
                block.resize(half);
                blocks.insert(blocks.begin() + long(b) + 1, std::move(tail));
                starts.insert(starts.begin() + long(b) + 1, starts[b] + int(half));
            }
        };
        // The tail that is sorted so far starts at array position i + 1: array
        // position p is tail index p - i - 1.
        for (int i = last - 1; i >= first; --i) {
            E e = v[size_t(i)];
            int lo = i + 1;
            int hi = last + 1;
            int mid = lo;
            bool place = false;
            for (;;) {
                mid = (lo + hi) / 2;
                if (behind(element(mid - i - 1), e)) {
                    if (lo >= mid)
                        break;
                    hi = mid;
                } else {
                    if (hi - mid < 2) {
                        place = true;
                        break;
                    }
                    lo = mid;
                }
            }
            // Placed, e follows the mid - i elements in front of it; otherwise it stays in front.
            insert_at(place ? mid - i : 0, e);
        }
        size_t out = size_t(first);
        for (const std::vector<E>& block : blocks)
            for (const E& e : block)
                v[out++] = e;
        return ZBErrC_ok;
    }
};

} // namespace Tervalon
