// Reads a file of records. The first byte chooses: the rest is such a file as it stands, or the body of its only block,
// past the checksums. Whatever is given out must lie in order in the file, and become values or be refused.

#include "Input.h"
#include "Seal.h"

#include <Legacy/IfKit/RecordFile.h>
#include <Legacy/IfKit/ValueText.h>

#include <sstream>

using namespace Legacy;
using namespace Legacy::IfKit;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    unsigned char const mode = input.Byte();
    std::string const rest = input.Rest();
    std::istringstream in(mode == 0 ? rest : Seal(mode & 1 ? 'R' : 'N', mode & 2, rest, mode >> 2));
    RecordFileReader reader(in, "fuzz");
    std::uint64_t last = 0;
    while (auto const entry = reader.NextEntry()) {
        Require(reader.GetOffset() > last && reader.GetOffset() < in.str().size());
        last = reader.GetOffset();
        boost::intrusive_ptr<If::ItemBase> item;
        if (auto const* const record = std::get_if<Record_t>(&*entry))
            Require((record->Rebuild(item) == 0) == (item != nullptr));
        if (item)
            ValueText(*item);
    }
    Require(!reader.NextEntry());
    if (reader.GetError())
        Require(!reader.GetError()->ToText().empty());
    return 0;
}
