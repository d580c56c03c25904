// Property lists, as a file of any origin may hold them.

#include "Platform/Posix/PropertyLists/PropertyListReader.h"
#include "Platform/Posix/PropertyLists/PropertyListWriter.h"
#include "Tests/Fuzz/Expect.h"

using farview::PropertyListReader;
using farview::PropertyListWriter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const auto read = PropertyListReader::read({reinterpret_cast<const char*>(bytes), size});
    if (!read.list) {
        expect(!read.reason.empty(), "a refusal has a reason");
        return 0;
    }
    const auto written = PropertyListWriter::write(*read.list);
    if (!written.bytes)
        return 0;
    const auto again = PropertyListReader::read(*written.bytes);
    expect(again.list.has_value(), "what was written can be read");
    // Texts are compared: a number that is none does not equal itself.
    expect(PropertyListWriter::write(*again.list).bytes == written.bytes,
           "a list is read as it was written");
    return 0;
}
