#include "LibObject/object/zbobject.h"
#include "LibObject/object/zbconnectiondata.h"
#include "LibObject/object/zbdump.h"
#include "LibObject/object/zbpurgeunhandledscope.h"

#include <QDir>
#include <QStandardPaths>

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <mutex>
#include <functional>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace Tervalon {

thread_local bool G_PurgeUnhandled = false;

int ZBObject::ZBErrC_ObjectUnknown =
    ZBError::allocate_code("ZBErrC_ObjectUnknown", "Could not find a reference to the supplied object name.");
int ZBObject::ZBErrC_ObjectNotRegistered =
    ZBError::allocate_code("ZBErrC_ObjectNotRegistered", "That object has not been registered in the object database.");
int ZBObject::ZBErrC_ObjectFuncNotRegistered =
    ZBError::allocate_code("ZBErrC_ObjectFuncNotRegistered", "The object creator function has not been registered.");

std::string make_ctag(const std::string& prefix, const std::string& tag)
{
    return prefix.empty() ? tag : prefix + "+" + tag;
}

std::string strip_prefix(const std::string& tag)
{
    size_t plus = tag.rfind('+');
    return plus == std::string::npos ? tag : tag.substr(plus + 1);
}

ZBObject::ZBObject() : m_classId(-1)
{
    ZBObject::register_zbobject();
}

// A copy is of the same class as the original, so it takes the original's class
// id; a class whose copy constructor registers itself gets the same id again.
// Connections stay with the original: a copy starts with none.
ZBObject::ZBObject(const ZBObject& other) : m_classId(other.m_classId)
{
    if (other.get_nserentries() > 0)
        m_readEntry.reset(new ZBPtrArray<ZBSerialisationEntry>(*other.m_readEntry));
}

ZBObject::~ZBObject()
{
    if (m_connection)
        remove_references();
}

// Assignment copies the data, never the connections: each side keeps its own.
ZBObject& ZBObject::operator=(const ZBObject& other)
{
    if (this == &other)
        return *this;
    if (other.get_nserentries() > 0)
        edit_read_entries() = *other.m_readEntry;
    else
        m_readEntry.reset();
    return *this;
}

bool ZBObject::operator==(const ZBObject& other) const
{
    const ZBPtrArray<ZBSerialisationEntry>& mine = read_entries();
    const ZBPtrArray<ZBSerialisationEntry>& theirs = other.read_entries();
    if (mine.size() != theirs.size())
        return false;
    for (int i = 0; i < mine.size(); ++i)
        if (!(*mine[i] == *theirs[i]))
            return false;
    // Connections are not data: two objects with the same fields are equal.
    return true;
}

const ZBPtrArray<ZBSerialisationEntry>& ZBObject::read_entries() const
{
    static const ZBPtrArray<ZBSerialisationEntry> none;
    return m_readEntry ? *m_readEntry : none;
}

ZBPtrArray<ZBSerialisationEntry>& ZBObject::edit_read_entries()
{
    if (!m_readEntry)
        m_readEntry.reset(new ZBPtrArray<ZBSerialisationEntry>());
    return *m_readEntry;
}

void ZBObject::drop_empty_entries()
{
    if (m_readEntry && m_readEntry->empty())
        m_readEntry.reset();
}

void ZBObject::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBObject", out, indent);
    const ZBPtrArray<ZBSerialisationEntry>& entries = read_entries();
    dump.add("m_classId", m_classId);
    dump.add("m_readEntry", entries.size());
    for (int i = 0; i < entries.size(); ++i)
        dump.add_entry("m_readEntry", entries[i]->m_tag + " " + entries[i]->m_value, i);
}

int ZBObject::serialise(std::istream*, std::ostream*, const std::string&, int)
{
    return ZBErrC_ok;
}

void ZBObject::register_zbobject()
{
    register_objectname("ZBObject", &ZBObject::create_zbobject);
}

