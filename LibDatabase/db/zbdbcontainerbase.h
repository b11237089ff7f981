#pragma once

#include "LibCore/ptrarray/zbptrarray.h"

#include <string>

namespace Tervalon {

class ZBDBObject;

// A view of some of an object's children under one tag. It owns nothing and is
// rebuilt from the parent ids by resolve_containers.
class ZBDBContainerBase {
public:
    explicit ZBDBContainerBase(const std::string& tag) : m_tag(tag) {}
    virtual ~ZBDBContainerBase() = default;

    virtual int add_object(ZBDBObject* object) = 0;
    virtual void clear() = 0;
    virtual ZBDBObject* find_member_tag(const std::string& tag) const = 0;
    virtual int find_all_member_tag(const std::string& tag, ZBPtrArray<ZBDBObject>& out) const = 0;
    virtual int get_num_member_tag(const std::string& tag) const = 0;
    virtual int get_nobjects() const = 0;
    virtual ZBDBObject* get_object(int index) const = 0;
    virtual int remove_object(int id) = 0;

    const std::string& get_tag() const { return m_tag; }
    void set_tag(const std::string& tag) { m_tag = tag; }

private:
    std::string m_tag;
};

} // namespace Tervalon
