#include "AppTervalonDiary/cli/clioptions.h"

namespace Tervalon {

bool CliOptions::parse(const std::vector<std::string>& args, const std::set<std::string>& known, std::string& error)
{
    m_positional.clear();
    m_option.clear();
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (word.size() < 3 || word.compare(0, 2, "--") != 0) {
            m_positional.push_back(word);
            continue;
        }
        const std::string name = word.substr(2);
        if (!known.count(name)) {
            error = "unknown option " + word;
            return false;
        }
        if (i + 1 >= args.size()) {
            error = "option " + word + " needs a value";
            return false;
        }
        m_option[name] = args[++i];
    }
    return true;
}

std::string CliOptions::get(const std::string& name, const std::string& fallback) const
{
    auto at = m_option.find(name);
    return at == m_option.end() ? fallback : at->second;
}

} // namespace Tervalon