int ZBObject::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBObject>(out, from, "ZBObject");
}

void ZBObject::set_defaults(bool) {}

namespace {

// Classes already registered, by their create function: a small table read
// without a lock. A slot is written once, its id before its function, so a
// reader that finds the function finds its id; a class whose slot another
// class took first is simply looked up by name as before.
constexpr size_t C_KnownSlots = 256;
std::atomic<ZBCreateFunction> g_knownCreate[C_KnownSlots];
std::atomic<int> g_knownId[C_KnownSlots];

size_t known_slot(ZBCreateFunction create)
{
    std::uintptr_t bits = reinterpret_cast<std::uintptr_t>(create);
    return size_t((bits >> 4) ^ (bits >> 12)) % C_KnownSlots;
}

} // namespace

int ZBObject::register_objectname(const std::string& name, ZBCreateFunction create)
{
    // Every object registers its class at each level of its descent, and the
    // planner makes millions of date sets and repeat rules: after the first
    // registration a class is known by its create function (one per class)
    // without hashing its name. Ids never change once given out.
    const size_t slot = known_slot(create);
    if (create && g_knownCreate[slot].load(std::memory_order_acquire) == create) {
        m_classId = g_knownId[slot].load(std::memory_order_relaxed);
        return m_classId;
    }
    zbclassindex().append(name, create, m_classId);
    if (create && m_classId >= 0) {
        static std::mutex writing;
        std::lock_guard<std::mutex> lock(writing);
        if (!g_knownCreate[slot].load(std::memory_order_relaxed)) {
            g_knownId[slot].store(m_classId, std::memory_order_relaxed);
            g_knownCreate[slot].store(create, std::memory_order_release);
        }
    }
    return m_classId;
}

std::string ZBObject::get_class_name() const
{
    ZBObjectIndexEntry* entry = zbclassindex().get(m_classId);
    return entry ? entry->m_name : std::string();
}

int ZBObject::get_id_from_name(const std::string& name)
{
    ZBObjectIndexEntry* entry = zbclassindex().find(name);
    return entry ? entry->m_id : -1;
}

int ZBObject::get_class_index_entry(const std::string& name, ZBObjectIndexEntry*& entry)
{
    entry = zbclassindex().find(name);
    if (!entry)
        return zberror(ZBErrC_ObjectUnknown, ZBLOC, "Could not identify object %s", name.c_str());
    return ZBErrC_ok;
}

void ZBObject::take_serentries(ZBPtrArray<ZBSerialisationEntry>& into)
{
    if (m_readEntry)
        into = std::move(*m_readEntry);
    else
        into.clear();
    m_readEntry.reset();
}

// ---------------------------------------------------------------- field operations

namespace {
// Tags are a few letters, and every field of every object read compares its tag
// with those still unread: a loop beats a call to memcmp for each.
bool same_tag(const std::string& a, const std::string& b)
{
    const size_t n = a.size();
    if (n != b.size())
        return false;
    const char* x = a.data();
    const char* y = b.data();
    for (size_t i = 0; i < n; ++i)
        if (x[i] != y[i])
            return false;
    return true;
}

// Takes one read entry away, and the array with the last one: a database reads
// its objects' fields itself, and an emptied array would stay with each.
void remove_read_entry(std::unique_ptr<ZBPtrArray<ZBSerialisationEntry>>& entries, int index)
{
    entries->remove(index);
    if (entries->empty())
        entries.reset();
}

// Writes text through the line escaper without making a copy of it.
void write_escaped(std::ostream& out, const std::string& text)
{
    const char* data = text.data();
    const size_t n = text.size();
    size_t run = 0;
    for (size_t i = 0; i < n; ++i) {
        const char c = data[i];
        if (c != '\n' && c != '\\' && c != '\r' && c != '\0')
            continue;
        out.write(data + run, std::streamsize(i - run));
        if (c == '\n')
            out.write("\\n", 2);
        else if (c == '\\')
            out.write("\\\\", 2);
        run = i + 1;
    }
    out.write(data + run, std::streamsize(n - run));
}
} // namespace

