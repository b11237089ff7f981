// A whole diary file read from memory, as a read-only open does (containers
// resolved, specs parsed and applied), written, and read again: the two
// writings must be the same bytes (for input holding NUL characters, which
// writing drops, the second and third). A file that is refused must be refused
// with an error, never a crash.
#include "fuzz/fuzzsupport.h"

#include "AppTervalonDiary/diary/diary.h"

#include <sstream>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

// The text of the file once read, or empty when it was refused.
bool read_and_write(const std::string& text, std::string& written)
{
    Diary diary;
    std::istringstream in(text);
    if (iszbwarn(diary.read(in, false, false)))
        return false;
    diary.parse_objectspecs(true);
    std::ostringstream out;
    if (iszbwarn(diary.write(out, 0, true, std::string(), -1)))
        Fuzz::fail("a diary that was read could not be written", text, std::string());
    written = out.str();
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
        TERVALON_FUZZ_CHECK(read_and_write(text, written), "the written diary did not read back", text, std::string());
    }
    std::string rewritten;
    TERVALON_FUZZ_CHECK(read_and_write(written, rewritten), "the written diary did not read back", text, written);
    TERVALON_FUZZ_CHECK(written == rewritten, "a diary changed on its way through its file", written, rewritten);
    Fuzz::clear_errors();
    return 0;
}
