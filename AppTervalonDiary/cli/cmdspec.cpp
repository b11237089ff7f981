#include "AppTervalonDiary/cli/cmdspec.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbdbparser.h"
#include "LibCore/error/zberror.h"

#include <QFileInfo>

#include <fstream>
#include <ostream>
#include <sstream>

namespace Tervalon {

namespace {

std::string first_line(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

void list_spec(std::ostream& out, const ZBObjectSpec& spec)
{
    out << spec.get_name();
    for (const std::string& base : spec.get_inherited())
        out << " inherits " << base;
    if (spec.is_base_only())
        out << " (base only)";
    if (spec.is_defunct())
        out << " (defunct)";
    if (!spec.is_parsed())
        out << " (has errors)";
    out << "\n";
    for (int i = 0; i < spec.get_nvarspecs(); ++i) {
        const ZBVarSpec* var = spec.get_varspec_by_index(i);
        const char* kind = var->is_auto() ? "auto" : var->is_prompt() ? "prompt" : var->is_derived() ? "eval" : "init";
        out << "  $<" << var->get_tag() << "> " << kind << " \"" << var->get_spec() << "\"";
        if (var->get_constraint() > 0)
            out << " " << ZBVarSpec::constraint_to_str(var->get_constraint())
                << (var->get_constraint_param().empty() ? "" : " \"" + var->get_constraint_param() + "\"");
        if (var->is_private())
            out << " private";
        out << "\n";
    }
    for (int i = 0; i < spec.get_nchildren(); ++i) {
        const ZBObjectSpecChild* child = spec.get_child_by_index(i);
        out << "  $[" << child->m_memberTag << "] ${" << child->m_specName
            << (child->m_defaultSpecName.empty() ? "" : "=" + child->m_defaultSpecName) << "}"
            << (child->m_array ? (child->m_addCreate ? "[^]" : child->m_mandatory ? "[+]" : "[]")
                               : (child->m_mandatory ? "" : "[-]"))
            << "\n";
    }
}

} // namespace

int CmdSpec::run(CliContext& context)
{
    if (!context.args.empty() && (context.args[0] == "--help" || context.args[0] == "-h")) {
        context.out << "Usage: tervalon " << usage() << "\n" << summary() << std::endl;
        return 0;
    }
    if (!context.args.empty() && context.args[0] == "check") {
        if (context.args.size() != 2)
            return usage_error(context, *this, "check takes one spec file");
        return run_check(context, context.args[1]);
    }
    return CliFileCommand::run(context);
}

int CmdSpec::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>&)
{
    for (const std::string& error : db.get_spec_errors())
        context.err << "tervalon: " << first_line(error) << "\n";
    for (int i = 0; i < db.get_nobjectspecs(); ++i)
        list_spec(context.out, *db.get_objectspec_by_index(i));
    context.out.flush();
    context.err.flush();
    get_zberror().clear_all();
    return db.get_spec_errors().empty() ? 0 : 1;
}

// A file whose first definition line is the ".zbo" separator is read as a set
// of specs; any other text is one spec named after the file.
int CmdSpec::run_check(CliContext& context, const std::string& specFile)
{
    std::ifstream in(specFile, std::ios::binary);
    if (!in) {
        context.err << "tervalon: Could not open the file " << specFile << std::endl;
        return 1;
    }
    std::stringstream buffer;
    buffer << in.rdbuf();
    const std::string text = buffer.str();
    ZBDatabase db;
    int result = db.load("", false);
    if (iszbwarn(result))
        return report_failure(context, result);
    const bool isSet = text.find(ZBObjectSpec::C_ExportSpecSep) != std::string::npos;
    int status = 0;
    if (isSet) {
        std::istringstream stream(text);
        result = db.import_specs(stream, specFile);
        if (iszbwarn(result) && db.get_spec_errors().empty())
            return report_failure(context, result);
    } else {
        std::string name = QFileInfo(QString::fromStdString(specFile)).completeBaseName().toStdString();
        if (!ZBDBParser::is_valid_name(name))
            name = "Spec";
        ZBObjectSpec* spec = new ZBObjectSpec(name, text);
        spec->set_file_info(specFile, 1);
        result = db.add_object(spec, &db, ZBDatabase::C_SpecTag, std::string(), -1, std::string());
        if (iszbwarn(result)) {
            delete spec; // refused, so still ours
            return report_failure(context, result);
        }
        db.parse_objectspecs(false);
    }
    for (const std::string& error : db.get_spec_errors()) {
        context.err << first_line(error) << "\n";
        status = 1;
    }
    get_zberror().clear_all();
    if (status == 0)
        context.out << specFile << ": " << db.get_nobjectspecs() << (db.get_nobjectspecs() == 1 ? " spec" : " specs")
                    << ", no errors\n";
    context.out.flush();
    context.err.flush();
    db.unload();
    return status;
}

} // namespace Tervalon