int ZBObject::write_field_line(std::ostream& out, const std::string& tag, const std::string& value)
{
    // Escaping works character by character, so the composed line "!tag!value"
    // can be escaped in its pieces.
    out.put('!');
    write_escaped(out, tag);
    out.put('!');
    write_escaped(out, value);
    out.put('\n');
    if (!out)
        return zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    return ZBErrC_ok;
}

int ZBObject::serialise_value(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                              ZBSrl& srl, bool tryBareTag)
{
    // Most fields have no prefix: their tag is used as it is, without a copy.
    const std::string composed = prefix.empty() ? std::string() : make_ctag(prefix, tag);
    const std::string& ctag = prefix.empty() ? tag : composed;
    if (out) {
        const int n = srl.get_nentries();
        std::string text;
        for (int i = 0; i < n; ++i) {
            if (srl.is_default())
                continue;
            if (iszbwarn(srl.write_text(text, i)))
                return zbpass(ZBLOC);
            if (iszbwarn(write_field_line(*out, ctag, zb_stream_out(text))))
                return zbpass(ZBLOC);
        }
        return ZBErrC_ok;
    }
    if (!in)
        return ZBErrC_ok;
    srl.start_read();
    const bool multiple = srl.handle_multiple();
    if (!multiple)
        srl.set_to_default();
    bool found = false;
    for (int i = 0; i < get_nserentries();) {
        // Positions stay in range here, so the elements are read without the
        // checked access: this loop runs for every field of every object read.
        ZBSerialisationEntry* entry = *(m_readEntry->begin() + i);
        if (entry->m_entryType == ZBSerialisationEntry::E_Field && same_tag(entry->m_tag, ctag)) {
            if (entry->m_value.find('\\') == std::string::npos)
                srl.read_text(entry->m_value);
            else
                srl.read_text(zb_stream_in(entry->m_value));
            remove_read_entry(m_readEntry, i);
            found = true;
        } else {
            ++i;
        }
    }
    if (!found && !multiple && tryBareTag) {
        for (int i = 0; i < get_nserentries();) {
            ZBSerialisationEntry* entry = (*m_readEntry)[i];
            if (entry->m_entryType == ZBSerialisationEntry::E_Field && strip_prefix(entry->m_tag) == tag) {
                srl.read_text(zb_stream_in(entry->m_value));
                remove_read_entry(m_readEntry, i);
                found = true;
            } else {
                ++i;
            }
        }
    }
    if (!found && !multiple)
        return ZBErrC_okEndOfFile;
    return ZBErrC_ok;
}

int ZBObject::serialise_string(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                               std::string& value, bool omitEmpty)
{
    const std::string ctag = make_ctag(prefix, tag);
    if (out) {
        if (omitEmpty && value.empty())
            return ZBErrC_ok;
        return write_field_line(*out, ctag, value);
    }
    if (!in)
        return ZBErrC_ok;
    if (omitEmpty)
        value.clear();
    // A field given twice takes its last value, as other fields do; a copy
    // left unread would be written back and win on the next read.
    bool found = false;
    for (int i = 0; i < get_nserentries();) {
        // Positions stay in range here, so the elements are read without the
        // checked access: this loop runs for every field of every object read.
        ZBSerialisationEntry* entry = *(m_readEntry->begin() + i);
        if (entry->m_entryType == ZBSerialisationEntry::E_Field && same_tag(entry->m_tag, ctag)) {
            value = std::move(entry->m_value);
            remove_read_entry(m_readEntry, i);
            found = true;
        } else {
            ++i;
        }
    }
    return found ? ZBErrC_ok : ZBErrC_okEndOfFile;
}

