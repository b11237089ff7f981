#pragma once

#include "LibDatabase/db/zbdbcontainerbase.h"
#include "LibDatabase/db/zbdbobject.h"
#include "LibCore/error/zberror.h"

#include <map>
#include <vector>

namespace Tervalon {

// A typed, non-owning view of an object's children under one tag, in the order
// they were added, with a map by id. The database owns the objects; a container
// is emptied and refilled by resolve_containers, so pointers taken from it are
// good only until the next change of the tree.
template <class T>
class ZBDBContainer : public ZBDBContainerBase {
public:
    explicit ZBDBContainer(const std::string& tag) : ZBDBContainerBase(tag) {}

    int add_object(ZBDBObject* object) override
    {
        T* typed = dynamic_cast<T*>(object);
        if (!typed)
            return zberror(ZBErrC_DynamicCast, ZBLOC, "Could not cast object ID %d to ZBDBObject.", object ? object->get_id() : -1);
        m_object.push_back(typed);
        m_byId[typed->get_id()] = typed;
        return ZBErrC_ok;
    }
    void clear() override
    {
        m_object.clear();
        m_byId.clear();
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
        auto it = m_byId.find(id);
        if (it == m_byId.end())
            return ZBErrC_okNotHandled;
        for (size_t i = 0; i < m_object.size(); ++i)
            if (m_object[i] == it->second) {
                m_object.erase(m_object.begin() + long(i));
                break;
            }
        m_byId.erase(it);
        return ZBErrC_ok;
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
        auto it = m_byId.find(id);
        return it == m_byId.end() ? nullptr : it->second;
    }
    typename std::vector<T*>::const_iterator begin() const { return m_object.begin(); }
    typename std::vector<T*>::const_iterator end() const { return m_object.end(); }

private:
    std::vector<T*> m_object;
    std::map<int, T*> m_byId;
};

} // namespace Tervalon
