#pragma once

#include "LibCore/error/zberror.h"
#include "LibCore/ptrarray/zbptrarray.h"
#include "LibCore/ptrarray/zbptrarrayindex.h"
#include "LibObject/object/zbconnection.h"
#include "LibObject/object/zbobjectindex.h"
#include "LibObject/object/zbserialisationentry.h"
#include "LibObject/object/zbsrlvalue.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

class ZBConnectionData;

// When set, data a class does not understand is dropped on the next write
// instead of being kept. It is per thread, and set only for the length of one
// write through ZBPurgeUnhandledScope, so that it never outlives the file it
// was meant for nor reaches a write on another thread.
extern thread_local bool G_PurgeUnhandled;

// Composes the tag of a field that a class delegates to a part of itself.
std::string make_ctag(const std::string& prefix, const std::string& tag);
// What follows the last '+' of a composed tag.
std::string strip_prefix(const std::string& tag);

// Root of every persistent class: a class identity by name, a text stream into
// which a class writes its fields by tag and from which it reads them back, the
// keeping of tagged data this version does not understand, and clone, compare
// and assign built on that stream. A class's serialise() is called with exactly
// one of in and out set and issues the same calls both ways, so a field is
// declared once.
class ZBObject {
public:
    ZBObject();
    ZBObject(const ZBObject& other);
    virtual ~ZBObject();
    ZBObject& operator=(const ZBObject& other);
    bool operator==(const ZBObject& other) const;
    bool operator!=(const ZBObject& other) const { return !(*this == other); }

    virtual void dump(std::ostream& out, int indent) const;
    virtual int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version);
    virtual void register_zbobject();
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    virtual void set_defaults(bool all);

    // Field operations.
    int serialise_value(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                        ZBSrl& srl, bool tryBareTag = false);
    template <class T>
    int serialise_field(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                        T& value, const T& defaultValue, bool tryBareTag = false, int precision = 0)
    {
        ZBSrlValue<T> srl(value, defaultValue, precision);
        return serialise_value(in, out, prefix, tag, srl, tryBareTag);
    }
    int serialise_string(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                         std::string& value, bool omitEmpty);
    int serialise_object(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag, ZBSrl& srl);
    int serialise_string_array(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                               ZBPtrArray<std::string>& value);
    int serialise_string_vector(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                                std::vector<std::string>& value);
    int serialise_string_maparray(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                                  ZBPtrArrayIndex<std::string, std::string>& value, bool omitEmpty);
    int serialise_data(std::istream* in, std::ostream* out, ZBPtrArray<std::string>& lines);

    // Writes one field line (escaped once) for header fields; longer results than 8192 bytes are cut.
    static int write_tagged_field(const std::string& tag, std::ostream& out, const char* format, ...)
        __attribute__((format(printf, 3, 4)));
    static int write_field_line(std::ostream& out, const std::string& tag, const std::string& value);
    // Writes "@tag" and the object's text.
    int write_tagged_class(const std::string& tag, std::ostream& out, int version) const;

    // Class-level operations.
    int write_class(std::ostream& out, int version) const;
    int read_class(std::istream& in, int version);
    static int read_class(std::istream& in, ZBObject*& out, int version);
    static int read_class(std::istream& in, ZBObject** outClass, ZBObject* inClass, int version);
    int read_class_entries(std::istream& in);
    // Reads an object's body (its class-start line already taken): its entries up
    // to the class end, then serialise.
    int read_class_body(std::istream& in, int version);
    int object_to_string(std::string& text, int version) const;
    static int object_from_string(const std::string& text, ZBObject*& out, int version);
    int object_from_string(const std::string& text, int version);
    ZBObject* clone_class() const;
    bool derived_compare(const ZBObject& other, int version) const;
    int derived_assign(const ZBObject& other, int version);
    // Writes the object (or expected) to a scratch file, reads it back and
    // clones it; fails when the read object or the clone does not write the
    // same text of known fields, so that a class that loses a field on the
    // way in or in its copy is caught.
    int selftest_serialisation(bool verbose, int version, std::ostream* report, ZBObject* expected);

    std::string get_class_name() const;
    int get_class_id() const { return m_classId; }
    static int get_id_from_name(const std::string& name);
    static int get_class_index_entry(const std::string& name, ZBObjectIndexEntry*& entry);
    int register_objectname(const std::string& name, ZBCreateFunction create);

    // Direct access to the read entries, for classes with their own header.
    int get_nserentries() const { return m_readEntry ? m_readEntry->size() : 0; }
    ZBSerialisationEntry* get_serentry(int index) const { return read_entries().at(index); }
    int remove_serentry(int index) { return edit_read_entries().remove(index); }
    void clear_unhandled_data() { m_readEntry.reset(); }
    // Gives the read entries to the caller in one move (for large headers).
    void take_serentries(ZBPtrArray<ZBSerialisationEntry>& into);

    static void set_purge_unhandled(bool purge) { G_PurgeUnhandled = purge; }
    static bool get_purge_unhandled() { return G_PurgeUnhandled; }

    // Signals. The receiver is the object called; a null sender connects
    // nothing. A sender calls its slots in the order they were connected, and
    // the first result that is a warning or worse stops the rest and is
    // returned, so a listener can veto. Main thread only.
    int connect_signal(ZBObject* sender, const ZBSignalVoid& signal, ZBConnection::VoidSlot slot);
    int connect_signal(ZBObject* sender, const ZBSignalInt& signal, ZBConnection::IntSlot slot);
    int connect_signal(ZBObject* sender, const ZBSignalObject& signal, ZBConnection::ObjectSlot slot);
    // The same for a slot of a derived class.
    template <class T>
    int connect_signal(ZBObject* sender, const ZBSignalVoid& signal, int (T::*slot)())
    {
        return connect_signal(sender, signal, static_cast<ZBConnection::VoidSlot>(slot));
    }
    template <class T>
    int connect_signal(ZBObject* sender, const ZBSignalInt& signal, int (T::*slot)(int))
    {
        return connect_signal(sender, signal, static_cast<ZBConnection::IntSlot>(slot));
    }
    template <class T>
    int connect_signal(ZBObject* sender, const ZBSignalObject& signal, int (T::*slot)(ZBObject*))
    {
        return connect_signal(sender, signal, static_cast<ZBConnection::ObjectSlot>(slot));
    }
    // Forgets the connections from this object to peer, and peer as a sender to this one.
    void remove_connections(ZBObject* peer);
    int emit_signal(const ZBSignalVoid& signal);
    int emit_signal(const ZBSignalInt& signal, int value);
    int emit_signal(const ZBSignalObject& signal, ZBObject* object);
    // While blocked the object emits nothing; what it would have emitted is not kept.
    void block_signals(bool block);
    bool signals_blocked() const;
    ZBConnectionData* get_connection_data() const { return m_connection.get(); }

    // The codes of this class, allocated at start-up.
    static int ZBErrC_ObjectUnknown;
    static int ZBErrC_ObjectNotRegistered;
    static int ZBErrC_ObjectFuncNotRegistered;

