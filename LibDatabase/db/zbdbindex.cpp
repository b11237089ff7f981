#include "LibDatabase/db/zbdbindex.h"
#include "LibCore/fileutils/zbsyncfile.h"
#include "LibObject/object/zbdump.h"
#include "LibObject/object/zbserialisationentry.h"

#include <QFile>

#include <fstream>
#include <memory>
#include <sstream>

namespace Tervalon {

const char* const ZBDBIndex::C_TransactionStart = "T:";
const char* const ZBDBIndex::C_IndexStart = "I:";

namespace {
ZBObjectPreReg g_register("ZBDBIndex", &ZBDBIndex::create_zbobject);
}

ZBDBIndex::ZBDBIndex() : m_lastSave(0), m_version(0), m_changedSinceSave(false)
{
    ZBDBIndex::register_zbobject();
}

void ZBDBIndex::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDBIndex", out, indent);
    dump.add("m_transaction", m_transaction.size());
    dump.add("m_lastSave", m_lastSave);
    dump.add_entry("m_fileName", m_fileName);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBDBIndex::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<int>(in, out, prefix, "lastSave", m_lastSave, 0);
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBDBIndex::register_zbobject()
{
    register_objectname("ZBDBIndex", &ZBDBIndex::create_zbobject);
}

int ZBDBIndex::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    (void)from;
    out = new ZBDBIndex();
    return ZBErrC_ok;
}

void ZBDBIndex::initialise(const std::string& name)
{
    m_fileName = name;
    reset();
}

const ZBDBTransaction* ZBDBIndex::get_transaction(int id) const
{
    return id >= 0 && id < m_transaction.size() ? m_transaction[id] : nullptr;
}

bool ZBDBIndex::can_undo() const
{
    for (const ZBDBTransaction* t : m_transaction)
        if (t->m_status == ZBDBTransaction::E_Live)
            return true;
    return false;
}

bool ZBDBIndex::can_redo() const
{
    for (const ZBDBTransaction* t : m_transaction)
        if (t->m_status == ZBDBTransaction::E_Undone)
            return true;
    return false;
}

std::string ZBDBIndex::get_undo_operation() const
{
    for (int i = m_transaction.size() - 1; i >= 0; --i)
        if (m_transaction[i]->m_status == ZBDBTransaction::E_Live)
            return m_transaction[i]->m_operation;
    return std::string();
}

std::string ZBDBIndex::get_redo_operation() const
{
    for (const ZBDBTransaction* t : m_transaction)
        if (t->m_status == ZBDBTransaction::E_Undone)
            return t->m_operation;
    return std::string();
}

int ZBDBIndex::get_status(int id) const
{
    const ZBDBTransaction* t = get_transaction(id);
    return t ? t->m_status : ZBDBTransaction::E_Live;
}

