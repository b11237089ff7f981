#include "LibDatabase/db/zbspecparser.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbdbscript.h"
#include "LibCore/error/zberror.h"

#include <cstdarg>

namespace Tervalon {

std::string ZBSpecParser::var_form()
{
    return zb_sprintf("Variable definitions are of the form \"%sVARIABLE[:ASSOC]%s %c VALUE%c\" (where CHILD and ASSOC "
                      "may contain letters, numbers or the \"_\" character)",
                      "$<", ">", C_Assign, C_EndOfLine);
}

std::string ZBSpecParser::child_form()
{
    return zb_sprintf("Child definitions are of the form \"%sCHILD%s %c %sSPEC%s%c\" or \"%sCHILD%s %c %sSPEC%sDEFAULT%s%c\""
                      "(where CHILD, SPEC and DEFAULT may contain letters, numbers or the \"_\" character)",
                      "$[", "]", C_Assign, "${", "}", C_EndOfLine, "$[", "]", C_Assign, "${", "=", "}", C_EndOfLine);
}

int ZBSpecParser::fail(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = zb_vsprintf(format, args);
    va_end(args);
    return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "%s", text.c_str());
}

int ZBSpecParser::parse(const std::string& text, const std::string& fileName, int lineOffset, ZBObjectSpec& spec,
                        int* errorLine)
{
    if (errorLine)
        *errorLine = -1;
    tokenise(text);
    while (!empty()) {
        m_line = get_line_no() + lineOffset;
        m_prefix = zb_sprintf("%s:%d: error", fileName.c_str(), m_line);
        const std::string& first = first_token();
        int result = ZBErrC_ok;
        if (!first.empty() && first[0] == '#') {
            pop_token();
            continue;
        }
        if (first == "inherits") {
            result = parse_inherit(spec);
        } else if (first == "baseOnly" || first == "defunct") {
            const bool base = first == "baseOnly";
            pop_token();
            result = end_of_line();
            if (!iszbwarn(result)) {
                if (base)
                    spec.set_baseonly(true);
                else
                    spec.set_defunct(true);
            }
        } else if (first == "private") {
            result = parse_private(spec);
        } else if (first == "constrain") {
            result = parse_constrain(spec);
        } else if (first == "$" && get_token(1) == "<") {
            result = parse_var(spec);
        } else if (first == "$" && get_token(1) == "[") {
            result = parse_child(spec);
        } else if (first == "@") {
            result = parse_script(spec);
        } else {
            result = fail("%s Unknown symbol \"%s\".\n%s", m_prefix.c_str(), first.c_str(),
                          "A statement is a comment (#), inherits, baseOnly, defunct, private, constrain, a variable "
                          "($<NAME> = \"VALUE\";), a child ($[CHILD] = ${SPEC};) or a script (@Script NAME >\"...\"<;).");
        }
        if (iszbwarn(result)) {
            if (errorLine)
                *errorLine = m_line;
            return result;
        }
    }
    return ZBErrC_ok;
}

int ZBSpecParser::end_of_line()
{
    if (!match(C_EndOfLine))
        return fail("%s Unterminated line (must end with \"%c\").", m_prefix.c_str(), C_EndOfLine);
    return ZBErrC_ok;
}

int ZBSpecParser::read_quoted(std::string& value, bool& present)
{
    present = false;
    if (first_token() != "\"" || size() < 2)
        return first_token() == "\"" ? fail("%s invalid assignment - Missing \"%c\"", m_prefix.c_str(), C_Quote)
                                     : ZBErrC_ok;
    present = true;
    pop_token();
    value = pop_token();
    if (!match(C_Quote))
        return fail("%s invalid assignment - Missing \"%c\"", m_prefix.c_str(), C_Quote);
    return ZBErrC_ok;
}

int ZBSpecParser::parse_inherit(ZBObjectSpec& spec)
{
    const std::string keyword = pop_token();
    if (!is_valid_name() || first_token() == ";")
        return fail("%s The %s keyword should be followed by the name of an object spec.", m_prefix.c_str(), keyword.c_str());
    spec.add_inherited(pop_token());
    return end_of_line();
}

