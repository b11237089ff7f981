#pragma once

#include "LibCore/error/zberrcode.h"
#include "LibCore/error/zberrdetails.h"

#include <cstdarg>
#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBErrHandler;
class ZBLog;

// The process-wide error state: the code table, the handlers and what to do
// per severity, and a stack of records (newest first) for each thread, so that
// what a background pass reports never mixes with the main thread's records.
// Reached through get_zberror(); a default one exists before start-up so that
// reporting never fails. Handlers and streams are called under one lock, a
// record at a time; the settings are made before other threads start.
class ZBError {
public:
    enum ZBErrActions { E_ActionAssert = 0, E_ActionThrow = 1, E_ActionReturn = 2 };

    // Hooks through which the widget layer joins in without this library
    // depending on it: the error dialog, and the name of the active window.
    using ErrorUiFn = void (*)(const ZBErrDetails& details, int severity);
    using ActiveWindowFn = std::string (*)();
    static void set_errorui_fn(ErrorUiFn fn);
    static void set_active_window_fn(ActiveWindowFn fn);
    static std::string active_window_name();

    ZBError();
    ZBError(const std::string& program, const std::string& release, const std::string& vendor);
    virtual ~ZBError();

    // The code table. Codes are positions, allocated by name while the process starts.
    static int allocate_code(const std::string& name, const std::string& description);
    static const ZBErrCode& get_code(int code);
    static int get_ncodes();

    int report(const ZBErrDetails& details);
    int activate();
    int handle_error(bool immediate, bool delayed);
    void write_log(ZBErrDetails& details);
    int perform_action();

    void add_handler(ZBErrHandler* handler);
    void remove_handler(ZBErrHandler* handler);
    int get_nhandlers() const { return int(m_handler.size()); }

    // The calling thread's records.
    int get_nerrors() const;
    ZBErrDetails* top();
    const ZBErrDetails* top() const;
    void clear_last_error();
// Exit status of a program for a final value: 0 below severity 3, 1 for an
// error, 2 for a fatal error or a failed assertion.
int zb_exit_status(int value);
    void clear_all();
    // For a terminal: one line per record, oldest first, each message's line
    // feeds turned to blanks; then the stack is empty. Returns how many.
    int print_and_clear(std::ostream& out, const std::string& prefix);

    void set_stream(std::ostream* stream, int severity);
    void set_action(int action, int severity);
    int get_action(int severity) const;
    void set_errorui(bool on) { m_errorui = on; }
    bool get_errorui() const { return m_errorui; }
    void set_deftime(long long micros) { m_defTime = micros; }
    long long get_deftime() const { return m_defTime; }
    void set_default_message(ZBErrAspect aspect, const std::string& text) { m_defaultMessage[aspect] = text; }
    std::ostream* get_stream(int severity) const;
    const std::string& get_release() const { return m_release; }
    const std::string& get_vendor() const { return m_vendor; }
    ZBErrHandler* get_handler(int index) const;
    const ZBErrDetails* get_error(int index) const;

    // The command-line program: no dialog, nothing written as records are
    // reported, and one line with the system's text on the stream for each
    // record that reaches the top of the program unhandled.
    void setup_cli(std::ostream* stream);
    const std::string& get_default_message(ZBErrAspect aspect) const { return m_defaultMessage[aspect]; }
    const std::string& get_program() const { return m_program; }

    void dump(std::ostream& out, int indent) const;

private:
    std::string m_program;
    std::string m_release;
    std::string m_vendor;
    long long m_defTime;
    std::string m_defaultMessage[2];
    int m_action[5];
    std::ostream* m_stream[5];
    std::vector<ZBErrHandler*> m_handler;
    bool m_errorui;
};

ZBError& get_zberror();
// Replaces the singleton (the frame does this at start-up); takes ownership.
void set_zberror(ZBError* error);

