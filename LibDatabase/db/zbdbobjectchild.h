#pragma once

#include "LibDatabase/db/zbdbobject.h"

namespace Tervalon {

// The base of object classes that belong to one concrete class T: a database
// class (settings of a diary) or an object class (the facets of an entry).
// get_db() gives the nearest T: the database when it is a T, otherwise the
// first ancestor that is one. It owns nothing.
template <class T>
class ZBDBObjectChild : public ZBDBObject {
public:
    ZBDBObjectChild() = default;
    ZBDBObjectChild(const ZBDBObjectChild& other) = default;
    ZBDBObjectChild& operator=(const ZBDBObjectChild& other) = default;

    T* get_db() const
    {
        if (T* db = dynamic_cast<T*>(get_database()))
            return db;
        for (ZBDBObject* up = get_parent(); up; up = up->get_parent())
            if (T* owner = dynamic_cast<T*>(up))
                return owner;
        return nullptr;
    }

    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        return ZBDBObject::serialise(in, out, prefix, version);
    }
};

} // namespace Tervalon