protected:
    // Hands the value of every read entry of a type (and tag, when given) to
    // take, in order, and removes those entries.
    void take_entries(int type, const std::string* tag, const std::function<void(std::string&)>& take);
    // Writes the unhandled entries and the class end.
    int write_unhandled(std::ostream& out) const;
    // Creates a T, or a copy of from: the body of every class's create_zbobject.
    template <class T>
    static int create_as(ZBObject*& out, const ZBObject* from, const char* name)
    {
        if (!from) {
            out = new T();
            return ZBErrC_ok;
        }
        const T* typed = dynamic_cast<const T*>(from);
        if (!typed) {
            out = nullptr;
            return zberror(ZBErrC_DynamicCast, ZBLOC, "Dynamic cast to %s failed.", name);
        }
        out = new T(*typed);
        return ZBErrC_ok;
    }

private:
    // The read entries, or a shared empty array when there are none.
    const ZBPtrArray<ZBSerialisationEntry>& read_entries() const;
    ZBPtrArray<ZBSerialisationEntry>& edit_read_entries();
    // Lets go of an array the fields have emptied.
    void drop_empty_entries();
    ZBConnectionData& edit_connection_data();
    int add_connection(ZBObject* sender, const ZBConnection& connection);
    // Tells every sender and receiver to forget this object.
    void remove_references();
    // Calls the slots of signal in order; value or object goes to the slot of that shape.
    int emit_connections(const ZBSignal& signal, int value, ZBObject* object);

    // Made on the first read: an object that was never read, or whose every
    // field this version knows, holds none, and an entry holds a dozen objects.
    std::unique_ptr<ZBPtrArray<ZBSerialisationEntry>> m_readEntry;
    // Made on the first connect or block, like the read entries.
    std::unique_ptr<ZBConnectionData> m_connection;
    int m_classId;
};

} // namespace Tervalon

#include "LibObject/object/zbsrlobject.h"

namespace Tervalon {

template <class T>
int ZBSrlObjectArray<T>::read(std::istream& in)
{
    ZBObject* object = nullptr;
    int result = ZBObject::read_class(in, object, m_version);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    if (!object)
        return zberror(ZBErrC_NullPointer, ZBLOC, "Object read failed.");
    T* typed = dynamic_cast<T*>(object);
    if (!typed) {
        delete object;
        return zberror(ZBErrC_DynamicCast, ZBLOC, "Object read failed.");
    }
    m_value.push_back(typed);
    return ZBErrC_ok;
}

template <class T>
int ZBSrlObjectArray<T>::write(std::ostream& out, int index) const
{
    if (index < 0 || index >= m_value.size())
        return zberror(ZBErrC_ArrayBounds, ZBLOC, "Array index %d out of bounds %d", index, m_value.size());
    return m_value[index]->write_class(out, m_version);
}

} // namespace Tervalon
