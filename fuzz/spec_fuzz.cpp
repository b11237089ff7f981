// The spec language: one spec text parsed into a database, given to an object
// whose variables are then worked out (every eval, init, auto and constraint
// of the text runs), and that object taken through the stream and back.
#include "fuzz/fuzzsupport.h"

#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbspecparser.h"

#include <memory>

using namespace Tervalon;

TERVALON_FUZZ_INIT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    {
        // The parser alone, as an editor runs it on every change.
        ZBObjectSpec spec("Fuzz");
        ZBSpecParser parser;
        int line = -1;
        parser.parse(text, "fuzz.spec", 0, spec, &line);
    }
    Fuzz::clear_errors();
    ZBDatabase db;
    db.load("", false);
    int specId = -1;
    if (iszbwarn(db.add_objectspec("Fuzz", text, &specId)) || specId < 0) {
        Fuzz::clear_errors();
        return 0;
    }
    ZBDBObject* object = new ZBDBObject();
    if (iszbwarn(db.add_object(object, &db, "Object", "", specId, std::string()))) {
        Fuzz::clear_errors();
        return 0;
    }
    db.apply_objectspec_to_db(*object, specId, true);
    object->update_vars();
    std::string message;
    object->post_validate_values(message);

    std::string written;
    TERVALON_FUZZ_CHECK(!iszbwarn(object->object_to_string(written, 0)), "an object with a spec could not be written",
                        text, std::string());
    ZBObject* read = nullptr;
    const int result = ZBObject::object_from_string(written, read, 0);
    std::unique_ptr<ZBObject> again(read);
    TERVALON_FUZZ_CHECK(!iszbwarn(result) && again, "an object with a spec did not read back", text, written);
    std::string rewritten;
    again->object_to_string(rewritten, 0);
    TERVALON_FUZZ_CHECK(written == rewritten, "the variables of an object changed on their way through the stream",
                        written, rewritten);
    Fuzz::clear_errors();
    return 0;
}
