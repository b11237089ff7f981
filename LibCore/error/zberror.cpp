#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrhandler.h"
#include "LibCore/error/zberrhandlerstream.h"
#include "LibCore/time/zbmoment.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <cassert>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <mutex>

namespace Tervalon {

namespace {

struct CoreCode {
    const char* name;
    const char* text;
};

// The core codes in their allocation order; the table starts with these so that
// ZBErrC_ok is 0 whatever order the files of the program are initialised in.
const CoreCode C_CoreCodes[] = {
    {"ZBErrC_ok", "Success."},
    {"ZBErrC_okEndOfFile", "Reached the end of the file."},
    {"ZBErrC_okEndOfRecord", "Reached the end of the current record."},
    {"ZBErrC_okFileChanged", "The file was changed."},
    {"ZBErrC_okFileNotChanged", "The file was not changed."},
    {"ZBErrC_okOK", "The user pressed the OK button."},
    {"ZBErrC_okCancel", "The used pressed the Cancel button."},
    {"ZBErrC_okCreate", "The user chose to create a new file."},
    {"ZBErrC_okEdit", "The used pressed the Edit button."},
    {"ZBErrC_okShutdown", "The user pressed the Shutdown button."},
    {"ZBErrC_okRestart", "The process needs to be restarted."},
    {"ZBErrC_okNext", "The user pressed the Next button."},
    {"ZBErrC_okPrevious", "The user pressed the Previous button."},
    {"ZBErrC_okDelete", "The user pressed the Delete button."},
    {"ZBErrC_okFinished", "The operation is complete."},
    {"ZBErrC_okNotFinished", "The operation is not complete."},
    {"ZBErrC_okSucceeded", "The operation succeeded."},
    {"ZBErrC_okFailed", "The operation failed."},
    {"ZBErrC_okHandled", "The error was handled by one of the error handlers."},
    {"ZBErrC_Error", "Error."},
    {"ZBErrC_Assert", "Assertion failure."},
    {"ZBErrC_StringNull", "The supplied string pointer was null."},
    {"ZBErrC_StringBounds", "The position is outside the length of the string."},
    {"ZBErrC_StringFormat", "The string contains unknown characters."},
    {"ZBErrC_ArrayBounds", "The supplied array index is out of bounds."},
    {"ZBErrC_ArrayFull", "The array is already full."},
    {"ZBErrC_ArrayEmpty", "The array contains no records."},
    {"ZBErrC_ArrayWrongLength", "The array is the wrong length for the current operation."},
    {"ZBErrC_MapCorrupt", "The map refers to a record that does not exist."},
    {"ZBErrC_NullPointer", "Null pointer supplied."},
    {"ZBErrC_NullSingleton", "The requested singleton has not been set up."},
    {"ZBErrC_DynamicCast", "Dynamic cast failed."},
    {"ZBErrC_CaseMissing", "One of the case options is not handled."},
    {"ZBErrC_UnknownReturnCode", "Not a recognised return code from the function."},
    {"ZBErrC_VirtualOverride", "This function should be overridden the derived class."},
    {"ZBErrC_InvalidState", "This object is currently in an invalid state."},
    {"ZBErrC_InvalidValue", "This object has an invalid value."},
    {"ZBErrC_RecordEdited", "There is already a record being edited."},
    {"ZBErrC_RecordNotEdited", "There are no records being edited."},
    {"ZBErrC_FileName", "The supplied file name is invalid."},
    {"ZBErrC_FileOpen", "Could not open the requested file."},
    {"ZBErrC_FileCreate", "Could not create the requested file."},
    {"ZBErrC_FileRename", "Could not rename the requested file."},
    {"ZBErrC_FileDelete", "Could not delete the requested file."},
    {"ZBErrC_FileExists", "The file to write already exists."},
    {"ZBErrC_FileNotExist", "The requested files does not exist."},
    {"ZBErrC_FileAlreadyOpen", "The file to read is already open."},
    {"ZBErrC_FileNotOpen", "The requested file has not been opened yet."},
    {"ZBErrC_FileRead", "Could not read from the file."},
    {"ZBErrC_FileWrite", "Could not write to the file."},
    {"ZBErrC_FileClose", "Could not close the file."},
    {"ZBErrC_FileLineInvalid", "The current line from the file is invalid."},
    {"ZBErrC_FileLineTooShort", "Expected more data on the supplied file line."},
    {"ZBErrC_FileTooShort", "Expected more records in the file."},
    {"ZBErrC_FileInvalid", "The file contained unrecognised information."},
    {"ZBErrC_FileMissingRecord", "The requested record is missing from the file."},
    {"ZBErrC_OutOfMemory", "The system has run out of memory."},
    {"ZBErrC_ProcessStart", "Could not start a new thread or process."},
    {"ZBErrC_EnvVar", "An environment variable has not been set."},
};

std::vector<ZBErrCode>& code_table()
{
    static std::vector<ZBErrCode> table = [] {
        std::vector<ZBErrCode> codes;
        for (const CoreCode& c : C_CoreCodes)
            codes.emplace_back(int(codes.size()), c.name, c.text);
        return codes;
    }();
    return table;
}

std::unique_ptr<ZBError>& error_singleton()
{
    static std::unique_ptr<ZBError> error;
    return error;
}

// Error states ended so far: a thread's records belong to the state they
// were made for, and a state made in place of another starts them afresh,
// even at the same address.
std::atomic<unsigned long long> g_endedStates(0);

// Each thread's records, and the error state they belong to.
struct ThreadRecords {
    const ZBError* m_owner = nullptr;
    unsigned long long m_ended = 0;
    std::vector<ZBErrDetails> m_records;
};
thread_local ThreadRecords t_records;

std::vector<ZBErrDetails>& records_of(const ZBError* error)
{
    ThreadRecords& records = t_records;
    const unsigned long long ended = g_endedStates.load();
    if (records.m_owner != error || records.m_ended != ended) {
        records.m_owner = error;
        records.m_ended = ended;
        records.m_records.clear();
    }
    return records.m_records;
}

// Handlers and streams are shared by every thread; one record at a time.
std::recursive_mutex& handler_lock()
{
    static std::recursive_mutex lock;
    return lock;
}

ZBError::ErrorUiFn g_errorUiFn = nullptr;
ZBError::ActiveWindowFn g_activeWindowFn = nullptr;

} // namespace

int ZBErrC_ok = ZBError::allocate_code("ZBErrC_ok", "Success.");
int ZBErrC_okEndOfFile = ZBError::allocate_code("ZBErrC_okEndOfFile", "");
int ZBErrC_okEndOfRecord = ZBError::allocate_code("ZBErrC_okEndOfRecord", "");
int ZBErrC_okFileChanged = ZBError::allocate_code("ZBErrC_okFileChanged", "");
int ZBErrC_okFileNotChanged = ZBError::allocate_code("ZBErrC_okFileNotChanged", "");
int ZBErrC_okOK = ZBError::allocate_code("ZBErrC_okOK", "");
int ZBErrC_okCancel = ZBError::allocate_code("ZBErrC_okCancel", "");
int ZBErrC_okCreate = ZBError::allocate_code("ZBErrC_okCreate", "");
int ZBErrC_okEdit = ZBError::allocate_code("ZBErrC_okEdit", "");
int ZBErrC_okShutdown = ZBError::allocate_code("ZBErrC_okShutdown", "");
int ZBErrC_okRestart = ZBError::allocate_code("ZBErrC_okRestart", "");
int ZBErrC_okNext = ZBError::allocate_code("ZBErrC_okNext", "");
int ZBErrC_okPrevious = ZBError::allocate_code("ZBErrC_okPrevious", "");
int ZBErrC_okDelete = ZBError::allocate_code("ZBErrC_okDelete", "");
int ZBErrC_okFinished = ZBError::allocate_code("ZBErrC_okFinished", "");
int ZBErrC_okNotFinished = ZBError::allocate_code("ZBErrC_okNotFinished", "");
int ZBErrC_okSucceeded = ZBError::allocate_code("ZBErrC_okSucceeded", "");
int ZBErrC_okFailed = ZBError::allocate_code("ZBErrC_okFailed", "");
int ZBErrC_okHandled = ZBError::allocate_code("ZBErrC_okHandled", "");
int ZBErrC_Error = ZBError::allocate_code("ZBErrC_Error", "");
int ZBErrC_Assert = ZBError::allocate_code("ZBErrC_Assert", "");
int ZBErrC_StringNull = ZBError::allocate_code("ZBErrC_StringNull", "");
int ZBErrC_StringBounds = ZBError::allocate_code("ZBErrC_StringBounds", "");
int ZBErrC_StringFormat = ZBError::allocate_code("ZBErrC_StringFormat", "");
int ZBErrC_ArrayBounds = ZBError::allocate_code("ZBErrC_ArrayBounds", "");
int ZBErrC_ArrayFull = ZBError::allocate_code("ZBErrC_ArrayFull", "");
int ZBErrC_ArrayEmpty = ZBError::allocate_code("ZBErrC_ArrayEmpty", "");
int ZBErrC_ArrayWrongLength = ZBError::allocate_code("ZBErrC_ArrayWrongLength", "");
int ZBErrC_MapCorrupt = ZBError::allocate_code("ZBErrC_MapCorrupt", "");
int ZBErrC_NullPointer = ZBError::allocate_code("ZBErrC_NullPointer", "");
int ZBErrC_NullSingleton = ZBError::allocate_code("ZBErrC_NullSingleton", "");
int ZBErrC_DynamicCast = ZBError::allocate_code("ZBErrC_DynamicCast", "");
int ZBErrC_CaseMissing = ZBError::allocate_code("ZBErrC_CaseMissing", "");
int ZBErrC_UnknownReturnCode = ZBError::allocate_code("ZBErrC_UnknownReturnCode", "");
int ZBErrC_VirtualOverride = ZBError::allocate_code("ZBErrC_VirtualOverride", "");
int ZBErrC_InvalidState = ZBError::allocate_code("ZBErrC_InvalidState", "");
int ZBErrC_InvalidValue = ZBError::allocate_code("ZBErrC_InvalidValue", "");
int ZBErrC_RecordEdited = ZBError::allocate_code("ZBErrC_RecordEdited", "");
int ZBErrC_RecordNotEdited = ZBError::allocate_code("ZBErrC_RecordNotEdited", "");
int ZBErrC_FileName = ZBError::allocate_code("ZBErrC_FileName", "");
int ZBErrC_FileOpen = ZBError::allocate_code("ZBErrC_FileOpen", "");
int ZBErrC_FileCreate = ZBError::allocate_code("ZBErrC_FileCreate", "");
int ZBErrC_FileRename = ZBError::allocate_code("ZBErrC_FileRename", "");
int ZBErrC_FileDelete = ZBError::allocate_code("ZBErrC_FileDelete", "");
int ZBErrC_FileExists = ZBError::allocate_code("ZBErrC_FileExists", "");
int ZBErrC_FileNotExist = ZBError::allocate_code("ZBErrC_FileNotExist", "");
int ZBErrC_FileAlreadyOpen = ZBError::allocate_code("ZBErrC_FileAlreadyOpen", "");
int ZBErrC_FileNotOpen = ZBError::allocate_code("ZBErrC_FileNotOpen", "");
int ZBErrC_FileRead = ZBError::allocate_code("ZBErrC_FileRead", "");
int ZBErrC_FileWrite = ZBError::allocate_code("ZBErrC_FileWrite", "");
int ZBErrC_FileClose = ZBError::allocate_code("ZBErrC_FileClose", "");
int ZBErrC_FileLineInvalid = ZBError::allocate_code("ZBErrC_FileLineInvalid", "");
int ZBErrC_FileLineTooShort = ZBError::allocate_code("ZBErrC_FileLineTooShort", "");
int ZBErrC_FileTooShort = ZBError::allocate_code("ZBErrC_FileTooShort", "");
int ZBErrC_FileInvalid = ZBError::allocate_code("ZBErrC_FileInvalid", "");
int ZBErrC_FileMissingRecord = ZBError::allocate_code("ZBErrC_FileMissingRecord", "");
int ZBErrC_OutOfMemory = ZBError::allocate_code("ZBErrC_OutOfMemory", "");
int ZBErrC_ProcessStart = ZBError::allocate_code("ZBErrC_ProcessStart", "");
int ZBErrC_EnvVar = ZBError::allocate_code("ZBErrC_EnvVar", "");
int ZBErrC_okNotHandled = ZBError::allocate_code("ZBErrC_okNotHandled", "The supplied parameter was not handled in this context.");

// ---------------------------------------------------------------- ZBError

ZBError::ZBError() : ZBError("", "", "") {}

ZBError::ZBError(const std::string& program, const std::string& release, const std::string& vendor)
    : m_program(program), m_release(release), m_vendor(vendor), m_defTime(0), m_errorui(false)
{
    m_defaultMessage[ZBErrAsp_System] = "Error: No details supplied.";
    m_defaultMessage[ZBErrAsp_User] = "Internal program error.";
    for (int i = 0; i < 5; ++i) {
        m_action[i] = E_ActionReturn;
        m_stream[i] = &std::cerr;
    }
}

ZBError::~ZBError()
{
    ++g_endedStates;
    for (ZBErrHandler* handler : m_handler)
        if (handler->is_deletion_managed())
            delete handler;
}

int ZBError::allocate_code(const std::string& name, const std::string& description)
{
    std::vector<ZBErrCode>& table = code_table();
    for (const ZBErrCode& code : table)
        if (code.m_name == name)
            return code.m_code;
    table.emplace_back(int(table.size()), name, description);
    return table.back().m_code;
}

const ZBErrCode& ZBError::get_code(int code)
{
    static const ZBErrCode missing(-1, "MissingCode", "Missing error code.");
    const std::vector<ZBErrCode>& table = code_table();
    if (code < 0 || code >= int(table.size()))
        return missing;
    return table[code];
}

int ZBError::get_ncodes()
{
    return int(code_table().size());
}

int ZBError::report(const ZBErrDetails& details)
{
    std::vector<ZBErrDetails>& records = records_of(this);
    records.insert(records.begin(), details);
    return activate();
}

int ZBError::activate()
{
    std::vector<ZBErrDetails>& records = records_of(this);
    if (records.empty())
        return 0;
    if (handle_error(true, false) == ZBErrC_okHandled)
        return 0;
    const ZBErrDetails& top = records.front();
    int severity = top.get_severity();
    if (severity >= 0 && severity < 5 && m_stream[severity]) {
        std::lock_guard<std::recursive_mutex> lock(handler_lock());
        *m_stream[severity] << top << std::endl;
    }
    return perform_action();
}

// Immediate handlers see a record as it is reported, delayed ones when the top
// of a user action handles it, intermediate ones on every pass. A delayed
// handler is not called on the immediate pass, so a record reaches a log once.
int ZBError::handle_error(bool immediate, bool delayed)
{
    std::vector<ZBErrDetails>& records = records_of(this);
    if (records.empty())
        return ZBErrC_ok;
    std::lock_guard<std::recursive_mutex> lock(handler_lock());
    for (int i = int(m_handler.size()) - 1; i >= 0; --i) {
        ZBErrHandler* handler = m_handler[size_t(i)];
        if (!handler->is_enabled())
            continue;
        bool call = (handler->is_immediate() && immediate) || handler->is_intermediate()
            || (handler->is_delayed() && delayed);
        if (!call)
            continue;
        if (handler->handle(records.front()) == ZBErrC_okHandled) {
            records.erase(records.begin());
            return ZBErrC_okHandled;
        }
    }
    return records.front().get_value();
}

void ZBError::write_log(ZBErrDetails& details)
{
    std::lock_guard<std::recursive_mutex> lock(handler_lock());
    for (int i = int(m_handler.size()) - 1; i >= 0; --i)
        if (m_handler[i]->is_enabled())
            m_handler[i]->log(details);
}

int ZBError::perform_action()
{
    std::vector<ZBErrDetails>& records = records_of(this);
    if (records.empty())
        return 0;
    const ZBErrDetails& top = records.front();
    int action = m_action[top.get_severity()];
    if (action == E_ActionAssert) {
        std::cerr << "Assertion at " << top.get_location() << ": " << top.get_details(ZBErrAsp_System) << std::endl;
        assert(false);
        std::abort();
    } else if (action == E_ActionThrow) {
        throw ZBErrDetails(top);
    }
    return top.get_value();
}

void ZBError::add_handler(ZBErrHandler* handler)
{
    std::lock_guard<std::recursive_mutex> lock(handler_lock());
    if (handler)
        m_handler.push_back(handler);
}

void ZBError::remove_handler(ZBErrHandler* handler)
{
    std::lock_guard<std::recursive_mutex> lock(handler_lock());
    auto it = std::find(m_handler.begin(), m_handler.end(), handler);
    if (it == m_handler.end())
        return;
    m_handler.erase(it);
    if (handler->is_deletion_managed())
        delete handler;
}

void ZBError::set_errorui_fn(ErrorUiFn fn)
{
    g_errorUiFn = fn;
}

void ZBError::set_active_window_fn(ActiveWindowFn fn)
{
    g_activeWindowFn = fn;
}

std::string ZBError::active_window_name()
{
    // Windows belong to the main thread; a background report names none.
    QCoreApplication* app = QCoreApplication::instance();
    if (!g_activeWindowFn || (app && app->thread() != QThread::currentThread()))
        return std::string();
    return g_activeWindowFn();
}

std::ostream* ZBError::get_stream(int severity) const
{
    return severity >= 0 && severity < 5 ? m_stream[severity] : nullptr;
}

ZBErrHandler* ZBError::get_handler(int index) const
{
    return index >= 0 && index < int(m_handler.size()) ? m_handler[size_t(index)] : nullptr;
}

const ZBErrDetails* ZBError::get_error(int index) const
{
    const std::vector<ZBErrDetails>& records = records_of(this);
    return index >= 0 && index < int(records.size()) ? &records[size_t(index)] : nullptr;
}

void ZBError::setup_cli(std::ostream* stream)
{
    set_stream(nullptr, ZBErrSev_All);
    set_action(E_ActionReturn, ZBErrSev_All);
    m_errorui = false;
    ZBErrHandlerStream* handler = new ZBErrHandlerStream(stream, false, false, true, true);
    handler->set_aspect(ZBErrAsp_System);
    handler->set_one_line(true);
    add_handler(handler);
}

int ZBError::get_nerrors() const
{
    return int(records_of(this).size());
}

ZBErrDetails* ZBError::top()
{
    std::vector<ZBErrDetails>& records = records_of(this);
    return records.empty() ? nullptr : &records.front();
}

const ZBErrDetails* ZBError::top() const
{
    std::vector<ZBErrDetails>& records = records_of(this);
    return records.empty() ? nullptr : &records.front();
}

void ZBError::clear_last_error()
{
    std::vector<ZBErrDetails>& records = records_of(this);
    if (!records.empty())
        records.erase(records.begin());
}

void ZBError::clear_all()
{
    std::vector<ZBErrDetails>& records = records_of(this);
    records.clear();
}

int ZBError::print_and_clear(std::ostream& out, const std::string& prefix)
{
    std::vector<ZBErrDetails>& records = records_of(this);
    const int count = int(records.size());
    for (auto it = records.rbegin(); it != records.rend(); ++it) {
        std::string message = it->get_message();
        std::replace(message.begin(), message.end(), '\n', ' ');
        out << prefix << message << "\n";
    }
    out.flush();
    records.clear();
    return count;
}

void ZBError::set_stream(std::ostream* stream, int severity)
{
    for (int i = 0; i < 5; ++i)
        if (severity == ZBErrSev_All || severity == i)
            m_stream[i] = stream;
}

void ZBError::set_action(int action, int severity)
{
    for (int i = 0; i < 5; ++i)
        if (severity == ZBErrSev_All || severity == i)
            m_action[i] = action;
}

int ZBError::get_action(int severity) const
{
    return severity >= 0 && severity < 5 ? m_action[severity] : E_ActionReturn;
}

void ZBError::dump(std::ostream& out, int indent) const
{
    std::vector<ZBErrDetails>& records = records_of(this);
    std::string pad(indent * 4, ' ');
    out << pad << "ZBError\n" << pad << "    program : " << m_program << "\n" << pad << "    release : " << m_release
        << "\n" << pad << "    vendor  : " << m_vendor << "\n";
    for (size_t i = 0; i < records.size(); ++i)
        records[i].dump(out, indent + 1);
}

ZBError& get_zberror()
{
    std::unique_ptr<ZBError>& error = error_singleton();
    if (!error)
        error.reset(new ZBError());
    return *error;
}

void set_zberror(ZBError* error)
{
    error_singleton().reset(error);
}

// ---------------------------------------------------------------- free functions

bool zb_current_severity_above(int level)
{
    const ZBErrDetails* top = get_zberror().top();
    return top && top->get_severity() > level;
}

int zberrorvalue()
{
    const ZBErrDetails* top = get_zberror().top();
    return top ? top->get_value() : 0;
}

std::string zb_source_relative(const std::string& path, const std::string& root)
{
    std::string relative = path;
    if (!root.empty() && relative.compare(0, root.size() + 1, root + "/") == 0)
        return relative.substr(root.size() + 1);
    // A compiler cache with a base folder hands the compiler paths relative to
    // the build folder ("../../LibCore/..."): what is left after the climb is a
    // tail of the absolute path, so the root's own tail is taken off too.
    size_t climbed = 0;
    while (relative.compare(climbed, 3, "../") == 0 || relative.compare(climbed, 2, "./") == 0)
        climbed += relative[climbed + 1] == '.' ? 3 : 2;
    if (climbed == 0 && !relative.empty() && relative[0] == '/')
        return relative;
    relative.erase(0, climbed);
    for (size_t slash = root.find('/'); slash != std::string::npos; slash = root.find('/', slash + 1)) {
        const std::string tail = root.substr(slash + 1) + "/";
        if (tail.size() > 1 && relative.compare(0, tail.size(), tail) == 0)
            return relative.substr(tail.size());
    }
    return relative;
}

std::string zblocation(const char* file, int line)
{
    static const std::string root = TERVALON_SOURCE_ROOT;
    return zb_source_relative(file ? file : "", root) + ":" + std::to_string(line);
}

std::string zb_vsprintf(const char* format, va_list args)
{
    char buffer[8192];
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(buffer, sizeof buffer, format, copy);
    va_end(copy);
    if (n < 0)
        return std::string();
    if (n < int(sizeof buffer))
        return std::string(buffer, n);
    std::string big(size_t(n) + 1, '\0');
    std::vsnprintf(&big[0], big.size(), format, args);
    big.resize(size_t(n));
    return big;
}

std::string zb_sprintf(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = zb_vsprintf(format, args);
    va_end(args);
    return text;
}

namespace {
// A record made from a text; systemText, when not empty, stands for the
// developer's words instead of the default, without changing the default
// that other threads read.
int report_text(ZBError& error, int code, int severity, const std::string& location, const std::string& text,
                ZBErrAspect aspect, long long micros, const std::string& systemText)
{
    ZBErrDetails details;
    details.populate_error(code, ZBErrSeverity(severity < 0 || severity > 4 ? ZBErrSev_Error : severity));
    details.set_details(ZBErrAsp_System,
                        systemText.empty() ? error.get_default_message(ZBErrAsp_System) : systemText);
    details.set_details(ZBErrAsp_User, error.get_default_message(ZBErrAsp_User));
    details.set_details(aspect, text);
    if (micros == 0)
        micros = error.get_deftime() != 0 ? error.get_deftime() : ZBMoment::now().to_micros();
    details.set_time(micros);
    details.set_location(location);
    std::string window = ZBError::active_window_name();
    if (!window.empty())
        details.append_extra("Active Window", window);
    if (details.get_severity() == ZBErrSev_Log) {
        error.write_log(details);
        return details.get_value();
    }
    error.report(details);
    return details.get_value();
}
} // namespace

int zbsysreport(int code, int severity, const std::string& location, const std::string& text, ZBErrAspect aspect,
                long long micros)
{
    return report_text(get_zberror(), code, severity, location, text, aspect, micros, std::string());
}

#define ZB_FORMAT_TEXT(text, format)                                                                                   \
    va_list args;                                                                                                      \
    va_start(args, format);                                                                                            \
    std::string text = zb_vsprintf(format, args);                                                                      \
    va_end(args)

int zberror(int code, const std::string& location, const char* format, ...)
{
    ZB_FORMAT_TEXT(text, format);
    return zbsysreport(code, ZBErrSev_Error, location, text);
}

int zberror_and_handle(int code, const std::string& location, const char* format, ...)
{
    ZB_FORMAT_TEXT(text, format);
    int value = zbsysreport(code, ZBErrSev_Error, location, text);
    zbhandle_error(value, 2);
    return value;
}

int zbwarning(int code, const std::string& location, const char* format, ...)
{
    ZB_FORMAT_TEXT(text, format);
    return zbsysreport(code, ZBErrSev_Warning, location, text);
}

int zbwarnuser(int code, const std::string& location, const char* format, ...)
{
    ZB_FORMAT_TEXT(text, format);
    // The same words serve the developer too, rather than the default "no details".
    return report_text(get_zberror(), code, ZBErrSev_UserWarning, location, text, ZBErrAsp_User, 0, text);
}

int zblog(int code, const std::string& location, const char* format, ...)
{
    ZB_FORMAT_TEXT(text, format);
    return zbsysreport(code, ZBErrSev_Log, location, text);
}

int zblog(const std::string& location, const char* format, ...)
{
    ZB_FORMAT_TEXT(text, format);
    return zbsysreport(ZBErrC_ok, ZBErrSev_Log, location, text);
}

int zbuserinfo_set(const char* format, ...)
{
    ZB_FORMAT_TEXT(text, format);
    ZBErrDetails* top = get_zberror().top();
    if (!top)
        return 0;
    top->set_details(ZBErrAsp_User, text);
    return top->get_value();
}

int zbhandle_error(int value, int severityOfDialog)
{
    if (value >= 0 && ZBErrDetails::compute_severity(value) == 0)
        return 0;
    ZBError& error = get_zberror();
    if (!error.top())
        return 0;
    int severity = value >= 0 ? ZBErrDetails::compute_severity(value) : error.top()->get_severity();
    if (error.handle_error(false, true) != ZBErrC_okHandled && error.get_errorui() && g_errorUiFn && error.top()) {
        // The caller's context sets a floor: a warning that stops the start of the
        // program is shown as an error.
        int shown = std::max(int(error.top()->get_severity()), std::min(severityOfDialog, int(ZBErrSev_Fatal)));
        g_errorUiFn(*error.top(), shown);
    }
    error.clear_all();
    return severity;
}

int zbusererror_handle(bool delayed)
{
    static thread_local bool inside = false;
    if (inside)
        return 0;
    inside = true;
    int value = get_zberror().handle_error(false, delayed);
    inside = false;
    return value;
}

void zbappend_location(const std::string& location)
{
    if (ZBErrDetails* top = get_zberror().top())
        top->append_location(location);
}

int zbpass(const std::string& location)
{
    zbappend_location(location);
    return zberrorvalue();
}

void handle_last_error(int value)
{
    if (iszberr(value) && get_zberror().top()) {
        get_zberror().handle_error(false, true);
        get_zberror().clear_last_error();
    }
}

void handle_last_warning(int value)
{
    if (iszbwarn(value) && get_zberror().top()) {
        get_zberror().handle_error(false, true);
        get_zberror().clear_last_error();
    }
}

void clear_last_error()
{
    get_zberror().clear_last_error();
}

int zbassert_failed(const char* condition, const std::string& location)
{
    return zberror(ZBErrC_Assert, location, "Assertion Failed: ( %s )", condition);
}

int zb_exit_status(int value)
{
    int severity = value < 0 ? (get_zberror().top() ? get_zberror().top()->get_severity() : 0)
                             : ZBErrDetails::compute_severity(value);
    if (severity < ZBErrSev_Error)
        return 0;
    int code = value < 0 ? (get_zberror().top() ? get_zberror().top()->get_code() : 0) : ZBErrDetails::compute_code(value);
    return severity >= ZBErrSev_Fatal || code == ZBErrC_Assert ? 2 : 1;
}

} // namespace Tervalon
