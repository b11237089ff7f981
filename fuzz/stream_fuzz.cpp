// The object stream: any registered class read from text by its name, written
// back, and read again. The second writing must equal the first, or a file
// would change each time it is opened and saved. Writing drops NUL characters
// (so a tag holding one may become another tag); for such input the second
// and third writings must agree instead.
#include "fuzz/fuzzsupport.h"

#include "AppTervalonDiary/diary/diary.h"
#include "LibObject/object/zbobject.h"

#include <memory>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

// Objects of the diary file format are read with its version.
int version()
{
    static const int value = Diary().current_appfileversion();
    return value;
}

// The text of the object that text holds, read and written once; false when refused.
bool read_and_write(const std::string& text, std::string& written)
{
    ZBObject* read = nullptr;
    const int result = ZBObject::object_from_string(text, read, version());
    std::unique_ptr<ZBObject> object(read);
    if (iszbwarn(result) || !object)
        return false;
    TERVALON_FUZZ_CHECK(!iszbwarn(object->object_to_string(written, version())), "an object read could not be written",
                        text, std::string());
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string text = Fuzz::text_of(data, size);
    std::string written;
    if (!read_and_write(text, written)) {
        Fuzz::clear_errors();
        return 0;
    }
    Fuzz::clear_errors();
    if (text.find('\0') != std::string::npos) {
        text = written;
        TERVALON_FUZZ_CHECK(read_and_write(text, written), "the written text of an object did not read back", text,
                            std::string());
    }
    std::string rewritten;
    TERVALON_FUZZ_CHECK(read_and_write(written, rewritten), "the written text of an object did not read back", text,
                        written);
    TERVALON_FUZZ_CHECK(written == rewritten, "an object changed on its way through the stream", written, rewritten);
    Fuzz::clear_errors();
    return 0;
}