int ZBObject::serialise_object(std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                               ZBSrl& srl)
{
    const std::string ctag = make_ctag(prefix, tag);
    if (out) {
        const int n = srl.get_nentries();
        for (int i = 0; i < n; ++i) {
            if (srl.is_default())
                continue;
            *out << '@' << zb_stream_out(ctag) << '\n';
            if (iszbwarn(srl.write(*out, i)))
                return zbpass(ZBLOC);
        }
        if (!*out)
            return zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
        return ZBErrC_ok;
    }
    if (!in)
        return ZBErrC_ok;
    srl.start_read();
    const bool multiple = srl.handle_multiple();
    if (!multiple)
        srl.set_to_default();
    bool found = false;
    int result = ZBErrC_ok;
    for (int i = 0; i < get_nserentries();) {
        ZBSerialisationEntry* entry = (*m_readEntry)[i];
        if (entry->m_entryType == ZBSerialisationEntry::E_Class && same_tag(entry->m_tag, ctag)) {
            std::istringstream text(entry->m_value);
            int r = srl.read(text);
            if (iszbwarn(r))
                result = zbpass(ZBLOC);
            remove_read_entry(m_readEntry, i);
            found = true;
        } else {
            ++i;
        }
    }
    if (iszbwarn(result))
        return result;
    if (!found && !multiple)
        return ZBErrC_okEndOfFile;
    return ZBErrC_ok;
}

void ZBObject::take_entries(int type, const std::string* tag, const std::function<void(std::string&)>& take)
{
    for (int i = 0; i < get_nserentries();) {
        ZBSerialisationEntry* entry = (*m_readEntry)[i];
        if (entry->m_entryType == type && (!tag || same_tag(entry->m_tag, *tag))) {
            take(entry->m_value);
            remove_read_entry(m_readEntry, i);
        } else {
            ++i;
        }
    }
}

int ZBObject::serialise_string_array(std::istream* in, std::ostream* out, const std::string& prefix,
                                     const std::string& tag, ZBPtrArray<std::string>& value)
{
    const std::string ctag = make_ctag(prefix, tag);
    if (out) {
        for (const std::string* element : value)
            if (iszbwarn(write_field_line(*out, ctag, *element)))
                return zbpass(ZBLOC);
        return ZBErrC_ok;
    }
    if (!in)
        return ZBErrC_ok;
    value.clear();
    take_entries(ZBSerialisationEntry::E_Field, &ctag, [&value](std::string& text) { value.push_back(new std::string(std::move(text))); });
    return ZBErrC_ok;
}

int ZBObject::serialise_string_vector(std::istream* in, std::ostream* out, const std::string& prefix,
                                      const std::string& tag, std::vector<std::string>& value)
{
    const std::string ctag = make_ctag(prefix, tag);
    if (out) {
        for (const std::string& element : value)
            if (iszbwarn(write_field_line(*out, ctag, element)))
                return zbpass(ZBLOC);
        return ZBErrC_ok;
    }
    if (!in)
        return ZBErrC_ok;
    value.clear();
    take_entries(ZBSerialisationEntry::E_Field, &ctag, [&value](std::string& text) { value.push_back(std::move(text)); });
    return ZBErrC_ok;
}

int ZBObject::serialise_string_maparray(std::istream* in, std::ostream* out, const std::string& prefix,
                                        const std::string& tag, ZBPtrArrayIndex<std::string, std::string>& value,
                                        bool omitEmpty)
{
    const std::string ctag = make_ctag(prefix, tag);
    if (out) {
        for (int i = 0; i < value.size(); ++i) {
            if (omitEmpty && value[i]->empty())
                continue;
            if (iszbwarn(write_field_line(*out, ctag, value.tag(i) + "=" + *value[i])))
                return zbpass(ZBLOC);
        }
        return ZBErrC_ok;
    }
    if (!in)
        return ZBErrC_ok;
    value.clear();
    take_entries(ZBSerialisationEntry::E_Field, &ctag, [&value](std::string& line) {
        const size_t sep = line.find('=');
        const std::string key = line.substr(0, sep);
        value.remove_value(key);
        value.add(key, new std::string(sep == std::string::npos ? std::string() : line.substr(sep + 1)));
    });
    return ZBErrC_ok;
}

