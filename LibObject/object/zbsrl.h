#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

// The binder between a member and the object stream. A class's serialise()
// makes one per field and hands it to the field operations of ZBObject, which
// use it in both directions.
class ZBSrl {
public:
    virtual ~ZBSrl() = default;
    virtual void dump(std::ostream& out, int indent) const;
    // True for binders of many values, one line each.
    virtual bool handle_multiple() const { return false; }
    virtual int get_nentries() const { return 1; }
    virtual bool is_default() const { return false; }
    virtual void set_to_default() {}
    virtual void start_read() {}
    virtual int read(std::istream& in) = 0;
    virtual int write(std::ostream& out, int index) const = 0;

    // Text forms used by the field operations. The defaults go through a string
    // stream; plain numbers take a faster path with the same result.
    virtual int read_text(const std::string& text);
    virtual int write_text(std::string& text, int index) const;
};

} // namespace Tervalon
