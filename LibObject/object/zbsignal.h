#pragma once

namespace Tervalon {

// A signal a model object can emit. A signal is a static object and its
// address is its identity: two signals are the same only when they are the
// same object, so a name is for dumps and debugging, never for matching.
// Signals and their connections belong to the main thread.
class ZBSignal {
public:
    explicit ZBSignal(const char* name) : m_name(name) {}
    ZBSignal(const ZBSignal&) = delete;
    ZBSignal& operator=(const ZBSignal&) = delete;

    const char* get_name() const { return m_name; }
    bool operator==(const ZBSignal& other) const { return this == &other; }
    bool operator!=(const ZBSignal& other) const { return this != &other; }

protected:
    ~ZBSignal() = default;

private:
    const char* m_name;
};

// A signal whose slots take nothing: int (ZBObject::*)().
class ZBSignalVoid : public ZBSignal {
public:
    explicit ZBSignalVoid(const char* name) : ZBSignal(name) {}
};

// A signal whose slots take an int: int (ZBObject::*)(int).
class ZBSignalInt : public ZBSignal {
public:
    explicit ZBSignalInt(const char* name) : ZBSignal(name) {}
};

// A signal whose slots take an object: int (ZBObject::*)(ZBObject*).
class ZBSignalObject : public ZBSignal {
public:
    explicit ZBSignalObject(const char* name) : ZBSignal(name) {}
};

} // namespace Tervalon