int ZBObject::serialise_data(std::istream* in, std::ostream* out, ZBPtrArray<std::string>& lines)
{
    if (out) {
        for (const std::string* line : lines)
            zb_write_raw_line(*out, *line);
        if (!*out)
            return zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
        return ZBErrC_ok;
    }
    if (!in)
        return ZBErrC_ok;
    lines.clear();
    take_entries(ZBSerialisationEntry::E_Raw, nullptr, [&lines](std::string& text) { lines.push_back(new std::string(std::move(text))); });
    return ZBErrC_ok;
}

int ZBObject::write_tagged_field(const std::string& tag, std::ostream& out, const char* format, ...)
{
    char buffer[8192];
    va_list args;
    va_start(args, format);
    std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    return write_field_line(out, tag, buffer);
}

int ZBObject::write_tagged_class(const std::string& tag, std::ostream& out, int version) const
{
    out << '@' << zb_stream_out(tag) << '\n';
    return write_class(out, version);
}

// ---------------------------------------------------------------- class level

int ZBObject::write_unhandled(std::ostream& out) const
{
    if (!G_PurgeUnhandled)
        for (const ZBSerialisationEntry* entry : read_entries())
            if (iszbwarn(entry->write_entry(out)))
                return zbpass(ZBLOC);
    out << "}\n";
    if (!out)
        return zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    return ZBErrC_ok;
}

int ZBObject::write_class(std::ostream& out, int version) const
{
    if (m_classId < 0)
        return zberror(ZBErrC_ObjectNotRegistered, ZBLOC, "Object has invalid id %d", m_classId);
    ZBObjectIndexEntry* entry = zbclassindex().get(m_classId);
    if (!entry)
        return zberror(ZBErrC_ObjectNotRegistered, ZBLOC, "Object %d not in class index", m_classId);
    out << '{' << entry->m_name << '\n';
    if (!out)
        return zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    // Writing goes through the one serialise() of the class; it leaves the object as it was.
    int result = const_cast<ZBObject*>(this)->serialise(nullptr, &out, "", version);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return write_unhandled(out);
}

int ZBObject::read_class_entries(std::istream& in)
{
    for (;;) {
        ZBSerialisationEntry* entry = new ZBSerialisationEntry();
        int result = entry->read_entry(in);
        if (result == ZBErrC_okEndOfRecord) {
            delete entry;
            return ZBErrC_ok;
        }
        if (iszbwarn(result)) {
            delete entry;
            return zbpass(ZBLOC);
        }
        edit_read_entries().push_back(entry);
    }
}

