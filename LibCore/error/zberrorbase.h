#pragma once

namespace Tervalon {

// A mixin for classes that want to see their own failures: they call
// on_error(value) where a result is a warning or worse, and a derived class
// can react (mark itself damaged, show a status) without every caller knowing.
class ZBErrorBase {
public:
    virtual ~ZBErrorBase();
    // Returns the value, so a caller can write "return on_error(value);".
    virtual int on_error(int value);
};

} // namespace Tervalon
