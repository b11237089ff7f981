#include "AppTervalonDiary/cli/cmdshell.h"
#include "AppTervalonDiary/cli/clifilecommand.h"
#include "AppTervalonDiary/cli/clisession.h"
#include "AppTervalonDiary/cli/tervaloncli.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbindex.h"

#include <iostream>
#include <sstream>

namespace Tervalon {

CmdShell::CmdShell(const TervalonCli& cli, std::istream* in) : m_cli(cli), m_in(in) {}

std::vector<std::string> CmdShell::split_line(const std::string& line, std::string& error)
{
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    char quote = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\' && i + 1 < line.size()) {
            word += line[++i];
            inWord = true;
        } else if (quote) {
            if (c == quote)
                quote = 0;
            else
                word += c;
        } else if (c == '"' || c == '\'') {
            quote = c;
            inWord = true;
        } else if (c == ' ' || c == '\t' || c == '\r') {
            if (inWord)
                words.push_back(word);
            word.clear();
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (quote)
        error = std::string("no closing ") + quote;
    if (inWord)
        words.push_back(word);
    return words;
}

namespace {

const char* status_name(int status)
{
    switch (status) {
    case ZBDBTransaction::E_Live:
        return "done";
    case ZBDBTransaction::E_Undone:
        return "undone";
    default:
        return "abandoned";
    }
}

} // namespace

int CmdShell::run_line(CliContext& context, CliSession& session, const std::vector<std::string>& words, bool& quit)
{
    ZBDatabase& db = session.db();
    const std::string& word = words.front();
    const std::vector<std::string> args(words.begin() + 1, words.end());
    if (word == "quit" || word == "exit") {
        quit = true;
        return session.save(context);
    }
    if (word == "save") {
        if (args.size() == 1 && args[0] == "--force")
            db.accept_file_change();
        else if (!args.empty())
            return usage_error(context, *this, "save takes only --force");
        return session.save(context);
    }
    if (word == "snapshot") {
        int result = db.save_snapshot(false);
        if (iszbwarn(result))
            return report_failure(context, result);
        context.out << "Snapshot saved as " << ZBDatabase::get_scratch_name(db.get_filename()) << ".bk0" << std::endl;
        return 0;
    }
    if (word == "undo" || word == "redo") {
        const bool undo = word == "undo";
        const std::string operation = undo ? db.get_undo_operation() : db.get_redo_operation();
        if (undo ? !db.can_undo() : !db.can_redo()) {
            context.err << "tervalon: nothing to " << word << "." << std::endl;
            return 1;
        }
        int result = undo ? db.undo() : db.redo();
        if (iszbwarn(result))
            return report_failure(context, result);
        context.out << (undo ? "Undone: " : "Redone: ") << operation << std::endl;
        return 0;
    }
    if (word == "history") {
        const ZBDBIndex& index = db.get_index();
        for (int id = 0; id < index.size(); ++id) {
            const ZBDBTransaction* t = index.get_transaction(id);
            context.out << id << "\t" << status_name(t->m_status) << "\t" << t->m_operation << "\n";
        }
        context.out.flush();
        return 0;
    }
    if (word == "help") {
        context.out << "Commands: undo, redo, history, save [--force], snapshot, quit, and the file commands "
                       "without FILE:";
        for (const CliCommand* command : m_cli.commands())
            if (dynamic_cast<const CliFileCommand*>(command))
                context.out << " " << command->name();
        context.out << std::endl;
        return 0;
    }
    CliFileCommand* command = dynamic_cast<CliFileCommand*>(m_cli.find_command(word));
    if (!command) {
        context.err << "tervalon: unknown command '" << word << "'" << std::endl;
        return 1;
    }
    CliContext sub{args, context.out, context.err};
    int status = command->run_open(sub, db, args);
    if (status != 0) {
        // What the failed line changed goes: the next step starts from the last whole one.
        int result = db.discard_changes();
        if (iszbwarn(result))
            report_failure(context, result);
    }
    return status;
}

int CmdShell::run(CliContext& context)
{
    std::vector<std::string> args = context.args;
    const bool discard = CliSession::take_discard_option(args);
    if (args.size() != 1)
        return usage_error(context, *this, args.empty() ? "no file given" : "wrong number of arguments");
    CliSession session;
    int status = session.open(context, args[0], true, discard);
    if (status != 0)
        return status;
    std::istream& in = m_in ? *m_in : std::cin;
    std::string line;
    int lineNo = 0;
    int failures = 0;
    bool quit = false;
    while (!quit && std::getline(in, line)) {
        ++lineNo;
        std::string error;
        const std::vector<std::string> words = split_line(line, error);
        if (words.empty() || words.front()[0] == '#')
            continue;
        // The line's own messages carry its number.
        std::ostringstream err;
        CliContext lineContext{words, context.out, err};
        int result = 1;
        if (!error.empty())
            err << "tervalon: " << error << std::endl;
        else
            result = run_line(lineContext, session, words, quit);
        std::istringstream messages(err.str());
        std::string message;
        while (std::getline(messages, message)) {
            if (message.compare(0, 10, "tervalon: ") == 0)
                message.erase(0, 10);
            context.err << "tervalon shell: line " << lineNo << ": " << message << "\n";
        }
        context.err.flush();
        if (result == 0) {
            context.out << "ok " << lineNo << std::endl;
        } else {
            ++failures;
            if (err.str().empty())
                context.err << "tervalon shell: line " << lineNo << ": failed" << std::endl;
        }
    }
    if (!quit && session.save(context) != 0)
        ++failures;
    session.close();
    return failures == 0 ? 0 : 1;
}

} // namespace Tervalon