int ZBDBIndex::append(const std::string& tag, const ZBObject& record)
{
    if (m_fileName.empty())
        return ZBErrC_ok;
    std::ostringstream text;
    if (iszbwarn(record.write_tagged_class(tag, text, m_version)))
        return zbpass(ZBLOC);
    if (iszbwarn(zb_append_file(m_fileName, text.str())))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBIndex::add_transaction(const std::string& operation, std::string& tagOut, int version)
{
    m_version = version;
    ZBDBTransaction* added = new ZBDBTransaction(m_transaction.size(), operation);
    m_transaction.push_back(added);
    tagOut = added->write_tag();
    int result = write_transaction(*added);
    for (ZBDBTransaction* t : m_transaction)
        if (t->m_status == ZBDBTransaction::E_Undone) {
            t->m_status = ZBDBTransaction::E_Abandoned;
            if (iszbwarn(write_transaction(*t)))
                result = zberrorvalue();
        }
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBIndex::write_transaction(const ZBDBTransaction& transaction)
{
    if (transaction.m_id < m_lastSave)
        m_changedSinceSave = true;
    if (iszbwarn(append(C_TransactionStart, transaction)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBIndex::write_index()
{
    if (iszbwarn(append(C_IndexStart, *this)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBIndex::undo()
{
    for (int i = m_transaction.size() - 1; i >= 0; --i)
        if (m_transaction[i]->m_status == ZBDBTransaction::E_Live) {
            m_transaction[i]->m_status = ZBDBTransaction::E_Undone;
            if (iszbwarn(write_transaction(*m_transaction[i])))
                return zbpass(ZBLOC);
            return ZBErrC_ok;
        }
    return ZBErrC_okNotHandled;
}

int ZBDBIndex::redo()
{
    for (ZBDBTransaction* t : m_transaction)
        if (t->m_status == ZBDBTransaction::E_Undone) {
            t->m_status = ZBDBTransaction::E_Live;
            if (iszbwarn(write_transaction(*t)))
                return zbpass(ZBLOC);
            return ZBErrC_ok;
        }
    return ZBErrC_okNotHandled;
}

int ZBDBIndex::mark_save()
{
    m_lastSave = m_transaction.size();
    m_changedSinceSave = false;
    // A session that logged nothing leaves no index behind.
    if (m_lastSave == 0 && !QFile::exists(QString::fromStdString(m_fileName)))
        return ZBErrC_ok;
    if (iszbwarn(write_index()))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void ZBDBIndex::reset()
{
    m_transaction.clear();
    m_lastSave = 0;
    m_changedSinceSave = false;
}

int ZBDBIndex::load()
{
    reset();
    if (m_fileName.empty() || !QFile::exists(QString::fromStdString(m_fileName)))
        return ZBErrC_ok;
    std::string text;
    {
        std::ifstream file(m_fileName, std::ios::binary);
        if (!file)
            return zbwarnuser(ZBErrC_FileRead, ZBLOC, "Could not read the file %s", m_fileName.c_str());
        std::ostringstream all;
        all << file.rdbuf();
        text = all.str();
    }
    std::istringstream in(text);
    std::string line;
    const int errors = get_zberror().get_nerrors();
    long long goodEnd = 0;
    while (true) {
        const long long recordStart = goodEnd;
        if (!zb_read_line(in, line))
            break;
        if (line.empty()) {
            goodEnd = in.tellg() < 0 ? (long long)text.size() : (long long)in.tellg();
            continue;
        }
        const std::string tag = line[0] == '@' ? zb_stream_in(line.substr(1)) : std::string();
        ZBObject* read = nullptr;
        int result = tag.empty() ? ZBErrC_FileInvalid : ZBObject::read_class(in, read, m_version);
        std::unique_ptr<ZBObject> holder(read);
        const bool complete = !iszbwarn(result) && read && !in.fail();
        if (!complete) {
            // A record cut short by a crash is the last thing in the file;
            // damage anywhere else is damage.
            const size_t next = text.find("\n@", size_t(recordStart));
            while (get_zberror().get_nerrors() > errors)
                get_zberror().clear_last_error();
            if (next == std::string::npos || next + 1 >= text.size()) {
                zb_truncate_file(m_fileName, recordStart);
                break;
            }
            reset();
            return zbwarnuser(ZBErrC_FileRead, ZBLOC, "Could not read the file %s", m_fileName.c_str());
        }
        goodEnd = in.tellg() < 0 ? (long long)text.size() : (long long)in.tellg();
        if (tag == C_TransactionStart) {
            ZBDBTransaction* t = dynamic_cast<ZBDBTransaction*>(read);
            if (!t)
                return zberror(ZBErrC_DynamicCast, ZBLOC, "Could not cast to a ZBDBTransaction.");
            if (t->m_id < 0)
                return zbwarnuser(ZBErrC_FileRead, ZBLOC, "Could not read the file %s", m_fileName.c_str());
            while (m_transaction.size() <= t->m_id)
                m_transaction.push_back(new ZBDBTransaction(m_transaction.size(), std::string()));
            if (t->m_id < m_lastSave)
                m_changedSinceSave = true;
            *m_transaction[t->m_id] = *t;
        } else if (tag == C_IndexStart) {
            ZBDBIndex* index = dynamic_cast<ZBDBIndex*>(read);
            if (!index)
                return zberror(ZBErrC_DynamicCast, ZBLOC, "Could not cast to a ZBDBIndex.");
            m_lastSave = index->m_lastSave;
            m_changedSinceSave = false;
        }
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