// Core codes, in allocation order. The numbers are given out at start-up.
extern int ZBErrC_ok;
extern int ZBErrC_okEndOfFile;
extern int ZBErrC_okEndOfRecord;
extern int ZBErrC_okFileChanged;
extern int ZBErrC_okFileNotChanged;
extern int ZBErrC_okOK;
extern int ZBErrC_okCancel;
extern int ZBErrC_okCreate;
extern int ZBErrC_okEdit;
extern int ZBErrC_okShutdown;
extern int ZBErrC_okRestart;
extern int ZBErrC_okNext;
extern int ZBErrC_okPrevious;
extern int ZBErrC_okDelete;
extern int ZBErrC_okFinished;
extern int ZBErrC_okNotFinished;
extern int ZBErrC_okSucceeded;
extern int ZBErrC_okFailed;
extern int ZBErrC_okHandled;
extern int ZBErrC_Error;
extern int ZBErrC_Assert;
extern int ZBErrC_StringNull;
extern int ZBErrC_StringBounds;
extern int ZBErrC_StringFormat;
extern int ZBErrC_ArrayBounds;
extern int ZBErrC_ArrayFull;
extern int ZBErrC_ArrayEmpty;
extern int ZBErrC_ArrayWrongLength;
extern int ZBErrC_MapCorrupt;
extern int ZBErrC_NullPointer;
extern int ZBErrC_NullSingleton;
extern int ZBErrC_DynamicCast;
extern int ZBErrC_CaseMissing;
extern int ZBErrC_UnknownReturnCode;
extern int ZBErrC_VirtualOverride;
extern int ZBErrC_InvalidState;
extern int ZBErrC_InvalidValue;
extern int ZBErrC_RecordEdited;
extern int ZBErrC_RecordNotEdited;
extern int ZBErrC_FileName;
extern int ZBErrC_FileOpen;
extern int ZBErrC_FileCreate;
extern int ZBErrC_FileRename;
extern int ZBErrC_FileDelete;
extern int ZBErrC_FileExists;
extern int ZBErrC_FileNotExist;
extern int ZBErrC_FileAlreadyOpen;
extern int ZBErrC_FileNotOpen;
extern int ZBErrC_FileRead;
extern int ZBErrC_FileWrite;
extern int ZBErrC_FileClose;
extern int ZBErrC_FileLineInvalid;
extern int ZBErrC_FileLineTooShort;
extern int ZBErrC_FileTooShort;
extern int ZBErrC_FileInvalid;
extern int ZBErrC_FileMissingRecord;
extern int ZBErrC_OutOfMemory;
extern int ZBErrC_ProcessStart;
extern int ZBErrC_EnvVar;
// Allocated after the core table by the parameter store.
extern int ZBErrC_okNotHandled;

// Value tests. A negative value means "ask the current error". Inline: every
// call of the program passes its result through one, mostly an ok value.
bool zb_current_severity_above(int level);
inline bool iszberr(int value)
{
    return value < 0 ? zb_current_severity_above(2) : value >= 300000 && value <= 499999;
}
inline bool iszbwarn(int value)
{
    return value < 0 ? zb_current_severity_above(0) : value >= 100000 && value <= 499999;
}
int zberrorvalue();

// "LibCore/error/zberror.cpp:12": the source file from the repository's root,
// whatever paths the build handed the compiler.
std::string zblocation(const char* file, int line);
// The path below root, for an absolute path under it or a path that climbs out
// of a build folder; other paths are returned as they are.
std::string zb_source_relative(const std::string& path, const std::string& root);
#define ZBLOC ::Tervalon::zblocation(__FILE__, __LINE__)

std::string zb_sprintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string zb_vsprintf(const char* format, va_list args);

// A time of 0 means "when reported" (or the fixed default time, if one is set).
int zbsysreport(int code, int severity, const std::string& location, const std::string& text,
                ZBErrAspect aspect = ZBErrAsp_System, long long micros = 0);
int zberror(int code, const std::string& location, const char* format, ...) __attribute__((format(printf, 3, 4)));
int zberror_and_handle(int code, const std::string& location, const char* format, ...) __attribute__((format(printf, 3, 4)));
int zbwarning(int code, const std::string& location, const char* format, ...) __attribute__((format(printf, 3, 4)));
int zbwarnuser(int code, const std::string& location, const char* format, ...) __attribute__((format(printf, 3, 4)));
// Severity-0 reports go to the handlers' logs only; the stack is not touched.
// zblog() without arguments is the named-log singleton (LibCore/log/zblog.h).
int zblog(int code, const std::string& location, const char* format, ...) __attribute__((format(printf, 3, 4)));
int zblog(const std::string& location, const char* format, ...) __attribute__((format(printf, 2, 3)));
ZBLog& zblog();
int zbuserinfo_set(const char* format, ...) __attribute__((format(printf, 1, 2)));
int zbhandle_error(int value, int severityOfDialog);
int zbusererror_handle(bool delayed);
void zbappend_location(const std::string& location);
// Appends the caller's location to the current record and returns its value.
int zbpass(const std::string& location);
void handle_last_error(int value);
void handle_last_warning(int value);
void clear_last_error();
// Exit status of a program for a final value: 0 below severity 3, 1 for an
// error, 2 for a fatal error or a failed assertion.
int zb_exit_status(int value);

// Assertions report "Assertion Failed: " and the condition.
int zbassert_failed(const char* condition, const std::string& location);
#define ZBASSERT(cond) ((cond) ? 0 : ::Tervalon::zbassert_failed(#cond, ZBLOC))

} // namespace Tervalon