int ZBObject::read_class_body(std::istream& in, int version)
{
    clear_unhandled_data();
    int result = read_class_entries(in);
    if (!iszbwarn(result))
        result = serialise(&in, nullptr, "", version);
    drop_empty_entries();
    return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

int ZBObject::read_class(std::istream& in, ZBObject** outClass, ZBObject* inClass, int version)
{
    if (outClass && inClass)
        return zberror(ZBErrC_NullPointer, ZBLOC, "Both inClass and outClass were supplied.");
    if (!outClass && !inClass)
        return zberror(ZBErrC_NullPointer, ZBLOC, "Both inClass and outClass were nullptr.");
    std::string line;
    for (;;) {
        if (!zb_read_line(in, line))
            return ZBErrC_okEndOfFile;
        if (!line.empty() && line[0] == '{')
            break;
    }
    const std::string name = line.substr(1);
    ZBObjectIndexEntry* entry = zbclassindex().find(name);
    if (!entry)
        return zberror(ZBErrC_ObjectUnknown, ZBLOC, "Could not identify object %s", name.c_str());
    if (!entry->m_create)
        return zberror(ZBErrC_ObjectFuncNotRegistered, ZBLOC, "No create function for %s", name.c_str());
    ZBObject* object = inClass;
    if (outClass) {
        object = nullptr;
        if (iszbwarn(entry->m_create(object, nullptr)) || !object) {
            delete object;
            return zberror(ZBErrC_ObjectFuncNotRegistered, ZBLOC, "Create function failed for %s", name.c_str());
        }
    }
    int result = object->read_class_body(in, version);
    if (iszbwarn(result)) {
        if (outClass)
            delete object;
        return zbpass(ZBLOC);
    }
    if (outClass)
        *outClass = object;
    return ZBErrC_ok;
}

int ZBObject::read_class(std::istream& in, int version)
{
    return read_class(in, nullptr, this, version);
}

int ZBObject::read_class(std::istream& in, ZBObject*& out, int version)
{
    out = nullptr;
    return read_class(in, &out, nullptr, version);
}

int ZBObject::object_to_string(std::string& text, int version) const
{
    std::ostringstream out;
    int result = write_class(out, version);
    text = out.str();
    return result;
}

int ZBObject::object_from_string(const std::string& text, ZBObject*& out, int version)
{
    std::istringstream in(text);
    return read_class(in, out, version);
}

int ZBObject::object_from_string(const std::string& text, int version)
{
    std::istringstream in(text);
    return read_class(in, version);
}

ZBObject* ZBObject::clone_class() const
{
    ZBObjectIndexEntry* entry = zbclassindex().get(m_classId);
    if (!entry) {
        zberror(ZBErrC_ObjectNotRegistered, ZBLOC, "Object %d not in class index", m_classId);
        return nullptr;
    }
    if (!entry->m_create) {
        zberror(ZBErrC_ObjectFuncNotRegistered, ZBLOC, "Object %d has no cloner.", m_classId);
        return nullptr;
    }
    ZBObject* copy = nullptr;
    if (iszbwarn(entry->m_create(copy, this)) || !copy) {
        delete copy;
        zberror(ZBErrC_ObjectFuncNotRegistered, ZBLOC, "Create function failed for %d", m_classId);
        return nullptr;
    }
    return copy;
}

bool ZBObject::derived_compare(const ZBObject& other, int version) const
{
    std::string a;
    std::string b;
    if (iszbwarn(object_to_string(a, version)) || iszbwarn(other.object_to_string(b, version)))
        return false;
    return a == b;
}

int ZBObject::derived_assign(const ZBObject& other, int version)
{
    std::string text;
    if (iszbwarn(other.object_to_string(text, version)))
        return zbpass(ZBLOC);
    return object_from_string(text, version);
}

int ZBObject::selftest_serialisation(bool verbose, int version, std::ostream* report, ZBObject* expected)
{
    const ZBObject& original = expected ? *expected : *this;
    // Only the fields a class knows are compared: what it keeps unhandled
    // would otherwise be written back whether the class read it or not, and
    // hide a field that is written but never read.
    ZBPurgeUnhandledScope known;
    std::string want;
    if (iszbwarn(original.object_to_string(want, version)))
        return zbpass(ZBLOC);
    QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/scratch";
    QDir().mkpath(dir);
    const std::string path = (dir + "/zbclassST.txt").toStdString();
    {
        std::ofstream out(path, std::ios::trunc);
        if (!out)
            return zberror(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", path.c_str());
        out << want;
        if (!out)
            return zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    }
    const std::string name = original.get_class_name();
    ZBObject* read = nullptr;
    {
        std::ifstream in(path);
        if (iszbwarn(read_class(in, read, version)))
            return zbpass(ZBLOC);
    }
    int result = ZBErrC_ok;
    std::string got;
    if (!read || iszbwarn(read->object_to_string(got, version)) || got != want) {
        if (report)
            *report << "Read object " << name << " failed equality test." << std::endl;
        result = zberror(ZBErrC_InvalidValue, ZBLOC, "Read object %s failed equality test.", name.c_str());
    }
    delete read;
    ZBObject* clone = original.clone_class();
    std::string copied;
    if (!clone || iszbwarn(clone->object_to_string(copied, version)) || copied != want) {
        if (report)
            *report << "Cloned object " << name << " failed equality test." << std::endl;
        result = zberror(ZBErrC_InvalidValue, ZBLOC, "Cloned object %s failed equality test.", name.c_str());
    }
    delete clone;
    if (verbose && report && !iszbwarn(result))
        *report << name << " passed." << std::endl;
    return result;
}

} // namespace Tervalon

// ---------------------------------------------------------------- signals

namespace Tervalon {

ZBConnectionData& ZBObject::edit_connection_data()
{
    if (!m_connection)
        m_connection.reset(new ZBConnectionData(this));
    return *m_connection;
}

// The same connection made twice is kept once, so its slot runs once per emit.
int ZBObject::add_connection(ZBObject* sender, const ZBConnection& connection)
{
    if (!sender)
        return ZBErrC_ok;
    ZBConnectionData& out = sender->edit_connection_data();
    if (out.has_connection(connection))
        return ZBErrC_ok;
    out.add_connection(connection);
    edit_connection_data().add_sender(sender);
    return ZBErrC_ok;
}

int ZBObject::connect_signal(ZBObject* sender, const ZBSignalVoid& signal, ZBConnection::VoidSlot slot)
{
    return add_connection(sender, ZBConnection(this, signal, slot));
}

int ZBObject::connect_signal(ZBObject* sender, const ZBSignalInt& signal, ZBConnection::IntSlot slot)
{
    return add_connection(sender, ZBConnection(this, signal, slot));
}

int ZBObject::connect_signal(ZBObject* sender, const ZBSignalObject& signal, ZBConnection::ObjectSlot slot)
{
    return add_connection(sender, ZBConnection(this, signal, slot));
}

void ZBObject::remove_connections(ZBObject* peer)
{
    if (!m_connection)
        return;
    m_connection->remove_receiver(peer);
    m_connection->remove_sender(peer);
}

void ZBObject::remove_references()
{
    for (ZBObject* peer : m_connection->get_peers())
        if (peer != this)
            peer->remove_connections(this);
    m_connection.reset();
}

void ZBObject::block_signals(bool block)
{
    edit_connection_data().set_block_signals(block);
}

bool ZBObject::signals_blocked() const
{
    return m_connection && m_connection->get_block_signals();
}

int ZBObject::emit_signal(const ZBSignalVoid& signal)
{
    return emit_connections(signal, 0, nullptr);
}

int ZBObject::emit_signal(const ZBSignalInt& signal, int value)
{
    return emit_connections(signal, value, nullptr);
}

int ZBObject::emit_signal(const ZBSignalObject& signal, ZBObject* object)
{
    return emit_connections(signal, 0, object);
}

// A slot may connect, disconnect or delete other objects. The connections of
// the signal are taken first, and each is called only while it still exists,
// so a receiver deleted by an earlier slot is never reached and a connection
// made during the emit waits for the next one.
int ZBObject::emit_connections(const ZBSignal& signal, int value, ZBObject* object)
{
    if (!m_connection || m_connection->get_block_signals())
        return ZBErrC_ok;
    std::vector<ZBConnection> calls;
    for (const ZBConnection& connection : m_connection->get_connections())
        if (connection.get_signal() == &signal)
            calls.push_back(connection);
    for (const ZBConnection& call : calls) {
        if (!m_connection || !m_connection->has_connection(call))
            continue;
        ZBObject* receiver = call.get_receiver();
        int result = ZBErrC_ok;
        if (call.get_void_slot())
            result = (receiver->*call.get_void_slot())();
        else if (call.get_int_slot())
            result = (receiver->*call.get_int_slot())(value);
        else if (call.get_object_slot())
            result = (receiver->*call.get_object_slot())(object);
        if (iszbwarn(result))
            return result;
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
