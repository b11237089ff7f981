#pragma once

#include "LibCore/ptrarray/zbptrarray.h"

#include <map>

namespace Tervalon {

// A ZBPtrArray with a map from key to element for lookup. The array keeps the
// order of addition; the map is only an index. With repeats allowed, find()
// gives the element first added under the key.
template <class T, class K>
class ZBPtrArrayIndex : public ZBPtrArray<T> {
    using Base = ZBPtrArray<T>;

public:
    explicit ZBPtrArrayIndex(bool allowRepeats = false) : m_allowRepeats(allowRepeats) {}
    ZBPtrArrayIndex(const ZBPtrArrayIndex& other) : Base(), m_allowRepeats(other.m_allowRepeats) { *this = other; }
    ~ZBPtrArrayIndex() override { clear(); }

    ZBPtrArrayIndex& operator=(const ZBPtrArrayIndex& other)
    {
        if (this == &other)
            return *this;
        clear();
        Base::m_managed = other.m_managed;
        m_allowRepeats = other.m_allowRepeats;
        for (int i = 0; i < other.size(); ++i) {
            T* element = other.m_data[size_t(i)];
            add(other.m_key[size_t(i)], Base::m_managed && element ? new T(*element) : element);
        }
        return *this;
    }

    // Adds under a key. Without repeats, a key already present is refused.
    int add(const K& key, T* element)
    {
        if (!m_allowRepeats && m_map.count(key))
            return zberror(ZBErrC_MapCorrupt, ZBLOC, "Key already present in the index.");
        Base::m_data.push_back(element);
        m_key.push_back(key);
        m_map.emplace(key, element);
        return ZBErrC_ok;
    }

    T* find(const K& key) const
    {
        auto it = m_map.find(key);
        return it == m_map.end() ? nullptr : it->second;
    }

    bool contains(const K& key) const { return m_map.count(key) != 0; }

    // The key of the element at a position.
    const K& tag(int index) const
    {
        static const K none{};
        if (iszbwarn(Base::check_bounds(index, 0)))
            return none;
        return m_key[size_t(index)];
    }

    int remove_value(const K& key)
    {
        int index = position_of(key);
        if (index < 0)
            return ZBErrC_okNotHandled;
        return remove(index);
    }

    T* extract_value(const K& key)
    {
        int index = position_of(key);
        return index < 0 ? nullptr : extract(index);
    }

    int remove(int index) override
    {
        if (iszbwarn(Base::check_bounds(index, 0)))
            return zbpass(ZBLOC);
        T* element = extract(index);
        if (Base::m_managed)
            delete element;
        return ZBErrC_ok;
    }

    // An element without a key would leave the index out of step with the
    // array, so these are refused; add() is the way in.
    void push_back(T*) override
    {
        zberror(ZBErrC_InvalidState, ZBLOC, "An indexed array takes an element only with its key.");
    }
    int insert(int, T*) override
    {
        return zberror(ZBErrC_InvalidState, ZBLOC, "An indexed array takes an element only with its key.");
    }

    T* extract(int index) override
    {
        if (iszbwarn(Base::check_bounds(index, 0)))
            return nullptr;
        T* element = Base::m_data[size_t(index)];
        unmap(m_key[size_t(index)], element);
        Base::m_data.erase(Base::m_data.begin() + index);
        m_key.erase(m_key.begin() + index);
        return element;
    }

    // Keeps the position and the key; the map now points at the new element.
    int replace(int index, T* element) override
    {
        if (iszbwarn(Base::check_bounds(index, 0)))
            return zbpass(ZBLOC);
        T* old = Base::m_data[size_t(index)];
        const K& key = m_key[size_t(index)];
        auto range = m_map.equal_range(key);
        for (auto it = range.first; it != range.second; ++it)
            if (it->second == old)
                it->second = element;
        Base::m_data[size_t(index)] = element;
        if (Base::m_managed && old != element)
            delete old;
        return ZBErrC_ok;
    }

    // Moves an element to another key, keeping its position.
    int rekey(int index, const K& key)
    {
        if (iszbwarn(Base::check_bounds(index, 0)))
            return zbpass(ZBLOC);
        T* element = Base::m_data[size_t(index)];
        unmap(m_key[size_t(index)], element);
        m_key[size_t(index)] = key;
        m_map.emplace(key, element);
        return ZBErrC_ok;
    }

    void clear() override
    {
        Base::clear();
        m_key.clear();
        m_map.clear();
    }

    int position_of(const K& key) const
    {
        T* element = find(key);
        if (!element)
            return -1;
        for (size_t i = 0; i < m_key.size(); ++i)
            if (Base::m_data[i] == element && m_key[i] == key)
                return int(i);
        return -1;
    }

    // Sorting moves each key with its element (the map points at elements, so
    // it stays right). Positions are sorted rather than pointers, so that an
    // element held twice under two keys keeps both.
    int sort(typename Base::CompareFn compare, int first = 0, int last = -1) override
    {
        bool done = false;
        int result = Base::check_sort(compare, first, last, done);
        if (done)
            return result;
        std::vector<size_t> order(Base::m_data.size());
        for (size_t i = 0; i < order.size(); ++i)
            order[i] = i;
        const std::vector<T*>& data = Base::m_data;
        result = Base::sort_range(order, first, last,
                                  [compare, &data](size_t a, size_t b) { return compare(*data[a], *data[b]); });
        std::vector<T*> elements(data.size());
        std::vector<K> keys(m_key.size());
        for (size_t i = 0; i < order.size(); ++i) {
            elements[i] = data[order[i]];
            keys[i] = std::move(m_key[order[i]]);
        }
        Base::m_data.swap(elements);
        m_key.swap(keys);
        return result;
    }

private:
    void unmap(const K& key, T* element)
    {
        auto range = m_map.equal_range(key);
        for (auto it = range.first; it != range.second; ++it)
            if (it->second == element) {
                m_map.erase(it);
                return;
            }
    }

    std::vector<K> m_key;
    std::multimap<K, T*> m_map;
    bool m_allowRepeats;
};

} // namespace Tervalon