int ZBSpecParser::parse_var(ZBObjectSpec& spec)
{
    pop_token();
    pop_token();
    const std::string form = var_form();
    if (!is_valid_name())
        return fail("%s Invalid variable name.\n%s", m_prefix.c_str(), form.c_str());
    std::string tag = pop_token();
    if (match(':')) {
        if (!is_valid_name())
            return fail("%s Invalid associative name.\n%s", m_prefix.c_str(), form.c_str());
        tag += ":" + pop_token();
    }
    if (!match('>'))
        return fail("%s Unterminated variable name.\n%s", m_prefix.c_str(), form.c_str());
    if (!match(C_Assign))
        return fail("%s missing variable assignment.\n%s", m_prefix.c_str(), form.c_str());
    std::shared_ptr<ZBVarSpec> var(new ZBVarSpec(tag));
    std::string value;
    bool present = false;
    int result = read_quoted(value, present);
    if (iszbwarn(result))
        return result;
    if (!present) {
        const std::string kind = first_token();
        if (kind != "prompt" && kind != "init" && kind != "eval" && kind != "auto")
            return fail("%s invalid value \"%s\" after assignment.", m_prefix.c_str(), kind.c_str());
        pop_token();
        if (!match('('))
            return fail("%s invalid assignment - Missing \"%c\"", m_prefix.c_str(), '(');
        result = read_quoted(value, present);
        if (iszbwarn(result))
            return result;
        if (!present)
            return fail("%s invalid assignment - Missing \"%c\"", m_prefix.c_str(), C_Quote);
        if (!match(')'))
            return fail("%s invalid assignment - Missing \"%c\"", m_prefix.c_str(), ')');
        if (kind == "prompt")
            var->set_prompt(true);
        else if (kind == "eval")
            var->set_derived(true);
        else if (kind == "auto")
            var->set_auto(true);
    }
    var->set_spec(value);
    result = end_of_line();
    if (iszbwarn(result))
        return result;
    spec.add_varspec(var);
    return ZBErrC_ok;
}

int ZBSpecParser::parse_child(ZBObjectSpec& spec)
{
    pop_token();
    pop_token();
    const std::string form = child_form();
    std::unique_ptr<ZBObjectSpecChild> child(new ZBObjectSpecChild());
    child->m_lineNo = m_line;
    if (!is_valid_name())
        return fail("%s Invalid child name.\n%s", m_prefix.c_str(), form.c_str());
    child->m_memberTag = pop_token();
    if (!match(']'))
        return fail("%s Unterminated child name.\n%s", m_prefix.c_str(), form.c_str());
    if (!match(C_Assign))
        return fail("%s missing variable assignment.\n%s", m_prefix.c_str(), form.c_str());
    if (!match("${")) {
        const std::string instead = first_token();
        return fail("%s Missing spec name for child (\"%s\" instead).\n%s", m_prefix.c_str(), instead.c_str(), form.c_str());
    }
    if (!is_valid_name())
        return fail("%s Invalid spec name.\n%s", m_prefix.c_str(), form.c_str());
    child->m_specName = pop_token();
    if (match(C_Assign)) {
        if (!is_valid_name())
            return fail("%s Invalid default spec name.\n%s", m_prefix.c_str(), form.c_str());
        child->m_defaultSpecName = pop_token();
    }
    if (!match('}'))
        return fail("%s Unterminated spec name.\n%s", m_prefix.c_str(), form.c_str());
    if (match('[')) {
        if (match(']')) {
            child->m_array = true;
            child->m_mandatory = false;
        } else if (match("+]")) {
            child->m_array = true;
        } else if (match("^]")) {
            child->m_array = true;
            child->m_mandatory = false;
            child->m_addCreate = true;
        } else if (match("-]")) {
            child->m_mandatory = false;
        } else {
            const std::string token = first_token();
            return fail("%s Unknown symbol \"%s\".\n%s", m_prefix.c_str(), token.c_str(), form.c_str());
        }
    }
    int result = end_of_line();
    if (iszbwarn(result))
        return result;
    spec.add_child(child.release());
    return ZBErrC_ok;
}

