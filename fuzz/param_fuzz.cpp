// The user's ".cfg" parameter file. Reading must leave the file as it was
// (byte for byte, even when damaged); a rewrite after one change must keep
// every system value the file held, and leave no temporary file behind.
#include "fuzz/fuzzsupport.h"

#include "LibCore/param/zbparam.h"

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

std::string read_file(const std::string& name)
{
    std::ifstream in(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void write_file(const std::string& name, const std::string& text)
{
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out << text;
}

// The tags that "System=TAG=VALUE" lines of the text name, found without the reader.
std::set<std::string> system_tags(const std::string& text)
{
    std::set<std::string> tags;
    std::istringstream in(text);
    const std::string lead = std::string(ZBParam::C_System) + "=";
    std::string line;
    while (std::getline(in, line)) {
        if (line.compare(0, lead.size(), lead) != 0)
            continue;
        const size_t end = line.find('=', lead.size());
        if (end != std::string::npos)
            tags.insert(line.substr(lead.size(), end - lead.size()));
    }
    return tags;
}

const char* const C_Mark = "FuzzMark";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    const std::string file = Fuzz::scratch_dir() + "/input.cfg";
    write_file(file, text);
    std::set<std::string> tags = system_tags(text);
    tags.erase(C_Mark);
    {
        ZBParam param;
        param.add_config_file(file);
        TERVALON_FUZZ_CHECK(read_file(file) == text, "reading a parameter file changed it", text, read_file(file));
        param.write_user_config();
        TERVALON_FUZZ_CHECK(read_file(file) == text, "a parameter file was rewritten with nothing changed", text,
                            read_file(file));
        Fuzz::clear_errors();

        param.set_system_value(C_Mark, "1");
        const std::string rewritten = read_file(file);
        std::ifstream temporary(file + ".tmp");
        TERVALON_FUZZ_CHECK(!temporary, "a rewrite left its temporary file", text, rewritten);
        ZBParam again;
        again.add_config_file(file);
        TERVALON_FUZZ_CHECK(again.get_system_value(C_Mark) == "1", "a changed value did not read back", text, rewritten);
        for (const std::string& tag : tags) {
            TERVALON_FUZZ_CHECK(param.is_system_value_set(tag) == again.is_system_value_set(tag) &&
                                    param.get_system_value(tag) == again.get_system_value(tag),
                                "a system value changed in a rewrite", text + "\n[" + tag + "]", rewritten);
        }
    }
    Fuzz::clear_errors();
    return 0;
}
