// The ".zbo" spec file: imported into an empty database, exported, imported
// into another and exported again; the two exports must be the same text.
#include "fuzz/fuzzsupport.h"

#include "LibDatabase/db/zbdatabase.h"

#include <sstream>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

// The export after an import, or false when the import was refused.
bool import_export(const std::string& text, std::string& exported)
{
    ZBDatabase db;
    db.load("", false);
    std::istringstream in(text);
    std::vector<std::string> names;
    if (iszbwarn(db.import_specs(in, "fuzz.zbo", &names)))
        return false;
    std::ostringstream out;
    db.export_specs(out);
    exported = out.str();
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    std::string exported;
    if (!import_export(text, exported)) {
        Fuzz::clear_errors();
        return 0;
    }
    std::string again;
    TERVALON_FUZZ_CHECK(import_export(exported, again), "an exported spec file did not import", text, exported);
    TERVALON_FUZZ_CHECK(exported == again, "specs changed on their way through a spec file", exported, again);
    Fuzz::clear_errors();
    return 0;
}