int ZBSpecParser::read_var_ref(const std::string& keyword, std::string& name)
{
    if (!match("$<"))
        return fail("%s %s should be followed by a variable name.", m_prefix.c_str(), keyword.c_str());
    if (!is_valid_name())
        return fail("%s Invalid variable name.", m_prefix.c_str());
    name = pop_token();
    if (match(':')) {
        if (!is_valid_name())
            return fail("%s Invalid variable name.", m_prefix.c_str());
        name += ":" + pop_token();
    }
    if (!match('>'))
        return fail("%s Unterminated variable name.", m_prefix.c_str());
    return ZBErrC_ok;
}

int ZBSpecParser::parse_private(ZBObjectSpec& spec)
{
    const std::string keyword = pop_token();
    std::vector<std::string> names;
    do {
        std::string name;
        int result = read_var_ref(keyword, name);
        if (iszbwarn(result))
            return result;
        names.push_back(name);
    } while (first_token() == "$");
    if (!match(C_EndOfLine))
        return fail("%s missing end of line.", m_prefix.c_str());
    for (const std::string& name : names)
        spec.add_private(name);
    return ZBErrC_ok;
}

int ZBSpecParser::parse_constrain(ZBObjectSpec& spec)
{
    const std::string keyword = pop_token();
    std::string name;
    int result = read_var_ref(keyword, name);
    if (iszbwarn(result))
        return result;
    ZBVarSpec* var = spec.get_varspec_by_name(name);
    if (!var)
        return fail("%s Could not find the variable %s.", m_prefix.c_str(), name.c_str());
    if (var->is_sysvalue())
        return fail("%s The variable %s is a system value and cannot have constraints.", m_prefix.c_str(), name.c_str());
    const std::string word = first_token() == ";" ? std::string() : pop_token();
    const int type = ZBVarSpec::str_to_constraint(word);
    if (type < 0)
        return fail("%s Unknown constrain type %s", m_prefix.c_str(), word.c_str());
    std::string param;
    bool present = false;
    result = read_quoted(param, present);
    if (iszbwarn(result))
        return result;
    if (!match(C_EndOfLine))
        return fail("%s missing end of line.", m_prefix.c_str());
    ZBVarSpec trial(*var);
    trial.set_constraint(type, param);
    std::string why;
    if (!trial.constraint_satisfiable(why))
        return fail("%s No value can meet the constraint on %s: %s", m_prefix.c_str(), name.c_str(), why.c_str());
    var->set_constraint(type, param);
    return ZBErrC_ok;
}

int ZBSpecParser::parse_script(ZBObjectSpec& spec)
{
    pop_token();
    const std::string keyword = "@" + first_token();
    if (first_token() != "Script") {
        const std::string token = first_token();
        return fail("%s Unknown symbol \"@%s\".\n%s", m_prefix.c_str(), token.c_str(),
                    "Scripts are of the form \"@Script NAME >\"SCRIPT\"<;\".");
    }
    pop_token();
    if (!is_valid_name())
        return fail("%s %s should be followed by the script name.", m_prefix.c_str(), keyword.c_str());
    std::unique_ptr<ZBDBScript> script(new ZBDBScript());
    script->m_name = pop_token();
    if (first_token() == "@" && get_token(1) == "Shortcut") {
        pop_token();
        pop_token();
        if (first_token() == "\"" || first_token() == ";" || empty())
            return fail("%s %s should be followed by %s SCRIPT %s", m_prefix.c_str(), "@Shortcut KEY", C_BlockStart,
                        C_BlockEnd);
        script->m_shortcut = pop_token();
    }
    if (first_token() != "\"")
        return fail("%s %s should be followed by NAME %s SCRIPT %s", m_prefix.c_str(), keyword.c_str(), C_BlockStart,
                    C_BlockEnd);
    std::string text;
    bool present = false;
    int result = read_quoted(text, present);
    if (iszbwarn(result))
        return result;
    script->m_script = text;
    result = end_of_line();
    if (iszbwarn(result))
        return result;
    spec.remove_script(script->m_name);
    spec.add_script(script.release());
    return ZBErrC_ok;
}

} // namespace Tervalon
