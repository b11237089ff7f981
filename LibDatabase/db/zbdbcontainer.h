#pragma once

#include "LibDatabase/db/zbdbcontainerbase.h"
#include "LibDatabase/db/zbdbobject.h"
#include "LibCore/error/zberror.h"

#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervalon {

// A typed, non-owning view of an object's children under one tag, in the order
// they were added, with an index by id. The index is a sorted vector built on
// the first look-up after a change, so that refilling a container (done for
// every object at each resolve) costs no allocation per object. The database owns the objects; a container
// is emptied and refilled by resolve_containers, so pointers taken from it are
// good only until the next change of the tree.
template <class T>
class ZBDBContainer : public ZBDBContainerBase {
public:
    explicit ZBDBContainer(const std::string& tag) : ZBDBContainerBase(tag) {}

    int add_object(ZBDBObject* object) override
    {
        T* typed = nullptr;
        if constexpr (std::is_same<T, ZBDBObject>::value)
            typed = object;
        else
            typed = dynamic_cast<T*>(object);
        if (!typed)
            return zberror(ZBErrC_DynamicCast, ZBLOC, "Could not cast object ID %d to ZBDBObject.", object ? object->get_id() : -1);
        m_object.push_back(typed);
        m_indexed = false;
        return ZBErrC_ok;
    }
    void clear() override
    {
        m_object.clear();
        m_byId.clear();
        m_indexed = false;
    }
    ZBDBObject* find_member_tag(const std::string& tag) const override
    {
        for (T* object : m_object)
            if (object->get_member_tag() == tag)
                return object;
        return nullptr;
    }
    int find_all_member_tag(const std::string& tag, ZBPtrArray<ZBDBObject>& out) const override
    {
        for (T* object : m_object)
            if (object->get_member_tag() == tag)
                out.push_back(object);
        return ZBErrC_ok;
    }
    int get_num_member_tag(const std::string& tag) const override
    {
        int n = 0;
        for (T* object : m_object)
            n += object->get_member_tag() == tag;
        return n;
    }
    int get_nobjects() const override { return int(m_object.size()); }
    ZBDBObject* get_object(int index) const override { return get(index); }
    int remove_object(int id) override
    {
        for (size_t i = 0; i < m_object.size(); ++i)
            if (m_object[i]->get_id() == id) {
                m_object.erase(m_object.begin() + long(i));
                m_indexed = false;
                return ZBErrC_ok;
            }
        return ZBErrC_okNotHandled;
    }

    int size() const { return int(m_object.size()); }
    // An index out of range is reported and gives null.
    T* get(int index) const
    {
        if (index < 0 || index >= size()) {
            zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", index, size());
            return nullptr;
        }
        return m_object[size_t(index)];
    }
    T* operator[](int index) const { return get(index); }
    T* find_id(int id) const
    {
        if (!m_indexed) {
            m_byId.clear();
            m_byId.reserve(m_object.size());
            for (T* object : m_object)
                m_byId.emplace_back(object->get_id(), object);
            std::stable_sort(m_byId.begin(), m_byId.end(),
                             [](const std::pair<int, T*>& a, const std::pair<int, T*>& b) { return a.first < b.first; });
            m_indexed = true;
        }
        auto it = std::lower_bound(m_byId.begin(), m_byId.end(), id,
                                   [](const std::pair<int, T*>& entry, int key) { return entry.first < key; });
        return it != m_byId.end() && it->first == id ? it->second : nullptr;
    }
    typename std::vector<T*>::const_iterator begin() const { return m_object.begin(); }
    typename std::vector<T*>::const_iterator end() const { return m_object.end(); }

private:
    std::vector<T*> m_object;
    mutable std::vector<std::pair<int, T*>> m_byId;
    mutable bool m_indexed = false;
};

} // namespace Tervalon
