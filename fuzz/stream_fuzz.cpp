// The object stream: any registered class read from text by its name, written
// back, and read again. The second writing must equal the first, or a file
// would change each time it is opened and saved.
#include "fuzz/fuzzsupport.h"

#include "AppTervalonDiary/diary/diary.h"
#include "LibObject/object/zbobject.h"

#include <memory>

using namespace Tervalon;

TERVALON_FUZZ_INIT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Objects of the diary file format are read with its version.
    static const int version = Diary().current_appfileversion();
    const std::string text = Fuzz::text_of(data, size);
    ZBObject* read = nullptr;
    const int result = ZBObject::object_from_string(text, read, version);
    std::unique_ptr<ZBObject> first(read);
    if (iszbwarn(result) || !first) {
        Fuzz::clear_errors();
        return 0;
    }
    std::string written;
    TERVALON_FUZZ_CHECK(!iszbwarn(first->object_to_string(written, version)), "an object read could not be written",
                        text, std::string());
    ZBObject* again = nullptr;
    const int reread = ZBObject::object_from_string(written, again, version);
    std::unique_ptr<ZBObject> second(again);
    TERVALON_FUZZ_CHECK(!iszbwarn(reread) && second, "the written text of an object did not read back", text, written);
    std::string rewritten;
    TERVALON_FUZZ_CHECK(!iszbwarn(second->object_to_string(rewritten, version)), "an object read back could not be written",
                        written, std::string());
    TERVALON_FUZZ_CHECK(written == rewritten, "an object changed on its way through the stream", written, rewritten);
    Fuzz::clear_errors();
    return 0;
}
