#include "LibCore/textstr/zbregexp.h"
#include "LibCore/error/zberror.h"

#include <QRegularExpression>

#include <vector>

namespace Tervalon {

bool ZBRegExp::match_filespec(const std::string& pattern, const std::string& text)
{
    // Iterative wildcard match with one backtrack point: linear in practice and
    // never exponential, whatever the number of stars. Works on code points so
    // that '?' takes a whole UTF-8 character.
    const std::u32string p = QString::fromStdString(pattern).toLower().toStdU32String();
    const std::u32string t = QString::fromStdString(text).toLower().toStdU32String();
    size_t pi = 0;
    size_t ti = 0;
    size_t star = std::u32string::npos;
    size_t mark = 0;
    while (ti < t.size()) {
        if (pi < p.size() && (p[pi] == U'?' || p[pi] == t[ti])) {
            ++pi;
            ++ti;
        } else if (pi < p.size() && p[pi] == U'*') {
            star = pi++;
            mark = ti;
        } else if (star != std::u32string::npos) {
            pi = star + 1;
            ti = ++mark;
        } else {
            return false;
        }
    }
    while (pi < p.size() && p[pi] == U'*')
        ++pi;
    return pi == p.size();
}

bool ZBRegExp::is_valid_regex(const std::string& pattern, std::string* message)
{
    QRegularExpression re(QString::fromStdString(pattern));
    if (message)
        *message = re.isValid() ? std::string() : re.errorString().toStdString();
    return re.isValid();
}

bool ZBRegExp::match_regex(const std::string& pattern, const std::string& text, bool noCase, bool whole)
{
    QString source = QString::fromStdString(pattern);
    if (whole)
        source = QRegularExpression::anchoredPattern(source);
    QRegularExpression::PatternOptions options = QRegularExpression::UseUnicodePropertiesOption;
    if (noCase)
        options |= QRegularExpression::CaseInsensitiveOption;
    QRegularExpression re(source, options);
    if (!re.isValid()) {
        zbwarning(ZBErrC_InvalidValue, ZBLOC, "Invalid regular expression \"%s\": %s", pattern.c_str(),
                  re.errorString().toStdString().c_str());
        return false;
    }
    return re.match(QString::fromStdString(text)).hasMatch();
}

} // namespace Tervalon
