#pragma once

#include "LibCore/ptrarray/zbptrarrayindex.h"

#include <iosfwd>
#include <string>
#include <unordered_map>

namespace Tervalon {

class ZBObject;

using ZBCreateFunction = int (*)(ZBObject*& out, const ZBObject* from);

// One registered class: its position, its name as written to files, and the
// function that makes a default object (from == null) or a copy of from.
class ZBObjectIndexEntry {
public:
    ZBObjectIndexEntry(int id, const std::string& name, ZBCreateFunction create) : m_id(id), m_name(name), m_create(create) {}
    int m_id;
    std::string m_name;
    ZBCreateFunction m_create;
};

// The class index: every persistent class by name, in registration order.
// Class ids live only for the life of the process; files hold names. Filled
// while the process is single-threaded and read without a lock.
class ZBObjectIndex {
public:
    ZBObjectIndex();

    // The first registration of a name wins; a later one gets the same id.
    int append(const std::string& name, ZBCreateFunction create, int& id);
    ZBObjectIndexEntry* find(const std::string& name) const
    {
        auto it = m_byName.find(name);
        return it == m_byName.end() ? nullptr : it->second;
    }
    ZBObjectIndexEntry* get(int id) const;
    int size() const { return m_entry.size(); }

    void dump(std::ostream& out, int indent) const;

private:
    ZBPtrArrayIndex<ZBObjectIndexEntry, std::string> m_entry;
    // Every object made looks its class up here, once per class level: a hash
    // is much cheaper than the ordered index for that.
    std::unordered_map<std::string, ZBObjectIndexEntry*> m_byName;
};

ZBObjectIndex& zbclassindex();

// A file-scope object of this class puts a class into the index before main,
// for classes that may be read before any instance is made.
class ZBObjectPreReg {
public:
    ZBObjectPreReg(const std::string& name, ZBCreateFunction create);
};

} // namespace Tervalon
